#ifndef PUBBUSFACTORY_H
#define PUBBUSFACTORY_H

#include "busfactory.h"

/// The concrete type of the one `BusFactory` instance (see `Singleton`).
class PubBusFactory : public BusFactory
{
    Q_OBJECT
public:
    PubBusFactory() = default;
};

#endif // PUBBUSFACTORY_H
