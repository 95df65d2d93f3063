#include "getendlimitstask.h"

#include "dts.h"

GetEndLimitsTask::GetEndLimitsTask(Worker&, QObject* object, const Job& job, QObject* parent)
    : ReadTask(object, job, parent)
{
}

GetEndLimitsTask::GetEndLimitsTask(QObject* object, QObject* parent)
    : ReadTask(QStringLiteral("GetEndLimitsJob"), object, parent)
{
}

BusPendingCall GetEndLimitsTask::request(DTSMotorProxy& node)
{
    return node.getMotorLimits();
}

bool GetEndLimitsTask::parse(const DTSMotorProxy& node, const BusMessage& reply, MotorConfigData& proxy)
{
    MotorConfigDataData& data = proxy.data();
    return node.getMotorLimitsReply(reply, data.upEndLimit, data.downEndLimit);
}

bool GetEndLimitsTask::isKnown(const MotorConfigData& record) const
{
    return record.isEndLimitsValid();
}

void GetEndLimitsTask::seed(const MotorConfigData& from, MotorConfigData& to) const
{
    to.data().upEndLimit = from.getConstData().upEndLimit;
    to.data().downEndLimit = from.getConstData().downEndLimit;
}

quint8 GetEndLimitsTask::expectedReply() const
{
    return DTS::PostMotorLimits;
}

QString GetEndLimitsTask::failedText() const
{
    return tr("GetDirectionTask failed");
}
