#include "getlabeltask.h"

#include "dts.h"

GetLabelTask::GetLabelTask(Worker&, QObject* object, const Job& job, QObject* parent)
    : ReadTask(object, job, parent)
{
}

GetLabelTask::GetLabelTask(QObject* object, QObject* parent)
    : ReadTask(QStringLiteral("GetLabelJob"), object, parent)
{
}

BusPendingCall GetLabelTask::request(DTSStdProxy& node)
{
    return node.getNodeLabel();
}

bool GetLabelTask::parse(const DTSStdProxy& node, const BusMessage& reply, StdConfigData& proxy)
{
    return node.getNodeLabelReply(reply, proxy.data().label);
}

bool GetLabelTask::isKnown(const StdConfigData& record) const
{
    return record.isLabelValid();
}

void GetLabelTask::seed(const StdConfigData& from, StdConfigData& to) const
{
    to.data().label = from.getConstData().label;
}

quint8 GetLabelTask::expectedReply() const
{
    return DTS::PostNodeLabel;
}
