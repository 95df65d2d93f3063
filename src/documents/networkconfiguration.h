#ifndef NETWORKCONFIGURATION_H
#define NETWORKCONFIGURATION_H

#include "networkdocument.h"

#include <QJsonValue>
#include <QList>
#include <QObject>
#include <QScopedPointer>

class NetworkConfigurationPrivate;

/// Backup, compare, apply and replace of a network's configuration
/// (`NetworkDocument`), shared by vrnconfig and the application.
///
/// Every read and write is an ordinary job on the device's worker: a backup
/// queues one read job per section on the group worker of the devices that
/// have it (so the group task gives one result per device), an apply queues
/// each device's writes, in a safe order, on the device's own worker, since
/// every device takes values of its own. One operation runs at a time; each
/// ends with `finished()`, after one `deviceFinished()` per device.
///
///     NetworkConfiguration config;
///     connect(&config, &NetworkConfiguration::finished, [&] { save(config.document()); });
///     config.backup(uuids);
class NetworkConfiguration : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool running READ isRunning NOTIFY runningChanged)

public:
    /// A setting whose value on the device is not the document's.
    struct Difference
    {
        quint32 uuid = 0;
        quint32 node = 0;
        int type = 0;
        /// JSON pointer into the device's entry: "/label", "/limits/up", "/ips/3".
        QString field;
        QJsonValue document;
        QJsonValue device;
    };
    /// How one device's part of an operation ended.
    struct DeviceResult
    {
        quint32 uuid = 0;
        quint32 node = 0;
        bool ok = false;
        /// Why it failed; every failed field's reason, joined.
        QString error;
        /// Apply: the fields written.
        QStringList fields;
    };

    explicit NetworkConfiguration(QObject* parent = nullptr);
    ~NetworkConfiguration() override;

    bool isRunning() const;
    /// The bus named in documents this object writes.
    void setBus(const QString& bus);
    void setToolVersion(const QString& version);
    /// How often a job that met a timeout or a missing bus runs again (default 2).
    void setRetries(int retries);

    /// Reads every section of every device of `uuids`; `document()` then
    /// holds one entry per device, in that order. False when already running.
    bool backup(const QList<quint32>& uuids);
    /// Reads the devices of `document` (matched with `matchDevices`; those
    /// of `uuids` only, unless it is empty) and lists in `differences()`
    /// where they differ from it.
    bool compare(const NetworkDocument& document, const QList<quint32>& uuids = {});
    /// Writes `differences` (from `compare`), device by device: label,
    /// groups, direction, end limits before intermediate positions, speed,
    /// ramp; then reads each written field back. A device whose writes or
    /// read-back failed is reported with every failed field; the others are
    /// done, so running compare and apply again finishes the job.
    bool apply(const QList<Difference>& differences);
    /// Gives device `uuid` the settings of `entry` (another device's entry,
    /// of the same kind): compares it and applies the differences. False
    /// when running, or when the device is unknown or of another kind.
    bool replace(const QJsonObject& entry, quint32 uuid);

    NetworkDocument document() const;
    QList<Difference> differences() const;
    QList<DeviceResult> results() const;

    /// The differences between a document entry and the same device's entry
    /// as read; sections unread on either side give none.
    static QList<Difference> compareEntries(const QJsonObject& document, const QJsonObject& device);
    /// The registry's device for each entry of `document`, by node number;
    /// false with the place in the document and the reason when a device's
    /// kind differs from the registry's. Entries without a device get 0.
    static bool matchDevices(const NetworkDocument& document, QList<quint32>& uuids, QString& error);
    /// The uuid of the registry's device named by node number or serial number; 0 for none.
    static quint32 findDevice(const QString& nodeOrSerial);
    /// Moves device `to` into the registry row of `from`: `from` takes the
    /// node number and serial number of `to`, keeps its label and groups, and
    /// `to`'s row goes. False with the reason when the registry refused.
    static bool takeOver(quint32 from, quint32 to, QString& error);

Q_SIGNALS:
    void runningChanged(bool running);
    /// Jobs done of all the jobs of the operation.
    void progress(int done, int total);
    void deviceFinished(quint32 uuid, bool ok, const QString& error);
    void finished();

private:
    QScopedPointer<NetworkConfigurationPrivate> d_ptr;
    Q_DECLARE_PRIVATE(NetworkConfiguration)
    Q_DISABLE_COPY(NetworkConfiguration)
};

#endif // NETWORKCONFIGURATION_H
