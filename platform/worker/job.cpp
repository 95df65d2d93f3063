#include "job.h"
#include "job_p.h"
#include "task_p.h"
#include "workqueue_p.h"

#include <QCoreApplication>
#include <QDebug>

JobPrivate::JobPrivate(Job* q)
    : q_ptr(q)
{
}

JobPrivate::~JobPrivate() = default;

QString JobPrivate::errorText(Job::Error error)
{
    switch (error) {
    case Job::DequeuedError:
        return QCoreApplication::translate("Job", "Job dequeued");
    case Job::AbortedError:
        return QCoreApplication::translate("Job", "Job aborted");
    default:
        return QString();
    }
}

void JobPrivate::dispose(Task* task)
{
    if (!task)
        return;
    TaskPrivate* td = TaskPrivate::get(task);
    td->job = nullptr;
    if (td->busy > 0)
        task->deleteLater();
    else
        delete task;
}

void JobPrivate::setTask(Task* newTask)
{
    Q_Q(Job);
    if (newTask == task)
        return;
    Task* old = task;
    task = newTask;
    if (newTask) {
        TaskPrivate* td = TaskPrivate::get(newTask);
        if (td->job && td->job != q && td->job->task() == newTask)
            JobPrivate::get(td->job.data())->task = nullptr;
        td->job = q;
    }
    dispose(old);
}

bool JobPrivate::start(Worker* runner)
{
    Q_Q(Job);
    if (!task)
        return false;
    worker = runner;
    QPointer<Job> guard(q);
    markRunning();
    if (!guard || state != Job::Running || !task)
        return false;
    Task* t = task;
    TaskPrivate::Busy busy(t);
    t->run();
    return true;
}

void JobPrivate::markRunning()
{
    Q_Q(Job);
    if (state == Job::Running)
        return;
    state = Job::Running;
    error = Job::NoError;
    errorString.clear();
    transient = false;
    if (task)
        TaskPrivate::get(task)->begin();
    QPointer<Job> guard(q);
    Q_EMIT q->stateChanged(Job::Running);
    if (guard && state == Job::Running)
        Q_EMIT q->started();
}

void JobPrivate::finish(Job::Error e, const QString& text, bool transient)
{
    Q_Q(Job);
    if (!isActive())
        return;
    state = e == Job::DequeuedError ? Job::Idle : Job::Finished;
    error = e;
    errorString = text;
    this->transient = transient;
    if (WorkQueue* wq = queue) {
        queue = nullptr;
        WorkQueuePrivate::get(wq)->jobEnded(q);
    }
    // A handler of stateChanged() may already queue or start the next run.
    const Job::State s = state;
    QPointer<Job> guard(q);
    Q_EMIT q->stateChanged(s);
    if (guard)
        Q_EMIT q->finished(e);
}

void JobPrivate::abortRun()
{
    if (state != Job::Running)
        return;
    if (task) {
        TaskPrivate::Busy busy(task);
        task->abort();
    }
    // A task whose abort() does not end the run is cut off here.
    finish(Job::AbortedError, errorText(Job::AbortedError));
}

void JobPrivate::dropEndedTask()
{
    if (task && TaskPrivate::get(task)->state != Job::Idle)
        setTask(nullptr);
}

void JobPrivate::taskDestroyed(Task* t)
{
    if (task != t)
        return;
    task = nullptr;
    if (state == Job::Running)
        finish(Job::AbortedError, QCoreApplication::translate("Job", "Task destroyed while running"));
}

Job::Job(QObject* parent)
    : Job(*new JobPrivate(this), parent)
{
}

Job::Job(JobPrivate& dd, QObject* parent)
    : QObject(parent)
    , d_ptr(&dd)
{
    // For queued connections and signal spies on stateChanged() and finished().
    static const bool registered = qRegisterMetaType<Job::State>() && qRegisterMetaType<Job::Error>();
    Q_UNUSED(registered)
}

Job::~Job()
{
    Q_D(Job);
    if (WorkQueue* wq = d->queue) {
        d->queue = nullptr;
        WorkQueuePrivate::get(wq)->jobEnded(this);
    }
    Task* t = d->task;
    d->task = nullptr;
    JobPrivate::dispose(t);
}

Job::State Job::state() const
{
    return d_func()->state;
}

Job::Error Job::error() const
{
    return d_func()->error;
}

QString Job::errorString() const
{
    return d_func()->errorString;
}

bool Job::isTransientError() const
{
    return d_func()->transient;
}

QVariant Job::result() const
{
    Q_D(const Job);
    return d->task ? d->task->result() : QVariant();
}

Task* Job::task() const
{
    return d_func()->task;
}

bool Job::isValid() const
{
    return d_func()->task != nullptr;
}

QString Job::name() const
{
    Q_D(const Job);
    return d->name.isEmpty() ? QString::fromLatin1(metaObject()->className()) : d->name;
}

Worker* Job::worker() const
{
    return d_func()->worker;
}

bool Job::attach(Task* task)
{
    Q_D(Job);
    if (d->isActive()) {
        qWarning().noquote() << "[Job]:" << name() << "is queued or running, cannot attach a task";
        return false;
    }
    if (task && task->job() && task->job() != this && task->job()->task() == task
        && JobPrivate::get(task->job())->isActive()) {
        qWarning().noquote() << "[Job]: task" << task->name() << "belongs to a running job";
        return false;
    }
    d->setTask(task);
    return true;
}

void Job::detach()
{
    Q_D(Job);
    d->abortRun();
    d->setTask(nullptr);
}

bool Job::start()
{
    Q_D(Job);
    if (d->isActive() || !d->task)
        return false;
    return d->start(nullptr);
}

void Job::setName(const QString& name)
{
    d_func()->name = name;
}
