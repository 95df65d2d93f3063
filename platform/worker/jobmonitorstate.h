#ifndef JOBMONITORSTATE_H
#define JOBMONITORSTATE_H

#include <QScopedPointer>
#include <QState>

class Job;
class JobMonitorStatePrivate;
class Worker;

/// A state that follows the runs of one job.
///
/// It has two sub-states: `idleState()` (initial), left when the job emits
/// `started()`, and `runningState()`; every `finished()` of the job re-enters
/// `idleState()`. Queue the next piece of work from `idleState()->entered()`;
/// the machine leaves the monitor state through transitions of its own.
///
/// With `sameWorkerOnly` true (and a worker given), only runs on `worker` move
/// the sub-states; runs of the same job on other workers are ignored. With
/// false, every run of the job counts.
///
///     auto* mark = new JobMonitorState(nodeJob, nullptr, false, machineRoot);
///     connect(mark->idleState(), &QState::entered, this, &Discovery::markNextNode);
class JobMonitorState : public QState
{
    Q_OBJECT

public:
    explicit JobMonitorState(const Job& job, Worker* worker = nullptr, bool sameWorkerOnly = false,
                             QState* parent = nullptr);
    ~JobMonitorState() override;

    QState* idleState() const;
    QState* runningState() const;
    const Job* job() const;
    Worker* worker() const;

private:
    QScopedPointer<JobMonitorStatePrivate> d_ptr;
    Q_DECLARE_PRIVATE(JobMonitorState)
    Q_DISABLE_COPY(JobMonitorState)
};

#endif // JOBMONITORSTATE_H
