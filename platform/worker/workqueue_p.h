// Internal header of the job framework, not API: may change without notice.
#ifndef WORKQUEUE_P_H
#define WORKQUEUE_P_H

#include "workqueue.h"

#include <QList>
#include <QPointer>

class WorkQueuePrivate
{
    Q_DECLARE_PUBLIC(WorkQueue)

public:
    struct Entry
    {
        Job* job;
        unsigned int priority;
    };

    WorkQueuePrivate(WorkQueue* q, Worker* worker, bool autoStart);

    static WorkQueuePrivate* get(WorkQueue* queue) { return queue->d_func(); }

    void schedule();
    void startNext();
    /// Called by a job of this queue when its run ends or it is destroyed.
    void jobEnded(Job* job);

    WorkQueue* q_ptr;
    QPointer<Worker> worker;
    QList<Entry> pending;
    Job* current = nullptr;
    bool started;
    bool scheduled = false;
    bool dying = false;
};

#endif // WORKQUEUE_P_H
