// Internal header of the job framework, not API: may change without notice.
#ifndef WORKER_P_H
#define WORKER_P_H

#include "worker.h"

class WorkerPrivate
{
    Q_DECLARE_PUBLIC(Worker)

public:
    explicit WorkerPrivate(Worker* q);
    virtual ~WorkerPrivate();

    Worker* q_ptr;
    WorkQueue* queue = nullptr;
};

#endif // WORKER_P_H
