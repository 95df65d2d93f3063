#include "setspeedjob.h"
#include "setspeedjob_p.h"

SetSpeedJob::SetSpeedJob(QObject* parent)
    : QmlJob(parent)
    , d_ptr(new SetSpeedJobPrivate)
{
}

SetSpeedJob::~SetSpeedJob() = default;

int SetSpeedJob::upSpeed() const
{
    return d_func()->upSpeed;
}

void SetSpeedJob::setUpSpeed(int upSpeed)
{
    Q_D(SetSpeedJob);
    if (d->upSpeed == upSpeed)
        return;
    d->upSpeed = upSpeed;
    Q_EMIT upSpeedChanged(upSpeed);
}

int SetSpeedJob::downSpeed() const
{
    return d_func()->downSpeed;
}

void SetSpeedJob::setDownSpeed(int downSpeed)
{
    Q_D(SetSpeedJob);
    if (d->downSpeed == downSpeed)
        return;
    d->downSpeed = downSpeed;
    Q_EMIT downSpeedChanged(downSpeed);
}

int SetSpeedJob::slowSpeed() const
{
    return d_func()->slowSpeed;
}

void SetSpeedJob::setSlowSpeed(int slowSpeed)
{
    Q_D(SetSpeedJob);
    if (d->slowSpeed == slowSpeed)
        return;
    d->slowSpeed = slowSpeed;
    Q_EMIT slowSpeedChanged(slowSpeed);
}
