#ifndef GROUPTASK_H
#define GROUPTASK_H

#include "grouptaskresultmodel.h"
#include "task.h"

#include <QList>
#include <QScopedPointer>

class GroupTaskPrivate;
class GroupWorker;
class QmlJob;

/// Runs one job on every device of a group, one device after another, and
/// keeps one result per device in `result()`.
///
/// The queued job is copied once into an inner job of the same class: every
/// declared property, then every dynamic property. That inner job is queued
/// on each device's own worker in turn (with the job's "jobPriority", an
/// integer, 0 when missing; a negative one counts as 0), so the device's
/// bound task does the work. A dynamic property "abortOnError" that converts
/// to bool and is true ends the group after the first device whose job
/// fails; the later devices then have no entry.
///
/// Per device: the inner job's progress (queued, running) is recorded as it
/// comes; its end records the job's state, error, text and result, or one
/// of the texts "Internal error(failed to find worker)", "Internal
/// error(failed to enqueue task)", "Internal error(VRNObject has no worker)",
/// "Internal error(Job has no Task)", or the job's own text when it was
/// taken off the device's queue. The entry recorded for a device whose worker
/// cannot be found, or on whose queue the job cannot be put, is final: the
/// task goes straight on to the next device. The group task itself never
/// fails; it finishes when the last device has been handled.
///
///     auto* job = new SetLabelJob(this);
///     job->setProperty("abortOnError", true);
///     groupWorker->enqueue(job, 5);
///     // later: qvariant_cast<GroupTaskResultModel*>(job->result())
class GroupTask : public Task
{
    Q_OBJECT
    /// Also what the queued job's `result()` gives while this task is attached.
    Q_PROPERTY(GroupTaskResultModel* result READ result CONSTANT)

public:
    GroupTask(GroupWorker& worker, const Job& job, QObject* parent = nullptr);
    ~GroupTask() override;

    void run() override;
    /// Takes the inner job off the current device's queue (aborting it when
    /// it runs) and ends the group as aborted.
    void abort() override;

    /// The device identities, in the order they are run.
    QList<unsigned int> group() const;
    /// One entry per device handled so far; owned by the task.
    GroupTaskResultModel* result() const;
    /// Stores `job`'s state, error, text and result for `uuid`.
    void setResult(unsigned int uuid, const QmlJob& job);
    /// Stores a failure with `text` for `uuid`.
    void setErrorResult(unsigned int uuid, const QString& text);

    int jobPriority() const;
    bool abortOnError() const;
    /// The job as it is queued on each device.
    const QmlJob* innerJob() const;

    /// Lets the current device end and starts no further one: the devices
    /// still waiting get no entry and the task finishes. Ours, for tools
    /// that stop a long run without losing what is under way.
    Q_INVOKABLE void skipRemaining();

Q_SIGNALS:
    /// The entry of `uuid` is final.
    void deviceDone(unsigned int uuid);

public Q_SLOTS:
    void startTask();
    void onJobStateChanged();

private:
    void startDevice();
    void moveOn();

    QScopedPointer<GroupTaskPrivate> d_ptr;
    Q_DECLARE_PRIVATE(GroupTask)
    Q_DISABLE_COPY(GroupTask)
};

#endif // GROUPTASK_H
