#ifndef SETGROUPSTASK_H
#define SETGROUPSTASK_H

#include "objecttask.h"

#include <QList>

class SetGroupsTaskPrivate;

/// Writes a list of group addresses (job property "groups") into the node's
/// slots 0, 1, ... in list order, one `SetGroupTask` at a time on an inner
/// job, and finishes after the last acknowledgement. An empty list finishes
/// at once. A complete write hands the device's slots (the written ones over
/// what the last read found in the others) to the device registry, which
/// keeps the device's group membership.
///
/// A slot write that fails (refused, unanswered) stops the writing and, by
/// design, ends nothing: the task stays running, neither finished nor
/// failed, until its job is aborted or taken off its queue. Whoever runs the
/// job bounds its wait and learns which slot failed from `slotFailed()` or
/// the properties `failedSlot` and `slotError`:
///
///     connect(task, &SetGroupsTask::slotFailed, this, [&](int slot, const QString& error) {
///         worker->queue()->dequeue(job);  // ends the job with Job::AbortedError
///     });
class SetGroupsTask : public ObjectTask<StdConfigData>
{
    Q_OBJECT
    /// The slot whose write failed; -1 while none has.
    Q_PROPERTY(int failedSlot READ failedSlot NOTIFY slotFailed)
    /// The failed write's error text ("Nack(...)", "Timeout error", ...).
    Q_PROPERTY(QString slotError READ slotError NOTIFY slotFailed)

public:
    SetGroupsTask(Worker& worker, QObject* object, const Job& job, QObject* parent = nullptr);
    SetGroupsTask(const QList<unsigned int>& groups, QObject* object, QObject* parent = nullptr);
    ~SetGroupsTask() override;

    void abort() override;

    /// The list a job property holds (a list from QML, of numbers); items
    /// that are no number are left out with a warning.
    static QList<unsigned int> groupsFromVariant(const QVariant& value);

    int failedSlot() const;
    QString slotError() const;

Q_SIGNALS:
    /// The write of `slot` failed with `error`; the task goes on running.
    void slotFailed(int slot, const QString& error);

public Q_SLOTS:
    void onJobStateChanged(Job::State state);

protected:
    void start() override;

private:
    void writeSlot();
    /// Hands the device's slots after a complete write to the registry.
    /// Keeps the registry's membership in step; false with the reason.
    bool storeMembership(QString* error);
    Q_DECLARE_PRIVATE(SetGroupsTask)
};

#endif // SETGROUPSTASK_H
