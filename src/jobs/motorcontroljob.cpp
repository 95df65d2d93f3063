#include "motorcontroljob.h"
#include "motorcontroljob_p.h"

MotorControlJob::MotorControlJob(QObject* parent)
    : QmlJob(parent)
    , d_ptr(new MotorControlJobPrivate)
{
}

MotorControlJob::~MotorControlJob() = default;

int MotorControlJob::command() const
{
    return d_func()->command;
}

void MotorControlJob::setCommand(int command)
{
    Q_D(MotorControlJob);
    if (d->command == command)
        return;
    d->command = command;
    Q_EMIT commandChanged(command);
}

int MotorControlJob::value() const
{
    return d_func()->value;
}

void MotorControlJob::setValue(int value)
{
    Q_D(MotorControlJob);
    if (d->value == value)
        return;
    d->value = value;
    Q_EMIT valueChanged(value);
}
