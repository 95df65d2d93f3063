#include "setmotoriptask.h"

#include "devicetask_p.h"
#include "dts.h"
#include "taskparams_p.h"
#include "vrnmessage.h"

class SetMotorIpTaskPrivate : public DeviceTaskPrivate
{
public:
    SetMotorIpTaskPrivate(int function, int index, int value)
        : function(DTSMotor::IPFunction(function))
        , index(static_cast<unsigned char>(index))
        , value(static_cast<unsigned short>(value))
    {
    }
    const DTSMotor::IPFunction function;
    const unsigned char index;
    const unsigned short value;
    QState* request = nullptr;
};

namespace {
void setEntry(MotorConfigData& record, int index, const MotorConfigDataData::MotorIp& ip)
{
    QList<MotorConfigDataData::MotorIp>& ips = record.data().ips;
    while (ips.size() <= index)
        ips.append(MotorConfigDataData::MotorIp());
    ips[index] = ip;
}
} // namespace

SetMotorIpTask::SetMotorIpTask(Worker&, QObject* object, const Job& job, QObject* parent)
    : ObjectTask(object, job, parent,
                 new SetMotorIpTaskPrivate(TaskParams::toInt(job, "function", "SetMotorIpTask"),
                                           TaskParams::toInt(job, "ipIndex", "SetMotorIpTask"),
                                           TaskParams::toInt(job, "value", "SetMotorIpTask")))
{
    buildMachine();
}

SetMotorIpTask::SetMotorIpTask(DTSMotor::IPFunction function, unsigned char index, unsigned short value,
                               QObject* object, QObject* parent)
    : ObjectTask(QStringLiteral("SetMotorIpJob"), object, parent, new SetMotorIpTaskPrivate(function, index, value))
{
    buildMachine();
}

SetMotorIpTask::~SetMotorIpTask() = default;

void SetMotorIpTask::buildMachine()
{
    Q_D(SetMotorIpTask);
    d->request = addStep(&SetMotorIpTask::setMotorIp);
    QState* refresh = addStep(&SetMotorIpTask::refreshMotorIp);
    leaveOnReply(d->request, refresh);
    leaveOnReply(refresh, addEnd(&SetMotorIpTask::end));
}

void SetMotorIpTask::setMotorIp()
{
    Q_D(SetMotorIpTask);
    if (checkObject())
        watch(node()->setMotorIP(d->function, d->index, d->value));
}

void SetMotorIpTask::refreshMotorIp()
{
    if (checkObject())
        watch(node()->getMotorIP(d_func()->index));
}

void SetMotorIpTask::end()
{
    finish();
}

void SetMotorIpTask::onReply(const VRNMessage& reply)
{
    Q_D(SetMotorIpTask);
    if (isIn(d->request)) {
        acceptAck(reply);
        return;
    }
    unsigned char index = 0;
    MotorConfigDataData::MotorIp ip;
    if (!node()->getMotorIPReply(reply, index, ip.pulse, ip.pct) || index != d->index) {
        failUnexpected(reply);
        return;
    }
    VRNMotorObject& motor = *object();
    MotorConfigData proxy = motor.proxyMotorConfig();
    setEntry(proxy, index, ip);
    motor.updateProxyMotorConfig(proxy);
    MotorConfigData local = motor.localMotorConfig();
    setEntry(local, index, ip);
    motor.updateLocalMotorConfig(local, false);
}

quint8 SetMotorIpTask::expectedReply() const
{
    return DTS::PostMotorIP;
}

QString SetMotorIpTask::failedText() const
{
    return tr("GetMotorIpsTask failed");
}
