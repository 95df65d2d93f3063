#include "motorcontroltask.h"
#include "motorcontroltask_p.h"

#include "taskparams_p.h"

namespace {
constexpr unsigned char Reserved = 0xFF;
} // namespace

MotorControlTask::MotorControlTask(Worker&, QObject* object, const Job& job, QObject* parent)
    : MotorControlTask(object, job, parent,
                       new MotorControlTaskPrivate(
                           static_cast<unsigned char>(TaskParams::toInt(job, "command", "MotorControlTask")),
                           static_cast<unsigned short>(TaskParams::toInt(job, "value", "MotorControlTask"))))
{
}

MotorControlTask::MotorControlTask(unsigned char command, unsigned short value, QObject* object, QObject* parent)
    : MotorControlTask(QStringLiteral("MotorControlJob"), object, parent, new MotorControlTaskPrivate(command, value))
{
}

MotorControlTask::MotorControlTask(QObject* object, const Job& job, QObject* parent, MotorControlTaskPrivate* dd)
    : WriteTask(object, job, parent, dd)
{
}

MotorControlTask::MotorControlTask(const QString& jobName, QObject* object, QObject* parent,
                                   MotorControlTaskPrivate* dd)
    : WriteTask(jobName, object, parent, dd)
{
}

MotorControlTask::~MotorControlTask() = default;

bool MotorControlTask::isKnownCommand(int command)
{
    switch (command) {
    case ToDownLimit: case ToUpLimit: case ToIP: case ToPulse: case ToPercent:
    case NextIPDown: case NextIPUp: case Stop:
        return true;
    }
    return false;
}

bool MotorControlTask::checkRequestStep()
{
    return checkObjectAs("VRNMotorObject has been destroyed", "VRNMotorObject has no proxy");
}

void MotorControlTask::start()
{
    Q_D(MotorControlTask);
    DTSMotorProxy& motor = *node();
    switch (d->command) {
    case ToDownLimit:
    case ToUpLimit:
        watch(motor.ctrlMoveTo(DTSMotor::MoveToFunction(d->command), 0, Reserved));
        return;
    case ToIP:
    case ToPulse:
    case ToPercent:
        watch(motor.ctrlMoveTo(DTSMotor::MoveToFunction(d->command), d->value, Reserved));
        return;
    case NextIPDown:
    case NextIPUp:
        watch(motor.ctrlMoveOf(DTSMotor::MoveOfFunction(d->command - NextIPDown), 0, Reserved));
        return;
    case Stop:
        watch(motor.ctrlStop(Reserved));
        return;
    }
    // Deliberately nothing: an unknown command leaves the task running.
}

QString MotorControlTask::failedText() const
{
    return tr("MotorControlTask failed");
}
