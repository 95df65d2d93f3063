#ifndef VRNCONFIGCLI_H
#define VRNCONFIGCLI_H

#include "vrnobject.h"

#include <QJsonObject>
#include <QObject>
#include <QStringList>

#include <functional>

class QmlJob;
class VRNObjectWorker;
class VRNStdObject;

/// The `vrnconfig` command line: parses the options, runs one command on
/// the event loop through the library's jobs and models, prints its results
/// and quits with 0 (all went well), 1 (a device's job or the bus failed)
/// or 2 (usage error).
class VrnConfigCli : public QObject
{
    Q_OBJECT
public:
    enum Exit { Ok = 0, Failed = 1, Usage = 2 };

    explicit VrnConfigCli(QObject* parent = nullptr);

    /// Parses `arguments` (program name first) and starts the command;
    /// false when it has already ended (exit code in `exitCode()`).
    bool start(const QStringList& arguments);
    int exitCode() const { return m_exit; }

Q_SIGNALS:
    void done(int exitCode);

private:
    using Command = std::function<void(const QStringList&)>;
    // A job for one device, and what to print once it ended well.
    using JobFactory = std::function<QmlJob*(VRNStdObject&)>;
    using ValueReader = std::function<void(VRNStdObject&, QJsonObject&, QString&)>;

    void cmdPorts(const QStringList& args);
    void cmdOpen(const QStringList& args);
    void cmdClose(const QStringList& args);
    void cmdDiscover(const QStringList& args);
    void cmdList(const QStringList& args);
    void cmdGet(const QStringList& args);
    void cmdSet(const QStringList& args);
    void cmdForget(const QStringList& args);
    void cmdMonitor(const QStringList& args);
    // The motor family (motorcommands.cpp).
    void cmdWink(const QStringList& args);
    void cmdMove(const QStringList& args);
    void cmdFactoryDefault(const QStringList& args);
    void cmdWatch(const QStringList& args);
    /// `get` of a motor setting; false when `what` is none.
    bool getMotor(const QString& what, const QList<VRNObject::UUID>& uuids);
    /// `set` of a motor setting; false when `what` is none.
    bool setMotor(const QString& what, const QList<VRNObject::UUID>& uuids, const QStringList& values);
    void watchPosition(QSharedPointer<VRNObject> object, QSharedPointer<VRNObjectWorker> worker);

    bool openDatabase();
    bool openBus();
    bool resolveDevices(const QStringList& words, QList<VRNObject::UUID>& uuids);
    /// A device for which `makeJob` gives no job is reported with `refusal`
    /// and gets nothing sent. `bound` (ms, 0 for none): a job still running
    /// by then is taken off its queue.
    void runOnDevices(const QList<VRNObject::UUID>& uuids, const JobFactory& makeJob,
                      const ValueReader& readValue, bool store, const QString& refusal = QString(), int bound = 0);
    void printDevices(const QList<VRNObject::UUID>& uuids, const QList<unsigned int>& addrs);

    static bool parseNumber(const QString& text, quint32 max, quint32& value);
    void out(const QString& line);
    void outJson(const QJsonValue& value);
    /// One line on standard error; ends the command with `code`.
    void fail(int code, const QString& message);
    void finish(int code = Ok);

    QStringList m_args;
    QString m_busUuid;
    QString m_dbFile;
    int m_timeout = -1;
    bool m_json = false;
    QString m_sort;
    bool m_desc = false;
    int m_count = -1;
    double m_duration = -1;
    bool m_yes = false;
    bool m_ipsOnly = false;
    int m_exit = Ok;
    bool m_ended = false;
};

#endif // VRNCONFIGCLI_H
