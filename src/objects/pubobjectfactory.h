#ifndef PUBOBJECTFACTORY_H
#define PUBOBJECTFACTORY_H

#include "objectfactory.h"

/// The concrete type of the one `ObjectFactory` instance (see `Singleton`).
class PubObjectFactory : public ObjectFactory
{
    Q_OBJECT
public:
    PubObjectFactory() = default;
};

#endif // PUBOBJECTFACTORY_H
