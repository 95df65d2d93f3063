// Internal header of the job classes, not API: may change without notice.
#ifndef SETENDLIMITSJOB_P_H
#define SETENDLIMITSJOB_P_H

#include "setendlimitsjob.h"

class SetEndLimitsJobPrivate
{
public:
    int command = 0;
    int limit = 0;
    int delta = 0;
};

#endif // SETENDLIMITSJOB_P_H
