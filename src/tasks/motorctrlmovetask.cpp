#include "motorctrlmovetask.h"
#include "motorcontroltask_p.h"

#include "taskparams_p.h"

// The duration travels in the "value" slot of the shared private part.
MotorCtrlMoveTask::MotorCtrlMoveTask(Worker&, QObject* object, const Job& job, QObject* parent)
    : MotorControlTask(object, job, parent,
                       new MotorControlTaskPrivate(
                           static_cast<unsigned char>(TaskParams::toInt(job, "command", "MotorCtrlMoveTask")),
                           static_cast<unsigned char>(TaskParams::toInt(job, "duration", "MotorCtrlMoveTask"))))
{
}

MotorCtrlMoveTask::MotorCtrlMoveTask(unsigned char command, unsigned char duration, QObject* object, QObject* parent)
    : MotorControlTask(QStringLiteral("MotorCtrlMoveJob"), object, parent,
                       new MotorControlTaskPrivate(command, duration))
{
}

MotorCtrlMoveTask::~MotorCtrlMoveTask() = default;

void MotorCtrlMoveTask::start()
{
    Q_D(MotorControlTask);
    DTSMotorProxy& motor = *node();
    const auto duration = static_cast<unsigned char>(d->value);
    switch (d->command) {
    case DTSMotor::MoveDown:
    case DTSMotor::MoveUp:
        watch(motor.ctrlMove(DTSMotor::MoveFunction(d->command), duration, DTSMotor::SpeedSlow));
        return;
    }
    watch(motor.ctrlStop(0xFF));
}
