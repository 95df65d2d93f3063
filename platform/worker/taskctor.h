#ifndef TASKCTOR_H
#define TASKCTOR_H

#include <QtGlobal>

class Job;
class Task;
class Worker;

/// Builds the task of one binding (`WorkerRegistration`). For an object worker
/// the object is `qobject_cast<ObjectWorker*>(&worker)->object()`.
class TaskCtor
{
public:
    virtual ~TaskCtor();
    /// A new task without parent for `job` on `worker`, or null.
    virtual Task* operator()(Worker& worker, const Job& job) = 0;

protected:
    TaskCtor() = default;

private:
    Q_DISABLE_COPY(TaskCtor)
};

#endif // TASKCTOR_H
