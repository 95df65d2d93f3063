#include "getdirectiontask.h"

#include "dts.h"

GetDirectionTask::GetDirectionTask(Worker&, QObject* object, const Job& job, QObject* parent)
    : ReadTask(object, job, parent)
{
}

GetDirectionTask::GetDirectionTask(QObject* object, QObject* parent)
    : ReadTask(QStringLiteral("GetDirectionJob"), object, parent)
{
}

BusPendingCall GetDirectionTask::request(DTSMotorProxy& node)
{
    return node.getMotorDirection();
}

bool GetDirectionTask::parse(const DTSMotorProxy& node, const BusMessage& reply, MotorConfigData& proxy)
{
    DTSMotor::TurnDirection direction = DTSMotor::DirectionStandard;
    if (!node.getMotorDirectionReply(reply, direction))
        return false;
    proxy.data().rotDirection = direction;
    return true;
}

bool GetDirectionTask::isKnown(const MotorConfigData& record) const
{
    return record.isDirectionValid();
}

void GetDirectionTask::seed(const MotorConfigData& from, MotorConfigData& to) const
{
    to.data().rotDirection = from.getConstData().rotDirection;
}

quint8 GetDirectionTask::expectedReply() const
{
    return DTS::PostMotorDirection;
}
