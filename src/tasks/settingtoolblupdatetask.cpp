#include "settingtoolblupdatetask.h"

#include "settingtoolobject.h"

SettingToolBLUpdateTask::SettingToolBLUpdateTask(Worker&, QObject* object, const Job& job, QObject* parent)
    : MotorBLUpdateTask(object, job, parent)
{
}

const QMetaObject& SettingToolBLUpdateTask::objectClass() const
{
    return SettingToolObject::staticMetaObject;
}
