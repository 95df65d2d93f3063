#ifndef PUBSETTINGS_H
#define PUBSETTINGS_H

#include "settings.h"

/// The concrete type of the one `Settings` instance (see `Singleton`).
class PubSettings : public Settings
{
    Q_OBJECT
public:
    PubSettings() = default;
};

#endif // PUBSETTINGS_H
