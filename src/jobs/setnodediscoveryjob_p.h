// Internal header of the job classes, not API: may change without notice.
#ifndef SETNODEDISCOVERYJOB_P_H
#define SETNODEDISCOVERYJOB_P_H

#include "setnodediscoveryjob.h"

class SetNodeDiscoveryJobPrivate
{
public:
    bool enabled = false;
};

#endif // SETNODEDISCOVERYJOB_P_H
