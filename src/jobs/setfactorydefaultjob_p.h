// Internal header of the job classes, not API: may change without notice.
#ifndef SETFACTORYDEFAULTJOB_P_H
#define SETFACTORYDEFAULTJOB_P_H

#include "setfactorydefaultjob.h"

class SetFactoryDefaultJobPrivate
{
public:
    int command = 0;
};

#endif // SETFACTORYDEFAULTJOB_P_H
