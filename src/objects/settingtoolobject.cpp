#include "settingtoolobject.h"
#include "vrnobject_p.h"

SettingToolObject::SettingToolObject(QObject* parent)
    : VRNObject(parent)
{
    d_ptr->type = SettingTool;
}

SettingToolObject::~SettingToolObject() = default;
