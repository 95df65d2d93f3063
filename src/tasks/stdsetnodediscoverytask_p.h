// Internal header of the device tasks, not API: may change without notice.
#ifndef STDSETNODEDISCOVERYTASK_P_H
#define STDSETNODEDISCOVERYTASK_P_H

#include "devicetask_p.h"

class StdSetNodeDiscoveryTaskPrivate : public DeviceTaskPrivate
{
public:
    explicit StdSetNodeDiscoveryTaskPrivate(bool enabled) : enabled(enabled) {}
    const bool enabled;
};

#endif // STDSETNODEDISCOVERYTASK_P_H
