#ifndef SETGROUPSTASK_H
#define SETGROUPSTASK_H

#include "objecttask.h"

#include <QList>

class SetGroupsTaskPrivate;

/// Writes a list of group addresses (job property "groups") into the node's
/// slots 0, 1, ... in list order, one `SetGroupTask` at a time on an inner
/// job, and finishes after the last acknowledgement. An empty list finishes
/// at once. When one slot's write fails the task fails with that write's
/// text and writes no further slot: a failure left unreported would hold the
/// device's queue for good.
class SetGroupsTask : public ObjectTask<StdConfigData>
{
    Q_OBJECT

public:
    SetGroupsTask(Worker& worker, QObject* object, const Job& job, QObject* parent = nullptr);
    SetGroupsTask(const QList<unsigned int>& groups, QObject* object, QObject* parent = nullptr);
    ~SetGroupsTask() override;

    void abort() override;

    /// The list a job property holds (a list from QML, of numbers); items
    /// that are no number are left out with a warning.
    static QList<unsigned int> groupsFromVariant(const QVariant& value);

public Q_SLOTS:
    void onJobStateChanged(Job::State state);

protected:
    void start() override;

private:
    void writeSlot();
    Q_DECLARE_PRIVATE(SetGroupsTask)
};

#endif // SETGROUPSTASK_H
