#ifndef WORKERREGISTRATION_H
#define WORKERREGISTRATION_H

#include <QByteArray>
#include <QScopedPointer>
#include <QStringList>

class TaskCtor;
struct QMetaObject;

/// Binds a job class on an object class to a task constructor. Meant as a
/// static object, one per binding; it owns `ctor`.
///
/// A binding serves the object class and every class derived from it; for a
/// given job the binding on the most derived class of an object wins.
class WorkerRegistration
{
public:
    WorkerRegistration(const QMetaObject& object, const QMetaObject& job, TaskCtor* ctor);
    ~WorkerRegistration();

    /// The constructor bound to `job` on `object`'s class or its nearest base
    /// class that has one; null when none.
    static TaskCtor* find(const QMetaObject& object, const QMetaObject& job);
    /// Class names of the jobs bound on `object`'s class and its base classes, sorted.
    static QStringList jobNames(const QMetaObject& object);

private:
    QByteArray m_object;
    QByteArray m_job;
    QScopedPointer<TaskCtor> m_ctor;
    Q_DISABLE_COPY(WorkerRegistration)
};

#endif // WORKERREGISTRATION_H
