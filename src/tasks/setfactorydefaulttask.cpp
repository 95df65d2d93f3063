#include "setfactorydefaulttask.h"

#include "devicetask_p.h"
#include "objectregistry.h"
#include "taskparams_p.h"

class SetFactoryDefaultTaskPrivate : public DeviceTaskPrivate
{
public:
    explicit SetFactoryDefaultTaskPrivate(int function) : function(DTSMotor::FactoryDefFunction(function)) {}
    const DTSMotor::FactoryDefFunction function;
};

SetFactoryDefaultTask::SetFactoryDefaultTask(Worker&, QObject* object, const Job& job, QObject* parent)
    : WriteTask(object, job, parent,
                new SetFactoryDefaultTaskPrivate(TaskParams::toInt(job, "command", "SetFactoryDefaultTask")))
{
}

SetFactoryDefaultTask::SetFactoryDefaultTask(DTSMotor::FactoryDefFunction function, QObject* object,
                                             QObject* parent)
    : WriteTask(QStringLiteral("SetFactoryDefaultJob"), object, parent, new SetFactoryDefaultTaskPrivate(function))
{
}

SetFactoryDefaultTask::~SetFactoryDefaultTask() = default;

bool SetFactoryDefaultTask::checkRequestStep()
{
    return checkObjectAs("VRNMotorObject has been destroyed", "VRNMotorObject has no proxy");
}

BusPendingCall SetFactoryDefaultTask::request(DTSMotorProxy& node)
{
    return node.setFactoryDefault(d_func()->function);
}

bool SetFactoryDefaultTask::apply(MotorConfigData& local) const
{
    if (d_func()->function != DTSMotor::FactoryIPs) {
        local = MotorConfigData();
        return true;
    }
    for (MotorConfigDataData::MotorIp& ip : local.data().ips)
        ip = MotorConfigDataData::MotorIp();
    return true;
}

void SetFactoryDefaultTask::onReply(const VRNMessage& reply)
{
    QPointer<VRNMotorObject> motor(object());
    WriteTask::onReply(reply);
    const DTSMotor::FactoryDefFunction function = d_func()->function;
    if (error() != Job::NoError || state() != Job::Finished || !motor
        || (function != DTSMotor::FactoryAll && function != DTSMotor::FactoryGroups))
        return;
    if (ObjectRegistry* registry = ObjectRegistry::instance())
        registry->groupSlotsKnown(motor, {});
}
