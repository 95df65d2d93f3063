// Internal header of BusFactory: not part of the library's API.
#ifndef BUSFACTORY_P_H
#define BUSFACTORY_P_H

#include "busfactory.h"

class BusFactoryPrivate
{
public:
    explicit BusFactoryPrivate(BusFactory* owner);
    virtual ~BusFactoryPrivate() = default;

    /// Opens `bus` (taken over) and installs it under the identifier that
    /// `uuidOf` builds once it is open; on failure records the bus's error
    /// and deletes it.
    template <typename UuidOf>
    bool openBus(VRNBus* bus, UuidOf uuidOf);
    /// Makes `bus` current, announces it, then deletes the previous one.
    bool setBus(VRNBus* bus, const QString& uuid);
    void setError(const QString& text);

    BusFactory* q_ptr;
    Q_DECLARE_PUBLIC(BusFactory)
    VRNBus* bus = nullptr;
    QString lastError;
    QmlObjectWorker* worker;
    QString busUUID;
    VRNListenerViewModel* listener = nullptr;
};

#endif // BUSFACTORY_P_H
