#include "worker.h"
#include "job_p.h"
#include "task.h"
#include "worker_p.h"
#include "workqueue_p.h"

#include <QDebug>

WorkerPrivate::WorkerPrivate(Worker* q)
    : q_ptr(q)
{
}

WorkerPrivate::~WorkerPrivate() = default;

Worker::Worker(QObject* parent)
    : Worker(*new WorkerPrivate(this), parent)
{
}

Worker::Worker(WorkerPrivate& dd, QObject* parent)
    : QObject(parent)
    , d_ptr(&dd)
{
    d_ptr->queue = new WorkQueue(this, true, this);
}

Worker::~Worker()
{
    // The queue ends its jobs while this worker is still whole.
    delete d_func()->queue;
}

bool Worker::run(Job& job)
{
    JobPrivate* jd = JobPrivate::get(&job);
    if (jd->state == Job::Running)
        return false;
    if (jd->state == Job::Queued && !(jd->queue && WorkQueuePrivate::get(jd->queue)->current == &job))
        return false;
    // A direct run passes through Queued silently, so that it ends like a queued one.
    jd->state = Job::Queued;
    jd->worker = this;
    if (!prepare(job)) {
        const QString text =
            tr("No task for %1 on %2").arg(QString::fromLatin1(job.metaObject()->className()), name());
        qWarning().noquote() << "[Worker]:" << text;
        jd->finish(Job::NoTaskError, text);
        return false;
    }
    return jd->start(this);
}

bool Worker::prepare(Job& job)
{
    JobPrivate* jd = JobPrivate::get(&job);
    if (jd->state == Job::Running)
        return jd->task != nullptr;
    jd->dropEndedTask();
    if (!jd->task)
        jd->setTask(createTask(job));
    return jd->task != nullptr;
}

Task* Worker::createTask(const Job&)
{
    return nullptr;
}

QString Worker::name() const
{
    return objectName().isEmpty() ? QString::fromLatin1(metaObject()->className()) : objectName();
}

QStringList Worker::jobNames() const
{
    return QStringList();
}

WorkQueue* Worker::queue() const
{
    return d_func()->queue;
}
