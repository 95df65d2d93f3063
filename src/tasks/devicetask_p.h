// Internal header of the device tasks, not API: may change without notice.
#ifndef DEVICETASK_P_H
#define DEVICETASK_P_H

#include "buspendingcallwatcher.h"
#include "vrnobject.h"

#include <QPointer>

/// State shared by every device task; tasks with parameters derive from it.
class DeviceTaskPrivate
{
public:
    DeviceTaskPrivate() = default;
    virtual ~DeviceTaskPrivate() = default;

    QPointer<VRNObject> object;
    BusPendingCallWatcher watcher;

private:
    Q_DISABLE_COPY(DeviceTaskPrivate)
};

#endif // DEVICETASK_P_H
