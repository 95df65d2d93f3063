#ifndef OBJECTWORKER_H
#define OBJECTWORKER_H

#include "worker.h"

class ObjectWorkerPrivate;

/// A worker for one object: the task of a job is the one bound to the job's
/// class on the object's class or its nearest base class (`WorkerRegistration`).
class ObjectWorker : public Worker
{
    Q_OBJECT
    Q_PROPERTY(QObject* object READ object WRITE setObject NOTIFY objectChanged)

public:
    explicit ObjectWorker(QObject* object = nullptr, QObject* parent = nullptr);
    ~ObjectWorker() override;

    /// The object is not owned; it becomes null when the object is destroyed.
    void setObject(QObject* object);
    QObject* object() const;

    Task* createTask(const Job& job) override;
    /// The class name of the object ("VRNMotorObject"), or the worker's own name without one.
    QString name() const override;
    QStringList jobNames() const override;

Q_SIGNALS:
    void objectChanged(QObject* object);

protected:
    ObjectWorker(ObjectWorkerPrivate& dd, QObject* object, QObject* parent);

private:
    Q_DECLARE_PRIVATE(ObjectWorker)
    Q_DISABLE_COPY(ObjectWorker)
};

#endif // OBJECTWORKER_H
