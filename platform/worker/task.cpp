#include "task.h"
#include "job_p.h"
#include "task_p.h"

#include <QDebug>

TaskPrivate::TaskPrivate(Task* q)
    : q_ptr(q)
{
}

TaskPrivate::~TaskPrivate() = default;

void TaskPrivate::begin()
{
    state = Job::Running;
    error = Job::NoError;
    errorString.clear();
}

void TaskPrivate::end(Job::Error e, const QString& text, bool transient)
{
    Q_Q(Task);
    if (state == Job::Finished) {
        qWarning().noquote() << "[Task]:" << q->name() << "has already ended, ignoring" << text;
        return;
    }
    state = Job::Finished;
    error = e;
    errorString = text;
    Busy busy(q);
    QPointer<Task> self(q);
    if (job && job->task() == q) {
        JobPrivate* jd = JobPrivate::get(job.data());
        if (jd->state == Job::Running)
            jd->finish(e, text, transient);
    }
    if (self)
        Q_EMIT q->finished(e);
}

TaskPrivate::Busy::Busy(Task* task)
    : m_task(task)
{
    ++TaskPrivate::get(task)->busy;
}

TaskPrivate::Busy::~Busy()
{
    if (m_task)
        --TaskPrivate::get(m_task.data())->busy;
}

Task::Task(const Job& job, QObject* parent)
    : Task(*new TaskPrivate(this), parent)
{
    d_func()->job = const_cast<Job*>(&job);
}

Task::Task(QObject* parent)
    : Task(*new TaskPrivate(this), parent)
{
}

Task::Task(TaskPrivate& dd, QObject* parent)
    : QObject(parent)
    , d_ptr(&dd)
{
}

Task::~Task()
{
    Q_D(Task);
    if (d->job)
        JobPrivate::get(d->job.data())->taskDestroyed(this);
}

void Task::abort()
{
    Q_D(Task);
    if (d->state == Job::Running)
        d->end(Job::AbortedError, JobPrivate::errorText(Job::AbortedError));
}

void Task::setState(Job::State state)
{
    Q_D(Task);
    switch (state) {
    case Job::Running:
        if (d->state == Job::Running)
            return;
        d->begin();
        if (d->job && d->job->task() == this && !JobPrivate::get(d->job.data())->isActive())
            JobPrivate::get(d->job.data())->markRunning();
        return;
    case Job::Finished:
        d->end(Job::NoError, QString());
        return;
    default:
        qWarning().noquote() << "[Task]:" << name() << "cannot be set to state" << state;
    }
}

void Task::fail(const QString& text)
{
    d_func()->end(Job::TaskFailedError, text);
}

void Task::failTransient(const QString& text)
{
    d_func()->end(Job::TaskFailedError, text, true);
}

Job::State Task::state() const
{
    return d_func()->state;
}

bool Task::isRunning() const
{
    return d_func()->state == Job::Running;
}

Job::Error Task::error() const
{
    return d_func()->error;
}

QString Task::errorString() const
{
    return d_func()->errorString;
}

void Task::setResult(const QVariant& result)
{
    setProperty("result", result);
}

QVariant Task::result() const
{
    return property("result");
}

QString Task::name() const
{
    Q_D(const Task);
    return d->name.isEmpty() ? QString::fromLatin1(metaObject()->className()) : d->name;
}

void Task::setName(const QString& name)
{
    d_func()->name = name;
}

const Job* Task::job() const
{
    return d_func()->job.data();
}
