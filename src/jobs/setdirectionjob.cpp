#include "setdirectionjob.h"
#include "setdirectionjob_p.h"

SetDirectionJob::SetDirectionJob(QObject* parent)
    : QmlJob(parent)
    , d_ptr(new SetDirectionJobPrivate)
{
}

SetDirectionJob::~SetDirectionJob() = default;

int SetDirectionJob::direction() const
{
    return d_func()->direction;
}

void SetDirectionJob::setDirection(int direction)
{
    Q_D(SetDirectionJob);
    if (d->direction == direction)
        return;
    d->direction = direction;
    Q_EMIT directionChanged(direction);
}
