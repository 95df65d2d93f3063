#include "qmlobjectworker.h"
#include "qmljob.h"
#include "workqueue.h"

QmlObjectWorker::QmlObjectWorker(QObject* object, QObject* parent)
    : ObjectWorker(object, parent)
{
}

QmlObjectWorker::~QmlObjectWorker() = default;

bool QmlObjectWorker::enqueue(QmlJob* job, int priority)
{
    return job && queue()->enqueue(*job, static_cast<unsigned int>(qMax(priority, 0)));
}

bool QmlObjectWorker::dequeue(QmlJob* job)
{
    return job && queue()->dequeue(*job);
}
