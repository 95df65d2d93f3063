// Not part of the library's API: the running state of NetworkConfiguration.
#ifndef NETWORKCONFIGURATION_P_H
#define NETWORKCONFIGURATION_P_H

#include "networkconfiguration.h"

#include <QHash>
#include <QPointer>
#include <QSharedPointer>

#include <functional>

class GroupWorker;
class QmlJob;
class VRNObject;
class VRNObjectWorker;

class NetworkConfigurationPrivate
{
public:
    enum Mode { Idle, Backup, Compare, Replace, Apply };
    using Make = std::function<QmlJob*()>;

    /// One write of an apply, with the fields it sets.
    struct Write
    {
        Make make;
        QStringList fields;
        /// Read after the write when the write does not read back itself.
        Make readBack;
    };
    /// One device's part of the running operation.
    struct Device
    {
        quint32 uuid = 0;
        QSharedPointer<VRNObjectWorker> worker;
        QSharedPointer<VRNObject> object;
        int jobsLeft = 0;
    /// Counts the operations begun.
    int generation = 0;
        QStringList read;
        QStringList errors;
        QList<Write> writes;
        int next = 0;
        int tries = 0;
        QList<NetworkConfiguration::Difference> differences;
        QStringList failedFields;
        bool ended = false;
    };

    explicit NetworkConfigurationPrivate(NetworkConfiguration* q);

    bool begin(Mode mode);
    Device& device(quint32 uuid);
    void startReads(const QList<quint32>& uuids);
    void readDone(quint32 uuid, const QString& section, const QmlJob* job, const Make& make);
    void deviceRead(Device& d);
    void planWrites(Device& d);
    void runNextWrite(Device& d);
    void writeDone(Device& d, QmlJob* job, const QString& stopped);
    void verify(Device& d);
    void endDevice(Device& d, bool ok, const QString& error);
    void jobDone();
    void endLater();
    void end();
    QmlJob* own(QmlJob* job);

    NetworkConfiguration* q_ptr;
    Mode mode = Idle;
    QString bus;
    QString toolVersion;
    int retries = 2;
    QList<quint32> order;
    QHash<quint32, Device> devices;
    QHash<quint32, Device> previous;
    QList<QSharedPointer<GroupWorker>> groups;
    int done = 0;
    int total = 0;
    int jobsLeft = 0;
    /// Counts the operations begun.
    int generation = 0;
    NetworkDocument readDocument;
    /// Compare: the document entry of each device.
    QHash<quint32, QJsonObject> wanted;
    QList<NetworkConfiguration::Difference> differences;
    QList<NetworkConfiguration::DeviceResult> results;
    Q_DECLARE_PUBLIC(NetworkConfiguration)
};

#endif // NETWORKCONFIGURATION_P_H
