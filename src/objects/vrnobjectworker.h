#ifndef VRNOBJECTWORKER_H
#define VRNOBJECTWORKER_H

#include "qmlobjectworker.h"

#include <QScopedPointer>
#include <QSharedPointer>

#include <functional>

class VRNObject;
class VRNObjectWorkerPrivate;

/// The worker of one device object. It holds its object strongly, so the
/// object lives at least as long as work can be queued on it; giving the
/// worker another object (either `setObject` overload, or the `object`
/// property) drops the held pointer. Its destructor tells the device
/// registry (`ObjectRegistry::objectWorkerDestroyed`).
class VRNObjectWorker : public QmlObjectWorker
{
    Q_OBJECT

public:
    explicit VRNObjectWorker(const QSharedPointer<VRNObject>& object, QObject* parent = nullptr);
    ~VRNObjectWorker() override;

    void setObject(const QSharedPointer<VRNObject>& object);
    void setObject(QObject* object);
    QObject* object() const;
    QSharedPointer<VRNObject> vrnObject() const;

    /// The task bound to `job` for this worker's object; the task observer
    /// (if one is set) hears of it before it runs.
    Task* createTask(const Job& job) override;

    /// Called with every task made for a device's job, by any tool, before
    /// it runs (the change log records writes this way); empty for none.
    using TaskObserver = std::function<void(VRNObject* object, Task* task)>;
    static void setTaskObserver(const TaskObserver& observer);

private:
    QScopedPointer<VRNObjectWorkerPrivate> d_ptr;
    Q_DECLARE_PRIVATE(VRNObjectWorker)
};

#endif // VRNOBJECTWORKER_H
