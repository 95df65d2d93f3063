#ifndef JOB_H
#define JOB_H

#include <QObject>
#include <QScopedPointer>
#include <QString>
#include <QVariant>

class JobPrivate;
class Task;
class Worker;

/// A named request, carried out by a `Task` that a `Worker` builds for it.
///
/// A job is queued on a worker's `WorkQueue` (or, with a task attached by hand,
/// started directly with `start()`). One run goes Queued -> Running -> Finished
/// and emits `finished()` exactly once. A finished job can be queued again: its
/// error is cleared and its old task is replaced by a new one when it starts.
/// The job owns its attached task; the task stays attached after the run, so
/// `task()` and `result()` describe the last run until the job is queued again.
///
///     auto* job = new GetLabelJob(this);
///     connect(job, &Job::finished, this, &Ui::onLabelRead);
///     worker->queue()->enqueue(*job, 10);
class Job : public QObject
{
    Q_OBJECT
    Q_PROPERTY(Job::State state READ state NOTIFY stateChanged)
    Q_PROPERTY(Job::Error error READ error NOTIFY finished)
    Q_PROPERTY(QString errorString READ errorString NOTIFY finished)
    Q_PROPERTY(bool transientError READ isTransientError NOTIFY finished)
    Q_PROPERTY(QVariant result READ result NOTIFY finished)

public:
    enum State { Idle = 0, Queued = 1, Running = 2, Finished = 3 };
    Q_ENUM(State)

    enum Error {
        NoError = 0,
        /// The task ended with `Task::fail()`; the text is the task's.
        TaskFailedError = 1,
        /// The worker has no task for this job class on its object.
        NoTaskError = 2,
        /// Taken off a queue before it started; the job is Idle again.
        DequeuedError = 3,
        /// Aborted while running, or its task was destroyed while running.
        AbortedError = 4
    };
    Q_ENUM(Error)

    Q_INVOKABLE explicit Job(QObject* parent = nullptr);
    ~Job() override;

    State state() const;
    Error error() const;
    QString errorString() const;
    /// True when the last run failed for a reason that may pass on another
    /// run (`Task::failTransient`): the device did not answer in time, the
    /// line was not there. False for a refusal or a reply that makes no
    /// sense, which another run would only repeat.
    bool isTransientError() const;
    /// The attached task's "result" property (see `Task::setResult()`).
    QVariant result() const;
    Task* task() const;
    /// True when a task is attached.
    bool isValid() const;
    /// The job's name; the class name unless a name was given (`QmlJob::setName`).
    QString name() const;
    /// The worker running the job, or that ran its last run; null for a direct start.
    Worker* worker() const;

    /// Takes ownership of `task` and binds it to this job; a previous task is
    /// deleted. Refused (false) while the job is queued or running.
    bool attach(Task* task);
    /// Deletes the attached task; a running job is aborted first.
    void detach();
    /// Runs the attached task at once, without a queue. False when there is no
    /// task or the job is already queued or running. The task may end the job
    /// before this returns.
    bool start();

Q_SIGNALS:
    void started();
    void stateChanged(Job::State state);
    /// Once per run, after `stateChanged()` to the final state.
    void finished(Job::Error error);

protected:
    Job(JobPrivate& dd, QObject* parent);
    void setName(const QString& name);
    QScopedPointer<JobPrivate> d_ptr;

private:
    Q_DECLARE_PRIVATE(Job)
    Q_DISABLE_COPY(Job)
};

#endif // JOB_H
