#include "getspeedtask.h"

#include "dts.h"

GetSpeedTask::GetSpeedTask(Worker&, QObject* object, const Job& job, QObject* parent)
    : ReadTask(object, job, parent)
{
}

GetSpeedTask::GetSpeedTask(QObject* object, QObject* parent)
    : ReadTask(QStringLiteral("GetSpeedJob"), object, parent)
{
}

BusPendingCall GetSpeedTask::request(DTSMotorProxy& node)
{
    return node.getMotorRollingSpeed();
}

bool GetSpeedTask::parse(const DTSMotorProxy& node, const BusMessage& reply, DCMotorConfigData& proxy)
{
    DCMotorConfigDataData& data = proxy.data();
    return node.getMotorRollingSpeedReply(reply, data.upRollingSpeed, data.downRollingSpeed, data.slowRollingSpeed);
}

bool GetSpeedTask::isKnown(const DCMotorConfigData& record) const
{
    return record.isSpeedValid();
}

void GetSpeedTask::seed(const DCMotorConfigData& from, DCMotorConfigData& to) const
{
    const DCMotorConfigDataData& f = from.getConstData();
    DCMotorConfigDataData& t = to.data();
    t.upRollingSpeed = f.upRollingSpeed;
    t.downRollingSpeed = f.downRollingSpeed;
    t.slowRollingSpeed = f.slowRollingSpeed;
}

quint8 GetSpeedTask::expectedReply() const
{
    return DTS::PostMotorRollingSpeed;
}

QString GetSpeedTask::failedText() const
{
    return tr("GetDirectionTask failed");
}
