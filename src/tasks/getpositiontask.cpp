#include "getpositiontask.h"

#include "dts.h"

GetPositionTask::GetPositionTask(Worker&, QObject* object, const Job& job, QObject* parent)
    : ReadTask(object, job, parent)
{
}

GetPositionTask::GetPositionTask(QObject* object, QObject* parent)
    : ReadTask(QStringLiteral("GetPositionJob"), object, parent)
{
}

BusPendingCall GetPositionTask::request(DTSMotorProxy& node)
{
    return node.getMotorPosition();
}

bool GetPositionTask::parse(const DTSMotorProxy& node, const BusMessage& reply, RuntimeData& proxy)
{
    unsigned short pulse = 0;
    unsigned char pct = 0;
    unsigned char tilt = 0;
    unsigned char ip = 0;
    if (!node.getMotorPositionReply(reply, pulse, pct, tilt, ip))
        return false;
    proxy.data().posPulse = pulse;
    proxy.data().posPCent = pct;
    return true;
}

quint8 GetPositionTask::expectedReply() const
{
    return DTS::PostMotorPosition;
}

QString GetPositionTask::failedText() const
{
    return tr("GetDirectionTask failed");
}
