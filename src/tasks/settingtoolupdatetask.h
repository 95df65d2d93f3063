#ifndef SETTINGTOOLUPDATETASK_H
#define SETTINGTOOLUPDATETASK_H

#include "stdupdatetask.h"

/// The standard update of a hand-held setting tool. The tool keeps no
/// standard records, so the version read back is only the task's result.
class SettingToolUpdateTask : public StdUpdateTask
{
    Q_OBJECT

public:
    SettingToolUpdateTask(Worker& worker, QObject* object, const Job& job, QObject* parent = nullptr);

protected:
    const QMetaObject& objectClass() const override;
};

#endif // SETTINGTOOLUPDATETASK_H
