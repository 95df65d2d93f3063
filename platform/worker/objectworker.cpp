#include "objectworker.h"
#include "job.h"
#include "objectworker_p.h"
#include "taskctor.h"
#include "workerregistration.h"

ObjectWorker::ObjectWorker(QObject* object, QObject* parent)
    : ObjectWorker(*new ObjectWorkerPrivate(this), object, parent)
{
}

ObjectWorker::ObjectWorker(ObjectWorkerPrivate& dd, QObject* object, QObject* parent)
    : Worker(dd, parent)
{
    dd.object = object;
}

ObjectWorker::~ObjectWorker() = default;

void ObjectWorker::setObject(QObject* object)
{
    Q_D(ObjectWorker);
    if (d->object == object)
        return;
    d->object = object;
    Q_EMIT objectChanged(object);
}

QObject* ObjectWorker::object() const
{
    return d_func()->object;
}

Task* ObjectWorker::createTask(const Job& job)
{
    Q_D(ObjectWorker);
    if (!d->object)
        return nullptr;
    TaskCtor* ctor = WorkerRegistration::find(*d->object->metaObject(), *job.metaObject());
    return ctor ? (*ctor)(*this, job) : nullptr;
}

QString ObjectWorker::name() const
{
    Q_D(const ObjectWorker);
    return d->object ? QString::fromLatin1(d->object->metaObject()->className()) : Worker::name();
}

QStringList ObjectWorker::jobNames() const
{
    Q_D(const ObjectWorker);
    return d->object ? WorkerRegistration::jobNames(*d->object->metaObject()) : QStringList();
}
