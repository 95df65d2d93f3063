#include "vrnobjectworker.h"
#include "vrnobjectworker_p.h"

#include "objectregistry.h"
#include "task.h"

namespace {

VRNObjectWorker::TaskObserver& taskObserver()
{
    static VRNObjectWorker::TaskObserver observer;
    return observer;
}

} // namespace

VRNObjectWorker::VRNObjectWorker(const QSharedPointer<VRNObject>& object, QObject* parent)
    : QmlObjectWorker(nullptr, parent)
    , d_ptr(new VRNObjectWorkerPrivate)
{
    // However the object is replaced, a different object releases the held one.
    connect(this, &ObjectWorker::objectChanged, this, [this](QObject* current) {
        Q_D(VRNObjectWorker);
        if (current != d->object.data())
            d->object.reset();
    });
    setObject(object);
}

VRNObjectWorker::~VRNObjectWorker()
{
    if (ObjectRegistry* registry = ObjectRegistry::instance())
        registry->objectWorkerDestroyed(this);
}

void VRNObjectWorker::setObject(const QSharedPointer<VRNObject>& object)
{
    Q_D(VRNObjectWorker);
    d->object = object;
    ObjectWorker::setObject(object.data());
}

void VRNObjectWorker::setObject(QObject* object)
{
    ObjectWorker::setObject(object);
}

QObject* VRNObjectWorker::object() const
{
    return ObjectWorker::object();
}

QSharedPointer<VRNObject> VRNObjectWorker::vrnObject() const
{
    Q_D(const VRNObjectWorker);
    return d->object;
}

Task* VRNObjectWorker::createTask(const Job& job)
{
    Task* task = QmlObjectWorker::createTask(job);
    if (task && taskObserver())
        taskObserver()(vrnObject().data(), task);
    return task;
}

void VRNObjectWorker::setTaskObserver(const TaskObserver& observer)
{
    taskObserver() = observer;
}
