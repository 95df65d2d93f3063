#ifndef VRNCONFIG_DEVICERUNNER_H
#define VRNCONFIG_DEVICERUNNER_H

#include "qmljob.h"
#include "vrnobject.h"

#include <QElapsedTimer>
#include <QHash>
#include <QJsonObject>
#include <QObject>
#include <QPointer>
#include <QSharedPointer>

#include <functional>
#include <memory>

class DeviceRunner;
class GroupTask;
class GroupWorker;
class JsonArrayStream;
class VRNObjectWorker;
class VRNStdObject;
class VrnConfigCli;

/// One device's part of a run: what the action works with and what it
/// reports. The action queues jobs with `start()` and ends with `succeed()`
/// or `fail()`, once.
class DeviceRun
{
public:
    VRNObject::UUID uuid = 0;
    QSharedPointer<VRNObject> object;
    QSharedPointer<VRNObjectWorker> worker;
    /// Null for a device that is no network node (the action is not called).
    VRNStdObject* device = nullptr;
    /// The device's result: "uuid", "node", "ok", "error" are filled in by
    /// the runner; the action adds its values.
    QJsonObject result;
    /// The value for people, printed after "ok".
    QString line;
    /// With `runJobs`: the result (`Job::result()`) the job gave on this device.
    QVariant jobResult;

    /// Queues `job` (owned by the run from now on) on the device's worker;
    /// `then` is called when it ended. A run that failed for a reason that
    /// may pass (a timeout, the bus; `Job::isTransientError`) is queued again
    /// after a short pause, up to --retries times, and `then` hears only of
    /// the last; the result then holds "tries". False when it could not be queued:
    /// the run has then failed.
    bool start(QmlJob* job, std::function<void(Job::Error)> then);
    /// The job now running, if any.
    QmlJob* job() const { return m_job; }
    /// Takes the running job off its queue; it ends with `why` as its error.
    void stop(const QString& why);
    /// The error text of the job that just ended: the reason it was stopped,
    /// or the job's own.
    QString jobError() const;

    void succeed();
    void fail(const QString& error);
    bool ended() const { return m_ended; }

private:
    /// Puts the bus's count of requests sent again to the device into the result.
    void countRepeats();
    friend class DeviceRunner;
    DeviceRunner* m_runner = nullptr;
    QPointer<QmlJob> m_job;
    QString m_stopped;
    /// Why the last try failed (empty after a success).
    QString m_retryError;
    int m_tries = 0;
    /// Tries made before `start()` (the device's turn in a group).
    int m_triesBefore = 0;
    bool m_started = false;
    bool m_ended = false;
};

/// Runs one action per device and reports as each device ends.
///
/// A few devices run at a time (the bus puts their requests on the wire one
/// after another anyway); the others wait in the runner, so Ctrl-C can take
/// them off: the first Ctrl-C lets the running ones end and reports what
/// ended (exit 130), a second one aborts those too.
///
/// Each result is printed when its device ends: a line "UUID NODE ok VALUE"
/// or "UUID NODE FAILED REASON", or with --json one element of the
/// document's "results" array per line. On a terminal a progress line
/// (done/total, ok, failed, elapsed) is kept on standard error. At the end a
/// summary: with --json the document's "summary" object (and "error" and
/// "exitCode" when a device failed), for people a line on standard error
/// (on success only when it is a terminal).
/// The exit code is 1 when any device failed.
///
/// `runJobs` goes through the group worker of the devices (GroupFactory):
/// one copy of the job runs on one device after another, and each device is
/// reported as its entry in the group's results ends. `run` with an action
/// of its own per device uses the devices' own workers. Both honour
/// --priority N (the job's priority on every queue it waits in) and
/// --abort-on-error (no device is started after the first one that failed;
/// those left are reported as not run), and --retries N: a device whose
/// job timed out (or met a bus failure) runs it again, up to N times in all,
/// on its own worker (after its turn in the group for `runJobs`); its result
/// then holds "tries". A job with the property `RunOnce` runs once.
/// When several devices in a row fail without a single frame heard on the
/// bus meanwhile, the bus is taken as silent (unplugged, powered off, the
/// wrong line): the devices still waiting fail at once with "bus not
/// answering", and the running ones are stopped with it.
class DeviceRunner : public QObject
{
    Q_OBJECT
public:
    /// Failures in a row with nothing heard that make the bus silent.
    static constexpr int SilentLimit = 3;

    using Action = std::function<void(DeviceRun&)>;
    /// A job for the device, or null when the device cannot do it.
    using JobFactory = std::function<QmlJob*(VRNStdObject&)>;
    /// Puts what the device said into the result; false (and the reason in
    /// `error`) when the job's outcome is a failure after all.
    using ValueReader = std::function<bool(DeviceRun&, QString& error)>;

    /// Name of a job property: true for a job that must not run again after a
    /// timeout (a relative change, which a lost acknowledgement hides).
    static constexpr const char* RunOnce = "vrnconfigRunOnce";

    explicit DeviceRunner(VrnConfigCli& cli);

    /// A whole command "NAME DEVICE...": the devices named, the bus opened,
    /// then `runJobs` with `make` and `read`.
    static std::function<void(VrnConfigCli&, const QStringList&)> onEach(const QString& name, const JobFactory& make,
                                                                          const ValueReader& read,
                                                                          const QString& refusal = QString());
    ~DeviceRunner() override;

    /// A quiet run prints nothing and does not end the command: its owner
    /// reads `results()` once `finished` came.
    void setQuiet(bool quiet) { m_quiet = quiet; }
    QList<QJsonObject> results() const;
    /// How many devices run at a time.
    void setParallel(int parallel) { m_parallel = qMax(1, parallel); }
    int parallel() const { return m_parallel; }

    /// Runs `action` on every device of `uuids`, in that order.
    void run(const QList<VRNObject::UUID>& uuids, const Action& action);
    /// The common case: one job per device, its values read once it ended
    /// well; a device for which `make` gives no job fails with `refusal`.
    void runJobs(const QList<VRNObject::UUID>& uuids, const JobFactory& make, const ValueReader& read,
                 const QString& refusal = QString());

Q_SIGNALS:
    /// Every device has ended or was taken off; the summary is printed.
    void finished(int exitCode);

private:
    friend class DeviceRun;
    /// Sets up one run per device, the options, the stream and the interrupt handler.
    void begin(const QList<VRNObject::UUID>& uuids);
    void launch();
    /// A device's entry in the group's results has ended.
    void deviceDone(unsigned int uuid);
    /// The group job ended: devices without an entry were not run.
    void groupEnded();
    /// Runs a device's job again on its own worker, after its turn in the
    /// group failed for a reason that may pass (--retries).
    void retryAlone(DeviceRun& run, const QmlJob& failed);
    void ended(DeviceRun& run);
    void interrupt();
    void report(const DeviceRun& run);
    void showProgress();
    void summarise();
    void giveUp(const QString& why);

    VrnConfigCli& m_cli;
    QList<std::shared_ptr<DeviceRun>> m_runs;
    Action m_action;
    int m_next = 0;
    int m_running = 0;
    int m_done = 0;
    int m_ok = 0;
    int m_failed = 0;
    int m_parallel = 4;
    int m_interrupts = 0;
    bool m_summarised = false;
    unsigned int m_priority = 0;
    bool m_abortOnError = false;
    bool m_abortNow = false;
    ValueReader m_read;
    JobFactory m_make;
    QSharedPointer<GroupWorker> m_group;
    QPointer<QmlJob> m_groupJob;
    QPointer<GroupTask> m_groupTask;
    QHash<unsigned int, DeviceRun*> m_byUuid;
    bool m_quiet = false;
    /// Devices in a row that failed with the bus silent, and whether a frame
    /// came since the last device ended.
    int m_silentFailures = 0;
    bool m_heard = false;
    QString m_gaveUp;
    QElapsedTimer m_clock;
    std::unique_ptr<JsonArrayStream> m_stream;
};

#endif // VRNCONFIG_DEVICERUNNER_H
