#include "jobmonitorstate.h"
#include "job.h"
#include "jobmonitorstate_p.h"

#include <QSignalTransition>

namespace {
class JobSignalTransition : public QSignalTransition
{
public:
    JobSignalTransition(const JobMonitorStatePrivate* d, const char* signal, QState* source, QAbstractState* target)
        : QSignalTransition(d->job.data(), signal, source)
        , m_d(d)
    {
        setTargetState(target);
    }

protected:
    bool eventTest(QEvent* event) override { return QSignalTransition::eventTest(event) && m_d->accepts(); }

private:
    const JobMonitorStatePrivate* m_d;
};
} // namespace

bool JobMonitorStatePrivate::accepts() const
{
    return !sameWorkerOnly || !worker || (job && job->worker() == worker);
}

JobMonitorState::JobMonitorState(const Job& job, Worker* worker, bool sameWorkerOnly, QState* parent)
    : QState(parent)
    , d_ptr(new JobMonitorStatePrivate)
{
    Q_D(JobMonitorState);
    d->job = &job;
    d->worker = worker;
    d->sameWorkerOnly = sameWorkerOnly;
    d->idle = new QState(this);
    d->running = new QState(this);
    setInitialState(d->idle);
    new JobSignalTransition(d, SIGNAL(started()), d->idle, d->running);
    // Internal, so that the end of a run re-enters idle without leaving this state.
    auto* end = new JobSignalTransition(d, SIGNAL(finished(Job::Error)), this, d->idle);
    end->setTransitionType(QAbstractTransition::InternalTransition);
}

JobMonitorState::~JobMonitorState() = default;

QState* JobMonitorState::idleState() const
{
    return d_func()->idle;
}

QState* JobMonitorState::runningState() const
{
    return d_func()->running;
}

const Job* JobMonitorState::job() const
{
    return d_func()->job.data();
}

Worker* JobMonitorState::worker() const
{
    return d_func()->worker;
}
