#ifndef SETTINGTOOLBLUPDATETASK_H
#define SETTINGTOOLBLUPDATETASK_H

#include "motorblupdatetask.h"

/// The bootloader update of a hand-held setting tool: the motor bootloader's
/// steps and frames, on a setting tool. Its version read back is only the
/// task's result (the tool keeps no standard records).
class SettingToolBLUpdateTask : public MotorBLUpdateTask
{
    Q_OBJECT

public:
    SettingToolBLUpdateTask(Worker& worker, QObject* object, const Job& job, QObject* parent = nullptr);

protected:
    const QMetaObject& objectClass() const override;
};

#endif // SETTINGTOOLBLUPDATETASK_H
