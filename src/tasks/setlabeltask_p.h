// Internal header of the device tasks, not API: may change without notice.
#ifndef SETLABELTASK_P_H
#define SETLABELTASK_P_H

#include "devicetask_p.h"

class SetLabelTaskPrivate : public DeviceTaskPrivate
{
public:
    explicit SetLabelTaskPrivate(const QByteArray& label) : label(label) {}
    const QByteArray label;
};

#endif // SETLABELTASK_P_H
