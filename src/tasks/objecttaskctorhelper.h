#ifndef OBJECTTASKCTORHELPER_H
#define OBJECTTASKCTORHELPER_H

#include "objectworker.h"
#include "taskctor.h"
#include "workerregistration.h"

/// The task constructor of one binding: builds a `TaskClass` for a job queued
/// on an object worker whose object is (derived from) `ObjectClass`. The
/// task gets the worker, the worker's object, the job and no parent, and casts
/// the object itself.
///
///     static const WorkerRegistration row = ObjectTaskCtorHelper<GetLabelTask, VRNStdObject>::bind<GetLabelJob>();
template <class TaskClass, class ObjectClass>
class ObjectTaskCtorHelper : public TaskCtor
{
public:
    Task* operator()(Worker& worker, const Job& job) override
    {
        auto* objectWorker = qobject_cast<ObjectWorker*>(&worker);
        return new TaskClass(worker, objectWorker ? objectWorker->object() : nullptr, job, nullptr);
    }

    /// The registration that binds `JobClass` on `ObjectClass` to `TaskClass`.
    template <class JobClass>
    static WorkerRegistration bind()
    {
        return WorkerRegistration(ObjectClass::staticMetaObject, JobClass::staticMetaObject,
                                  new ObjectTaskCtorHelper<TaskClass, ObjectClass>);
    }
};

#endif // OBJECTTASKCTORHELPER_H
