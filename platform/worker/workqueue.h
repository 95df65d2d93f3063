#ifndef WORKQUEUE_H
#define WORKQUEUE_H

#include <QObject>
#include <QScopedPointer>

class Job;
class Worker;
class WorkQueuePrivate;

/// The queue of jobs waiting for one worker.
///
/// One job runs at a time: the highest priority first, first in first out
/// among equal priorities. A job is started from the event loop, never from
/// inside `enqueue()` or from inside the end of the previous job. A job
/// destroyed while waiting is forgotten; one destroyed while running lets the
/// next one start.
class WorkQueue : public QObject
{
    Q_OBJECT

public:
    /// With `autoStart` false the queue holds its jobs until `start()`.
    WorkQueue(Worker* worker, bool autoStart, QObject* parent = nullptr);
    /// Waiting jobs end with `Job::DequeuedError`, the running one is aborted.
    ~WorkQueue() override;

    /// Queues `job`; false when it is already waiting or running anywhere.
    /// A finished job is queued again: its error is cleared and its task will
    /// be replaced.
    bool enqueue(Job& job, unsigned int priority);
    /// Takes a waiting job off the queue (it ends with `Job::DequeuedError`
    /// and is Idle again) or aborts it when running (`Job::AbortedError`).
    /// False when the job is not on this queue.
    bool dequeue(const Job& job);

    void start();
    /// Holds the queue; a running job goes on to its end.
    void stop();
    bool isStarted() const;
    /// Number of waiting jobs, the running one not counted.
    int count() const;
    Job* currentJob() const;
    Worker* worker() const;

private:
    QScopedPointer<WorkQueuePrivate> d_ptr;
    Q_DECLARE_PRIVATE(WorkQueue)
    Q_DISABLE_COPY(WorkQueue)
};

#endif // WORKQUEUE_H
