#include "setrampjob.h"
#include "setrampjob_p.h"

SetRampJob::SetRampJob(QObject* parent)
    : QmlJob(parent)
    , d_ptr(new SetRampJobPrivate)
{
}

SetRampJob::~SetRampJob() = default;

int SetRampJob::softStartStatus() const
{
    return d_func()->softStartStatus;
}

void SetRampJob::setSoftStartStatus(int softStartStatus)
{
    Q_D(SetRampJob);
    if (d->softStartStatus == softStartStatus)
        return;
    d->softStartStatus = softStartStatus;
    Q_EMIT softStartStatusChanged(softStartStatus);
}

int SetRampJob::softStartValue() const
{
    return d_func()->softStartValue;
}

void SetRampJob::setSoftStartValue(int softStartValue)
{
    Q_D(SetRampJob);
    if (d->softStartValue == softStartValue)
        return;
    d->softStartValue = softStartValue;
    Q_EMIT softStartValueChanged(softStartValue);
}

int SetRampJob::softStopStatus() const
{
    return d_func()->softStopStatus;
}

void SetRampJob::setSoftStopStatus(int softStopStatus)
{
    Q_D(SetRampJob);
    if (d->softStopStatus == softStopStatus)
        return;
    d->softStopStatus = softStopStatus;
    Q_EMIT softStopStatusChanged(softStopStatus);
}

int SetRampJob::softStopValue() const
{
    return d_func()->softStopValue;
}

void SetRampJob::setSoftStopValue(int softStopValue)
{
    Q_D(SetRampJob);
    if (d->softStopValue == softStopValue)
        return;
    d->softStopValue = softStopValue;
    Q_EMIT softStopValueChanged(softStopValue);
}

int SetRampJob::ramps() const
{
    return d_func()->ramps;
}

void SetRampJob::setRamps(int ramps)
{
    Q_D(SetRampJob);
    if (d->ramps == ramps)
        return;
    d->ramps = ramps;
    Q_EMIT rampsChanged(ramps);
}
