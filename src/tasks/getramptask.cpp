#include "getramptask.h"

#include "dts.h"

GetRampTask::GetRampTask(Worker&, QObject* object, const Job& job, QObject* parent)
    : ReadTask(object, job, parent)
{
}

GetRampTask::GetRampTask(QObject* object, QObject* parent)
    : ReadTask(QStringLiteral("GetRampJob"), object, parent)
{
}

BusPendingCall GetRampTask::request(DTSMotorProxy& node)
{
    return node.getMotorSoftStartStop();
}

bool GetRampTask::parse(const DTSMotorProxy& node, const BusMessage& reply, DCMotorConfigData& proxy)
{
    bool startOn = false;
    bool stopOn = false;
    DCMotorConfigDataData& data = proxy.data();
    if (!node.getMotorSoftStartStopReply(reply, startOn, data.softStartValue, stopOn, data.softStopValue))
        return false;
    data.softStartStatus = startOn;
    data.softStopStatus = stopOn;
    return true;
}

bool GetRampTask::isKnown(const DCMotorConfigData& record) const
{
    return record.isRampValid();
}

void GetRampTask::seed(const DCMotorConfigData& from, DCMotorConfigData& to) const
{
    const DCMotorConfigDataData& f = from.getConstData();
    DCMotorConfigDataData& t = to.data();
    t.softStartStatus = f.softStartStatus;
    t.softStartValue = f.softStartValue;
    t.softStopStatus = f.softStopStatus;
    t.softStopValue = f.softStopValue;
}

quint8 GetRampTask::expectedReply() const
{
    return DTS::PostMotorSoftStartStop;
}

QString GetRampTask::failedText() const
{
    return tr("GetDirectionTask failed");
}
