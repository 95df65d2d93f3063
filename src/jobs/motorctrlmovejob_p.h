// Internal header of the job classes, not API: may change without notice.
#ifndef MOTORCTRLMOVEJOB_P_H
#define MOTORCTRLMOVEJOB_P_H

#include "motorctrlmovejob.h"

class MotorCtrlMoveJobPrivate
{
public:
    int command = 0;
    int duration = 0;
};

#endif // MOTORCTRLMOVEJOB_P_H
