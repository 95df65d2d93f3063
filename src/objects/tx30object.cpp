#include "tx30object.h"
#include "vrnobject_p.h"

TX30Object::TX30Object(const DCMotorConfigData& config, QObject* parent)
    : VRNDCMotorObject(config, parent)
{
    d_ptr->type = TX30;
}

TX30Object::~TX30Object() = default;
