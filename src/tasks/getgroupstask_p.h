// Internal header of the device tasks, not API: may change without notice.
#ifndef GETGROUPSTASK_P_H
#define GETGROUPSTASK_P_H

#include "devicetask_p.h"

class GetGroupsTaskPrivate : public DeviceTaskPrivate
{
public:
    /// The slot asked for last.
    unsigned char index = 0;
};

#endif // GETGROUPSTASK_P_H
