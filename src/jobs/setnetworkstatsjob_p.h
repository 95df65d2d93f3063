// Internal header of the job classes, not API: may change without notice.
#ifndef SETNETWORKSTATSJOB_P_H
#define SETNETWORKSTATSJOB_P_H

#include "setnetworkstatsjob.h"

class SetNetworkStatsJobPrivate
{
public:
    int stats = SetNetworkStatsJob::All;
};

#endif // SETNETWORKSTATSJOB_P_H
