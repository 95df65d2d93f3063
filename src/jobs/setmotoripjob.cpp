#include "setmotoripjob.h"
#include "setmotoripjob_p.h"

SetMotorIpJob::SetMotorIpJob(QObject* parent)
    : QmlJob(parent)
    , d_ptr(new SetMotorIpJobPrivate)
{
}

SetMotorIpJob::~SetMotorIpJob() = default;

int SetMotorIpJob::ipIndex() const
{
    return d_func()->ipIndex;
}

void SetMotorIpJob::setIpIndex(int ipIndex)
{
    Q_D(SetMotorIpJob);
    if (d->ipIndex == ipIndex)
        return;
    d->ipIndex = ipIndex;
    Q_EMIT ipIndexChanged(ipIndex);
}

int SetMotorIpJob::function() const
{
    return d_func()->function;
}

void SetMotorIpJob::setFunction(int function)
{
    Q_D(SetMotorIpJob);
    if (d->function == function)
        return;
    d->function = function;
    Q_EMIT functionChanged(function);
}

int SetMotorIpJob::value() const
{
    return d_func()->value;
}

void SetMotorIpJob::setValue(int value)
{
    Q_D(SetMotorIpJob);
    if (d->value == value)
        return;
    d->value = value;
    Q_EMIT valueChanged(value);
}
