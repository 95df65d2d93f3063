// Internal header of the job framework, not API: may change without notice.
#ifndef TASK_P_H
#define TASK_P_H

#include "task.h"

#include <QPointer>

class TaskPrivate
{
    Q_DECLARE_PUBLIC(Task)

public:
    explicit TaskPrivate(Task* q);
    virtual ~TaskPrivate();

    static TaskPrivate* get(Task* task) { return task->d_func(); }
    static TaskPrivate* get(const Task* task) { return const_cast<Task*>(task)->d_func(); }

    /// Ends the run once: reports to the job, then emits `finished()`.
    /// `transient`: a failure that may pass on another try (see `Job::isTransientError`).
    void end(Job::Error error, const QString& text, bool transient = false);
    /// Starts a run: Running, no error.
    void begin();

    /// Marks the task as being on the call stack, so that a job replacing or
    /// dropping it meanwhile deletes it later instead of under its own feet.
    class Busy
    {
    public:
        explicit Busy(Task* task);
        ~Busy();

    private:
        QPointer<Task> m_task;
        Q_DISABLE_COPY(Busy)
    };

    Task* q_ptr;
    QPointer<Job> job;
    QString name;
    Job::State state = Job::Idle;
    Job::Error error = Job::NoError;
    QString errorString;
    int busy = 0;
};

#endif // TASK_P_H
