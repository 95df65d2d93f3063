#include "lru50object.h"
#include "vrnobject_p.h"

LRU50Object::LRU50Object(const MotorConfigData& config, QObject* parent)
    : VRNMotorObject(config, parent)
{
    d_ptr->type = LRU50;
}

LRU50Object::~LRU50Object() = default;
