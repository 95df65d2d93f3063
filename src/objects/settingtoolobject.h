#ifndef SETTINGTOOLOBJECT_H
#define SETTINGTOOLOBJECT_H

#include "vrnobject.h"

/// The hand-held setting tool: a device without standard configuration; its records stay at the root level.
class SettingToolObject : public VRNObject
{
    Q_OBJECT

public:
    explicit SettingToolObject(QObject* parent = nullptr);
    ~SettingToolObject() override;
};

#endif // SETTINGTOOLOBJECT_H
