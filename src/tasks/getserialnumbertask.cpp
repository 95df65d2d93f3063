#include "getserialnumbertask.h"

#include "dts.h"

GetSerialNumberTask::GetSerialNumberTask(Worker&, QObject* object, const Job& job, QObject* parent)
    : ReadTask(object, job, parent)
{
}

BusPendingCall GetSerialNumberTask::request(DTSStdProxy& node)
{
    return node.getNodeSerialNumber();
}

bool GetSerialNumberTask::parse(const DTSStdProxy& node, const BusMessage& reply, StdConfigData& proxy)
{
    return node.getNodeSerialNumberReply(reply, proxy.data().serialNumber);
}

bool GetSerialNumberTask::isKnown(const StdConfigData& record) const
{
    return !record.getConstData().serialNumber.isEmpty();
}

void GetSerialNumberTask::seed(const StdConfigData& from, StdConfigData& to) const
{
    to.data().serialNumber = from.getConstData().serialNumber;
}

quint8 GetSerialNumberTask::expectedReply() const
{
    return DTS::PostNodeSerialNumber;
}
