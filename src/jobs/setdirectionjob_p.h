// Internal header of the job classes, not API: may change without notice.
#ifndef SETDIRECTIONJOB_P_H
#define SETDIRECTIONJOB_P_H

#include "setdirectionjob.h"

class SetDirectionJobPrivate
{
public:
    int direction = 0;
};

#endif // SETDIRECTIONJOB_P_H
