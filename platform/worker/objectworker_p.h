// Internal header of the job framework, not API: may change without notice.
#ifndef OBJECTWORKER_P_H
#define OBJECTWORKER_P_H

#include "objectworker.h"
#include "worker_p.h"

#include <QPointer>

class ObjectWorkerPrivate : public WorkerPrivate
{
public:
    using WorkerPrivate::WorkerPrivate;

    QPointer<QObject> object;
};

#endif // OBJECTWORKER_P_H
