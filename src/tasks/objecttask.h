#ifndef OBJECTTASK_H
#define OBJECTTASK_H

#include "devicetask.h"
#include "recordtraits.h"

/// A device task on the objects that hold `Record`: `object()` is the
/// object cast to that class (null when it is gone or of another class) and
/// `node()` its proxy. `start()` sends `request()`, the task's (first)
/// request; a task that does something else overrides `start()` instead.
/// `Traits` names the object class, its proxy and the record accessors
/// (`RecordTraits<Record>` unless a task reaches the record another way).
template <class Record, class RecordAccess = RecordTraits<Record>>
class ObjectTask : public DeviceTask
{
public:
    using Traits = RecordAccess;
    using Object = typename Traits::Object;
    using Proxy = typename Traits::Proxy;

protected:
    using DeviceTask::DeviceTask;

    Object* object() const { return qobject_cast<Object*>(vrnObject()); }
    Proxy* node() const
    {
        Object* o = object();
        return o ? qobject_cast<Proxy*>(o->node()) : nullptr;
    }
    bool hasObject() const override { return object(); }
    bool hasNode() const override { return node(); }

    virtual BusPendingCall request(Proxy& node)
    {
        Q_UNUSED(node)
        return BusPendingCall::fromError(BusPendingCall::OtherError);
    }
    void start() override { watch(request(*node())); }
};

#endif // OBJECTTASK_H
