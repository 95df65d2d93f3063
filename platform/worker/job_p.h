// Internal header of the job framework, not API: may change without notice.
#ifndef JOB_P_H
#define JOB_P_H

#include "job.h"
#include "worker.h"

#include <QPointer>

class WorkQueue;

class JobPrivate
{
    Q_DECLARE_PUBLIC(Job)

public:
    explicit JobPrivate(Job* q);
    virtual ~JobPrivate();

    static JobPrivate* get(Job* job) { return job->d_func(); }
    static JobPrivate* get(const Job* job) { return const_cast<Job*>(job)->d_func(); }
    /// The one place where the framework's own error texts are written.
    static QString errorText(Job::Error error);
    /// Deletes a task that is no longer attached; later when it is on the stack.
    static void dispose(Task* task);

    /// Takes ownership of `task` (may be null) and drops the previous one.
    void setTask(Task* task);
    /// Runs the attached task; `worker` is null for a direct start.
    bool start(Worker* worker);
    /// Moves to Running and announces it, once per run.
    void markRunning();
    /// Ends the current run (queued or running) once; a dequeued job goes
    /// back to Idle, any other end to Finished.
    void finish(Job::Error error, const QString& text, bool transient = false);
    /// Ends a running job through its task's `abort()`.
    void abortRun();
    /// Drops a task whose run is over, so that the next run gets a new one.
    void dropEndedTask();
    void taskDestroyed(Task* task);
    bool isActive() const { return state == Job::Queued || state == Job::Running; }

    Job* q_ptr;
    Job::State state = Job::Idle;
    Job::Error error = Job::NoError;
    QString errorString;
    bool transient = false;
    QString name;
    Task* task = nullptr;
    QPointer<WorkQueue> queue;
    QPointer<Worker> worker;
};

#endif // JOB_P_H
