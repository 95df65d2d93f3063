// Internal header of the device tasks, not API: may change without notice.
#ifndef SETGROUPSTASK_P_H
#define SETGROUPSTASK_P_H

#include "devicetask_p.h"
#include "job.h"

class SetGroupsTaskPrivate : public DeviceTaskPrivate
{
public:
    explicit SetGroupsTaskPrivate(const QList<unsigned int>& groups) : groups(groups) {}
    const QList<unsigned int> groups;
    int index = 0;
    int failedSlot = -1;
    QString slotError;
    /// Runs the `SetGroupTask` of the slot being written.
    Job job;
};

#endif // SETGROUPSTASK_P_H
