#include "setendlimitstask.h"

#include "devicetask_p.h"
#include "dts.h"
#include "taskparams_p.h"
#include "vrnmessage.h"

class SetEndLimitsTaskPrivate : public DeviceTaskPrivate
{
public:
    SetEndLimitsTaskPrivate(int command, int limit, int delta)
        : function(command == DTSMotor::LimitAtCurrent || command == DTSMotor::LimitAdjust
                       ? DTSMotor::LimitFunction(command) : DTSMotor::LimitSetValue)
        , limit(limit == 1 ? DTSMotor::LimitUp : DTSMotor::LimitDown)
        , delta(static_cast<unsigned short>(delta))
    {
    }
    const DTSMotor::LimitFunction function;
    const DTSMotor::Limit limit;
    const unsigned short delta;
    QState* request = nullptr;
};

SetEndLimitsTask::SetEndLimitsTask(Worker&, QObject* object, const Job& job, QObject* parent)
    : ObjectTask(object, job, parent,
                 new SetEndLimitsTaskPrivate(TaskParams::toInt(job, "command", "SetEndLimitsTask"),
                                             TaskParams::toInt(job, "limit", "SetEndLimitsTask"),
                                             TaskParams::toInt(job, "delta", "SetEndLimitsTask")))
{
    buildMachine();
}

SetEndLimitsTask::SetEndLimitsTask(int command, int limit, unsigned short delta, QObject* object, QObject* parent)
    : ObjectTask(QStringLiteral("SetEndLimitsJob"), object, parent, new SetEndLimitsTaskPrivate(command, limit, delta))
{
    buildMachine();
}

SetEndLimitsTask::~SetEndLimitsTask() = default;

void SetEndLimitsTask::buildMachine()
{
    Q_D(SetEndLimitsTask);
    d->request = addStep(&SetEndLimitsTask::setLimit);
    QState* refresh = addStep(&SetEndLimitsTask::refreshLimit);
    leaveOnReply(d->request, refresh);
    leaveOnReply(refresh, addEnd(&SetEndLimitsTask::end));
}

void SetEndLimitsTask::setLimit()
{
    Q_D(SetEndLimitsTask);
    if (checkObjectAs("VRNMotorObject has been destroyed", "VRNMotorObject has no proxy"))
        watch(node()->setMotorLimits(d->function, d->limit, d->delta));
}

void SetEndLimitsTask::refreshLimit()
{
    // The write's reply has passed its checks (onReply) before this state is entered.
    if (checkObject())
        watch(node()->getMotorLimits());
}

void SetEndLimitsTask::end()
{
    finish();
}

void SetEndLimitsTask::onReply(const VRNMessage& reply)
{
    Q_D(SetEndLimitsTask);
    if (isIn(d->request)) {
        acceptAck(reply);
        return;
    }
    VRNMotorObject& motor = *object();
    MotorConfigData proxy = motor.proxyMotorConfig();
    MotorConfigDataData& limits = proxy.data();
    if (!node()->getMotorLimitsReply(reply, limits.upEndLimit, limits.downEndLimit)) {
        failUnexpected(reply);
        return;
    }
    motor.updateProxyMotorConfig(proxy);
    MotorConfigData local = motor.localMotorConfig();
    local.data().upEndLimit = limits.upEndLimit;
    local.data().downEndLimit = limits.downEndLimit;
    motor.updateLocalMotorConfig(local, false);
}

quint8 SetEndLimitsTask::expectedReply() const
{
    return DTS::PostMotorIP;
}

QString SetEndLimitsTask::failedText() const
{
    return tr("GetMotorIpsTask failed");
}
