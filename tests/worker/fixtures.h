// Test fixtures for the job framework: jobs, objects, a scripted task and workers.
#ifndef WORKER_TEST_FIXTURES_H
#define WORKER_TEST_FIXTURES_H

#include "job.h"
#include "qmljob.h"
#include "task.h"
#include "taskctor.h"
#include "worker.h"

#include <QStringList>

class PingJob : public QmlJob
{
    Q_OBJECT
public:
    Q_INVOKABLE explicit PingJob(QObject* parent = nullptr)
        : QmlJob(parent)
    {
    }
};

class SpeedJob : public QmlJob
{
    Q_OBJECT
public:
    Q_INVOKABLE explicit SpeedJob(QObject* parent = nullptr)
        : QmlJob(parent)
    {
    }
};

class BaseObject : public QObject
{
    Q_OBJECT
};

class DerivedObject : public BaseObject
{
    Q_OBJECT
};

class LeafObject : public DerivedObject
{
    Q_OBJECT
};

/// Does what its job's "mode" property says: "fail" fails inside run(),
/// "wait" stays running, anything else finishes inside run() with its tag as
/// result. Every run() appends the job's object name to `log()`.
class ScriptTask : public Task
{
    Q_OBJECT
public:
    ScriptTask(const Job& job, const QString& tag)
        : Task(job)
        , m_tag(tag)
    {
    }

    static QStringList& log()
    {
        static QStringList entries;
        return entries;
    }

    void run() override
    {
        log().append(job()->objectName());
        const QString mode = job()->property("mode").toString();
        if (mode == QLatin1String("fail"))
            fail(QStringLiteral("device said no"));
        else if (mode != QLatin1String("wait"))
            finishWith(m_tag);
    }

    void abort() override
    {
        ++aborts;
        Task::abort();
    }

    void finishWith(const QVariant& result)
    {
        setResult(result);
        setState(Job::Finished);
    }

    int aborts = 0;

private:
    QString m_tag;
};

class ScriptCtor : public TaskCtor
{
public:
    explicit ScriptCtor(const QString& tag)
        : m_tag(tag)
    {
    }
    Task* operator()(Worker&, const Job& job) override { return new ScriptTask(job, m_tag); }

private:
    QString m_tag;
};

/// A worker that has a `ScriptTask` for every job; the tag counts the tasks built.
class ScriptWorker : public Worker
{
    Q_OBJECT
public:
    using Worker::Worker;
    Task* createTask(const Job& job) override
    {
        return new ScriptTask(job, QString::number(++built));
    }
    int built = 0;
};

inline ScriptTask* scriptTask(const Job& job)
{
    return qobject_cast<ScriptTask*>(job.task());
}

#endif // WORKER_TEST_FIXTURES_H
