#ifndef WORKER_H
#define WORKER_H

#include <QObject>
#include <QScopedPointer>
#include <QStringList>

class Job;
class Task;
class WorkQueue;
class WorkerPrivate;

/// Builds and runs the tasks of the jobs queued on it.
///
/// Every worker has its own `queue()`, started. A subclass decides which task
/// a job gets by overriding `createTask()`.
class Worker : public QObject
{
    Q_OBJECT

public:
    explicit Worker(QObject* parent = nullptr);
    ~Worker() override;

    /// Prepares `job` and runs its task. When there is no task the job ends
    /// with `Job::NoTaskError` ("No task for <job class> on <name()>").
    /// False when the job is running, waiting on a queue, or has no task.
    /// An override must start or end the job: its queue waits for the end.
    virtual bool run(Job& job);
    /// Attaches a new task to `job` unless an unused one is attached already;
    /// a task from an earlier run is replaced; a running job is left alone.
    /// True when the job has a task.
    virtual bool prepare(Job& job);
    /// A new task for `job`, or null when this worker has none for it.
    virtual Task* createTask(const Job& job);
    /// The worker's object name, or its class name when it has none.
    virtual QString name() const;
    /// Class names of the jobs this worker has tasks for.
    virtual QStringList jobNames() const;

    WorkQueue* queue() const;

protected:
    Worker(WorkerPrivate& dd, QObject* parent);
    QScopedPointer<WorkerPrivate> d_ptr;

private:
    Q_DECLARE_PRIVATE(Worker)
    Q_DISABLE_COPY(Worker)
};

#endif // WORKER_H
