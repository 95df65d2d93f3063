#ifndef OBJECTREGISTRY_H
#define OBJECTREGISTRY_H

#include <QList>
#include <QString>

class VRNObject;
class VRNObjectWorker;

/// What the device objects need of the device registry (the object
/// factory): writing an object back and hearing of a worker's end.
///
/// The registry installs itself with `setInstance(this)` when it is created
/// and `setInstance(nullptr)` when it goes; until then `VRNObject::save()`
/// fails with "[VRNObject]: failed to retrieve ObjectFactory" and workers end
/// unannounced. Used on the GUI thread only.
class ObjectRegistry
{
public:
    virtual ~ObjectRegistry();

    /// Writes `object` to the device database; true on success.
    virtual bool saveObject(VRNObject* object) = 0;
    /// Called from `~VRNObjectWorker`, while the worker is still whole.
    virtual void objectWorkerDestroyed(VRNObjectWorker* worker) = 0;
    /// The group slots of `object` as a group read or write left them on the
    /// device (0 marks an empty slot). The registry keeps the device's group
    /// membership in step; the default does nothing. False, with the reason
    /// in `error`, when the registry could not store them.
    virtual bool groupSlotsKnown(VRNObject* object, const QList<unsigned int>& groupSlots, QString* error = nullptr);

    /// The installed registry, or null.
    static ObjectRegistry* instance();
    static void setInstance(ObjectRegistry* registry);
};

#endif // OBJECTREGISTRY_H
