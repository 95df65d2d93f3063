// Internal header of the device tasks, not API: may change without notice.

#ifndef MOTORCONTROLTASK_P_H
#define MOTORCONTROLTASK_P_H

#include "devicetask_p.h"

class MotorControlTaskPrivate : public DeviceTaskPrivate
{
public:
    explicit MotorControlTaskPrivate(unsigned char command, unsigned short value = 0)
        : command(command), value(value) {}
    const unsigned char command;
    const unsigned short value;
};

#endif // MOTORCONTROLTASK_P_H
