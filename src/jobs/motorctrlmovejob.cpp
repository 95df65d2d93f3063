#include "motorctrlmovejob.h"
#include "motorctrlmovejob_p.h"

MotorCtrlMoveJob::MotorCtrlMoveJob(QObject* parent)
    : QmlJob(parent)
    , d_ptr(new MotorCtrlMoveJobPrivate)
{
}

MotorCtrlMoveJob::~MotorCtrlMoveJob() = default;

int MotorCtrlMoveJob::command() const
{
    return d_func()->command;
}

void MotorCtrlMoveJob::setCommand(int command)
{
    Q_D(MotorCtrlMoveJob);
    if (d->command == command)
        return;
    d->command = command;
    Q_EMIT commandChanged(command);
}

int MotorCtrlMoveJob::duration() const
{
    return d_func()->duration;
}

void MotorCtrlMoveJob::setDuration(int duration)
{
    Q_D(MotorCtrlMoveJob);
    if (d->duration == duration)
        return;
    d->duration = duration;
    Q_EMIT durationChanged(duration);
}
