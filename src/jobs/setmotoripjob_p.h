// Internal header of the job classes, not API: may change without notice.
#ifndef SETMOTORIPJOB_P_H
#define SETMOTORIPJOB_P_H

#include "setmotoripjob.h"

class SetMotorIpJobPrivate
{
public:
    int ipIndex = 0;
    int function = 0;
    int value = 0;
};

#endif // SETMOTORIPJOB_P_H
