#include "tx50dcobject.h"
#include "vrnobject_p.h"

TX50DCObject::TX50DCObject(const DCMotorConfigData& config, QObject* parent)
    : VRNDCMotorObject(config, parent)
{
    d_ptr->type = TX50DC;
}

TX50DCObject::~TX50DCObject() = default;
