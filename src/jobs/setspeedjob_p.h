// Internal header of the job classes, not API: may change without notice.
#ifndef SETSPEEDJOB_P_H
#define SETSPEEDJOB_P_H

#include "setspeedjob.h"

class SetSpeedJobPrivate
{
public:
    int upSpeed = 0;
    int downSpeed = 0;
    int slowSpeed = 0;
};

#endif // SETSPEEDJOB_P_H
