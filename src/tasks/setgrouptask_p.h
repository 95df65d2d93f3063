// Internal header of the device tasks, not API: may change without notice.
#ifndef SETGROUPTASK_P_H
#define SETGROUPTASK_P_H

#include "devicetask_p.h"

class SetGroupTaskPrivate : public DeviceTaskPrivate
{
public:
    SetGroupTaskPrivate(int index, unsigned int addr) : index(index), addr(addr) {}
    const int index;
    const unsigned int addr;
};

#endif // SETGROUPTASK_P_H
