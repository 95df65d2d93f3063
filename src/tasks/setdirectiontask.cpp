#include "setdirectiontask.h"

#include "devicetask_p.h"
#include "taskparams_p.h"

class SetDirectionTaskPrivate : public DeviceTaskPrivate
{
public:
    explicit SetDirectionTaskPrivate(DTSMotor::TurnDirection direction) : direction(direction) {}
    const DTSMotor::TurnDirection direction;
};

SetDirectionTask::SetDirectionTask(Worker&, QObject* object, const Job& job, QObject* parent)
    : WriteTask(object, job, parent,
                new SetDirectionTaskPrivate(
                    DTSMotor::TurnDirection(TaskParams::toInt(job, "direction", "SetDirectionTask"))))
{
}

SetDirectionTask::SetDirectionTask(DTSMotor::TurnDirection direction, QObject* object, QObject* parent)
    : WriteTask(QStringLiteral("SetDirectionJob"), object, parent, new SetDirectionTaskPrivate(direction))
{
}

SetDirectionTask::~SetDirectionTask() = default;

BusPendingCall SetDirectionTask::request(DTSMotorProxy& node)
{
    return node.setMotorDirection(d_func()->direction);
}

bool SetDirectionTask::apply(MotorConfigData& local) const
{
    local.data().rotDirection = d_func()->direction;
    return true;
}
