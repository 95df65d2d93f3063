#ifndef TASK_H
#define TASK_H

#include "job.h"

#include <QObject>
#include <QScopedPointer>
#include <QString>
#include <QVariant>

class TaskPrivate;

/// The running execution of one job.
///
/// A subclass implements `run()` and ends the run exactly once, with
/// `setState(Job::Finished)` or `fail(text)`, either inside `run()` or later
/// from the event loop. The end is reported to the attached job and by
/// `finished()`.
class Task : public QObject
{
    Q_OBJECT

public:
    /// Job-driven: the task reads its parameters from `job`'s properties.
    explicit Task(const Job& job, QObject* parent = nullptr);
    /// Direct: built by another task; give it a name with `setName()`.
    explicit Task(QObject* parent = nullptr);
    ~Task() override;

    virtual void run() = 0;
    /// Ends a running task with `Job::AbortedError`. Tasks with outstanding
    /// work override it to cancel that work, then call the base.
    virtual void abort();

    /// Running (2) marks the task and its job running; Finished (3) ends the
    /// run without error. Other states are refused.
    void setState(Job::State state);
    /// Ends the run with `Job::TaskFailedError` and `text`.
    void fail(const QString& text);
    /// As `fail()`, for a failure that may pass when the job runs again (no
    /// answer in time, the line not there): the job reports it through
    /// `Job::isTransientError()`, which is what retries go by.
    void failTransient(const QString& text);

    Job::State state() const;
    bool isRunning() const;
    Job::Error error() const;
    QString errorString() const;

    /// Stores the dynamic property "result", read by `Job::result()`.
    void setResult(const QVariant& result);
    QVariant result() const;

    QString name() const;
    void setName(const QString& name);
    /// The job this task was built for or attached to; null when none.
    const Job* job() const;

Q_SIGNALS:
    /// Once per run, when the task ends.
    void finished(Job::Error error);

protected:
    Task(TaskPrivate& dd, QObject* parent);
    QScopedPointer<TaskPrivate> d_ptr;

private:
    Q_DECLARE_PRIVATE(Task)
    Q_DISABLE_COPY(Task)
};

#endif // TASK_H
