#include "setendlimitsjob.h"
#include "setendlimitsjob_p.h"

SetEndLimitsJob::SetEndLimitsJob(QObject* parent)
    : QmlJob(parent)
    , d_ptr(new SetEndLimitsJobPrivate)
{
}

SetEndLimitsJob::~SetEndLimitsJob() = default;

int SetEndLimitsJob::command() const
{
    return d_func()->command;
}

void SetEndLimitsJob::setCommand(int command)
{
    Q_D(SetEndLimitsJob);
    if (d->command == command)
        return;
    d->command = command;
    Q_EMIT commandChanged(command);
}

int SetEndLimitsJob::limit() const
{
    return d_func()->limit;
}

void SetEndLimitsJob::setLimit(int limit)
{
    Q_D(SetEndLimitsJob);
    if (d->limit == limit)
        return;
    d->limit = limit;
    Q_EMIT limitChanged(limit);
}

int SetEndLimitsJob::delta() const
{
    return d_func()->delta;
}

void SetEndLimitsJob::setDelta(int delta)
{
    Q_D(SetEndLimitsJob);
    if (d->delta == delta)
        return;
    d->delta = delta;
    Q_EMIT deltaChanged(delta);
}
