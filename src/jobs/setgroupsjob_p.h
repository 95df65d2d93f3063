// Internal header of the job classes, not API: may change without notice.
#ifndef SETGROUPSJOB_P_H
#define SETGROUPSJOB_P_H

#include "setgroupsjob.h"

class SetGroupsJobPrivate
{
public:
    QVariantList groups;
};

#endif // SETGROUPSJOB_P_H
