// Internal header of the device tasks, not API: may change without notice.
#ifndef DEVICETASK_P_H
#define DEVICETASK_P_H

#include "buspendingcallwatcher.h"
#include "devicetask.h"
#include "vrnobject.h"

#include <QPointer>
#include <QStateMachine>

/// State shared by every device task; tasks with parameters derive from it.
class DeviceTaskPrivate
{
public:
    DeviceTaskPrivate() = default;
    virtual ~DeviceTaskPrivate() = default;

    QPointer<VRNObject> object;
    BusPendingCallWatcher watcher;
    /// Only for tasks that follow a graph of requests; a child of the task.
    QStateMachine* machine = nullptr;
    /// The request of a chain under way (`DeviceTask::sendStep`).
    DeviceTask::StepParser stepParser;
    quint8 stepExpected = 0x7F;
    bool stepTestsNack = true;
    /// The slot of a list read asked for last (`ReadTask`).
    int slot = 0;

private:
    Q_DISABLE_COPY(DeviceTaskPrivate)
};

#endif // DEVICETASK_P_H
