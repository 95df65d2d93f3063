// Internal header of the job classes, not API: may change without notice.
#ifndef MOTORCONTROLJOB_P_H
#define MOTORCONTROLJOB_P_H

#include "motorcontroljob.h"

class MotorControlJobPrivate
{
public:
    int command = 0;
    int value = 0;
};

#endif // MOTORCONTROLJOB_P_H
