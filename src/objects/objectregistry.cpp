#include "objectregistry.h"

namespace {
ObjectRegistry* s_registry = nullptr;
}

ObjectRegistry::~ObjectRegistry()
{
    if (s_registry == this)
        s_registry = nullptr;
}

bool ObjectRegistry::groupSlotsKnown(VRNObject*, const QList<unsigned int>&, QString*)
{
    return true;
}

ObjectRegistry* ObjectRegistry::instance()
{
    return s_registry;
}

void ObjectRegistry::setInstance(ObjectRegistry* registry)
{
    s_registry = registry;
}
