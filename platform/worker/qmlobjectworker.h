#ifndef QMLOBJECTWORKER_H
#define QMLOBJECTWORKER_H

#include "objectworker.h"

class QmlJob;

/// An object worker that QML can queue jobs on.
class QmlObjectWorker : public ObjectWorker
{
    Q_OBJECT

public:
    explicit QmlObjectWorker(QObject* object = nullptr, QObject* parent = nullptr);
    ~QmlObjectWorker() override;

    /// `WorkQueue::enqueue` on this worker's queue; a negative priority counts as 0.
    Q_INVOKABLE bool enqueue(QmlJob* job, int priority = 0);
    Q_INVOKABLE bool dequeue(QmlJob* job);

private:
    Q_DISABLE_COPY(QmlObjectWorker)
};

#endif // QMLOBJECTWORKER_H
