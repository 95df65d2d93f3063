// Internal header of the job classes, not API: may change without notice.
#ifndef SETRAMPJOB_P_H
#define SETRAMPJOB_P_H

#include "setrampjob.h"

class SetRampJobPrivate
{
public:
    int softStartStatus = 0;
    int softStartValue = 0;
    int softStopStatus = 0;
    int softStopValue = 0;
    int ramps = 0;
};

#endif // SETRAMPJOB_P_H
