#include "settingtoolupdatetask.h"

#include "settingtoolobject.h"

SettingToolUpdateTask::SettingToolUpdateTask(Worker&, QObject* object, const Job& job, QObject* parent)
    : StdUpdateTask(object, job, parent)
{
}

const QMetaObject& SettingToolUpdateTask::objectClass() const
{
    return SettingToolObject::staticMetaObject;
}
