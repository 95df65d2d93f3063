#include "workqueue.h"
#include "job_p.h"
#include "worker.h"
#include "workqueue_p.h"

#include <QCoreApplication>

WorkQueuePrivate::WorkQueuePrivate(WorkQueue* q, Worker* worker, bool autoStart)
    : q_ptr(q)
    , worker(worker)
    , started(autoStart)
{
}

void WorkQueuePrivate::schedule()
{
    Q_Q(WorkQueue);
    if (dying || scheduled || current || !started || pending.isEmpty())
        return;
    scheduled = true;
    QMetaObject::invokeMethod(q, [this] { startNext(); }, Qt::QueuedConnection);
}

void WorkQueuePrivate::startNext()
{
    scheduled = false;
    if (dying || current || !started || pending.isEmpty())
        return;
    Job* job = pending.takeFirst().job;
    current = job;
    if (worker) {
        worker->run(*job);
        return;
    }
    JobPrivate::get(job)->finish(Job::NoTaskError,
                                 QCoreApplication::translate("WorkQueue", "No worker for %1").arg(job->name()));
}

void WorkQueuePrivate::jobEnded(Job* job)
{
    if (current == job) {
        current = nullptr;
        schedule();
        return;
    }
    for (int i = 0; i < pending.size(); ++i) {
        if (pending.at(i).job == job) {
            pending.removeAt(i);
            return;
        }
    }
}

WorkQueue::WorkQueue(Worker* worker, bool autoStart, QObject* parent)
    : QObject(parent)
    , d_ptr(new WorkQueuePrivate(this, worker, autoStart))
{
}

WorkQueue::~WorkQueue()
{
    Q_D(WorkQueue);
    d->dying = true;
    QList<QPointer<Job>> waiting;
    for (const WorkQueuePrivate::Entry& e : qAsConst(d->pending))
        waiting.append(e.job);
    for (const QPointer<Job>& job : qAsConst(waiting)) {
        if (job)
            JobPrivate::get(job.data())->finish(Job::DequeuedError, JobPrivate::errorText(Job::DequeuedError));
    }
    if (d->current)
        JobPrivate::get(d->current)->abortRun();
}

bool WorkQueue::enqueue(Job& job, unsigned int priority)
{
    Q_D(WorkQueue);
    JobPrivate* jd = JobPrivate::get(&job);
    if (d->dying || jd->isActive())
        return false;
    jd->dropEndedTask();
    jd->state = Job::Queued;
    jd->error = Job::NoError;
    jd->errorString.clear();
    jd->queue = this;
    int i = 0;
    while (i < d->pending.size() && d->pending.at(i).priority >= priority)
        ++i;
    d->pending.insert(i, {&job, priority});
    d->schedule();
    Q_EMIT job.stateChanged(Job::Queued);
    return true;
}

bool WorkQueue::dequeue(const Job& job)
{
    JobPrivate* jd = JobPrivate::get(&job);
    if (jd->queue != this)
        return false;
    if (jd->state == Job::Running)
        jd->abortRun();
    else
        jd->finish(Job::DequeuedError, JobPrivate::errorText(Job::DequeuedError));
    return true;
}

void WorkQueue::start()
{
    Q_D(WorkQueue);
    d->started = true;
    d->schedule();
}

void WorkQueue::stop()
{
    d_func()->started = false;
}

bool WorkQueue::isStarted() const
{
    return d_func()->started;
}

int WorkQueue::count() const
{
    return d_func()->pending.size();
}

Job* WorkQueue::currentJob() const
{
    return d_func()->current;
}

Worker* WorkQueue::worker() const
{
    return d_func()->worker;
}
