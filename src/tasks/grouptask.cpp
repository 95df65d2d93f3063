#include "grouptask.h"
#include "grouptask_p.h"

#include "groupworker.h"
#include "objectfactory.h"
#include "workqueue.h"

#include <QDebug>
#include <QMetaProperty>

namespace {
// A new, parentless job of `job`'s own class: the framework picks a device's
// task by the job's class, so a bare QmlJob would find none.
QmlJob* sameClass(const Job& job)
{
    QObject* made = job.metaObject()->newInstance(Q_ARG(QObject*, nullptr));
    if (auto* qmlJob = qobject_cast<QmlJob*>(made))
        return qmlJob;
    delete made;
    qWarning().noquote() << "[GroupTask]: cannot create a job of class" << job.metaObject()->className();
    return new QmlJob;
}
} // namespace

GroupTask::GroupTask(GroupWorker& worker, const Job& job, QObject* parent)
    : Task(job, parent)
    , d_ptr(new GroupTaskPrivate)
{
    Q_D(GroupTask);
    d->group = worker.group();
    d->job.reset(sameClass(job));
    connect(d->job.data(), &Job::stateChanged, this, &GroupTask::onJobStateChanged);
    d->job->setName(job.name());

    bool ok = false;
    const int priority = job.property("jobPriority").toInt(&ok);
    d->jobPriority = ok ? priority : 0;

    const QMetaObject* meta = d->job->metaObject();
    for (int i = 0; i < meta->propertyCount(); ++i) {
        const QMetaProperty property = meta->property(i);
        if (property.isWritable())
            property.write(d->job.data(), job.property(property.name()));
    }
    const QList<QByteArray> dynamic = job.dynamicPropertyNames();
    for (const QByteArray& name : dynamic) {
        d->job->setProperty(name.constData(), job.property(name.constData()));
        if (name == "abortOnError") {
            const QVariant copy = d->job->property(name.constData());
            if (!copy.isNull() && copy.canConvert<bool>())
                d->abortOnError = copy.toBool();
        }
    }
}

GroupTask::~GroupTask()
{
    // The inner job's end must not reach a half-destroyed task.
    d_func()->job->disconnect(this);
}

void GroupTask::run()
{
    Q_D(GroupTask);
    setState(Job::Running);
    d->index = 0;
    if (d->group.isEmpty()) {
        setState(Job::Finished);
        return;
    }
    startDevice();
}

void GroupTask::abort()
{
    Q_D(GroupTask);
    d->job->disconnect(this);
    d->index = d->group.size();
    if (d->currentWorker)
        d->currentWorker->queue()->dequeue(*d->job);
    Task::abort();
}

void GroupTask::startTask()
{
    Q_D(GroupTask);
    if (!isRunning())
        return;
    d->index = d->skip ? d->group.size() : d->index + 1;
    if (d->index >= d->group.size()) {
        setState(Job::Finished);
        return;
    }
    startDevice();
}

void GroupTask::startDevice()
{
    Q_D(GroupTask);
    const unsigned int uuid = d->group.at(d->index);
    d->currentWorker = ObjectFactory::instance()->objectWorker(uuid);
    if (!d->currentWorker) {
        d->job->detach();
        setErrorResult(uuid, tr("Internal error(failed to find worker)"));
    } else if (d->currentWorker->queue()->enqueue(*d->job, unsigned(qMax(d->jobPriority, 0)))) {
        return;
    } else {
        setErrorResult(uuid, tr("Internal error(failed to enqueue task)"));
    }
    // Handing the recorded error on to onJobStateChanged() would overwrite it
    // with whatever state the inner job was left in by the previous device
    // (another device's result, or "VRNObject has no worker"): the entry
    // stays as recorded and the next device starts.
    emit deviceDone(uuid);
    moveOn();
}

void GroupTask::moveOn()
{
    // Never from inside the inner job's own state change: it is queued again
    // only once that handling has returned.
    QMetaObject::invokeMethod(this, &GroupTask::startTask, Qt::QueuedConnection);
}

void GroupTask::onJobStateChanged()
{
    Q_D(GroupTask);
    if (d->index < 0 || d->index >= d->group.size())
        return;
    const unsigned int uuid = d->group.at(d->index);
    const QmlJob& job = *d->job;
    switch (job.state()) {
    case Job::Finished:
        if (!d->currentWorker) {
            setErrorResult(uuid, tr("Internal error(VRNObject has no worker)"));
        } else if (job.error() != Job::NoError) {
            setErrorResult(uuid, job.errorString());
            if (d->abortOnError)
                d->index = d->group.size();
        } else if (job.task()) {
            setResult(uuid, job);
        } else {
            setErrorResult(uuid, tr("Internal error(Job has no Task)"));
        }
        break;
    case Job::Idle:
        setErrorResult(uuid, job.errorString());
        break;
    default:
        setResult(uuid, job);
        return;
    }
    emit deviceDone(uuid);
    moveOn();
}

void GroupTask::skipRemaining()
{
    Q_D(GroupTask);
    if (!isRunning())
        return;
    d->skip = true;
    // A job still waiting on the device's queue is one of the waiting devices:
    // it ends dequeued, which records that device's entry.
    if (d->currentWorker && d->job->state() == Job::Queued)
        d->currentWorker->queue()->dequeue(*d->job);
}

QList<unsigned int> GroupTask::group() const
{
    return d_func()->group;
}

GroupTaskResultModel* GroupTask::result() const
{
    return d_func()->result.data();
}

void GroupTask::setResult(unsigned int uuid, const QmlJob& job)
{
    d_func()->result->setResult(uuid, job);
}

void GroupTask::setErrorResult(unsigned int uuid, const QString& text)
{
    d_func()->result->setErrorResult(uuid, text);
}

int GroupTask::jobPriority() const
{
    return d_func()->jobPriority;
}

bool GroupTask::abortOnError() const
{
    return d_func()->abortOnError;
}

const QmlJob* GroupTask::innerJob() const
{
    return d_func()->job.data();
}
