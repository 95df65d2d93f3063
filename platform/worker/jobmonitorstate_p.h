// Internal header of the job framework, not API: may change without notice.
#ifndef JOBMONITORSTATE_P_H
#define JOBMONITORSTATE_P_H

#include "jobmonitorstate.h"
#include "worker.h"

#include <QPointer>

class JobMonitorStatePrivate
{
public:
    /// Whether a signal of the job concerns the worker being watched.
    bool accepts() const;

    QPointer<const Job> job;
    QPointer<Worker> worker;
    bool sameWorkerOnly = false;
    QState* idle = nullptr;
    QState* running = nullptr;
};

#endif // JOBMONITORSTATE_P_H
