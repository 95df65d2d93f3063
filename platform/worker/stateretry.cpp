#include "stateretry.h"

#include "delaystate.h"
#include "errorstate.h"
#include "job.h"

#include <QFinalState>

class StateRetryPrivate
{
public:
    QState* trying = nullptr;
    DelayState* waiting = nullptr;
    ErrorState* error = nullptr;
    int maxRetries = 0;
    int tries = 0;
    bool underWay = false;
    QString lastError;
};

StateRetry::StateRetry(int maxRetries, int delayMs, QState* parent)
    : QState(parent)
    , d_ptr(new StateRetryPrivate)
{
    Q_D(StateRetry);
    setMaxRetries(maxRetries);
    d->trying = new QState(this);
    d->waiting = new DelayState(delayMs, this);
    d->error = new ErrorState(this);
    auto* done = new QFinalState(this);
    setInitialState(d->trying);

    d->trying->addTransition(this, &StateRetry::trySucceeded, done);
    d->trying->addTransition(this, &StateRetry::retryDue, d->waiting);
    d->trying->addTransition(this, &StateRetry::givenUp, d->error);
    d->waiting->addTransition(d->waiting, &DelayState::elapsed, d->trying);

    connect(this, &QState::entered, this, [d] {
        d->tries = 0;
        d->lastError.clear();
    });
    connect(d->trying, &QState::entered, this, [this, d] {
        ++d->tries;
        d->underWay = true;
        Q_EMIT attempt(d->tries);
    });
    connect(this, &QState::exited, this, [d] { d->underWay = false; });
    connect(d->error, &ErrorState::error, this, &StateRetry::failed);
}

StateRetry::~StateRetry() = default;

int StateRetry::maxRetries() const
{
    return d_func()->maxRetries;
}

void StateRetry::setMaxRetries(int retries)
{
    d_func()->maxRetries = qMax(0, retries);
}

int StateRetry::delay() const
{
    return d_func()->waiting->delay();
}

void StateRetry::setDelay(int delayMs)
{
    d_func()->waiting->setDelay(delayMs);
}

int StateRetry::tries() const
{
    return d_func()->tries;
}

QString StateRetry::errorString() const
{
    return d_func()->lastError;
}

DelayState* StateRetry::delayState() const
{
    return d_func()->waiting;
}

ErrorState* StateRetry::errorState() const
{
    return d_func()->error;
}

void StateRetry::succeed()
{
    Q_D(StateRetry);
    if (!d->underWay)
        return;
    d->underWay = false;
    d->lastError.clear();
    Q_EMIT trySucceeded(QPrivateSignal());
}

void StateRetry::failTry(const QString& text, bool transient)
{
    Q_D(StateRetry);
    if (!d->underWay)
        return;
    d->underWay = false;
    d->lastError = text;
    if (transient && d->tries <= d->maxRetries) {
        Q_EMIT retryDue(QPrivateSignal());
        return;
    }
    d->error->setErrorString(text);
    Q_EMIT givenUp(QPrivateSignal());
}

void StateRetry::reportJob(const Job& job)
{
    if (job.error() == Job::NoError)
        succeed();
    else
        failTry(job.errorString(), job.isTransientError());
}
