#include "getfwversiontask.h"

#include "dts.h"

GetFwVersionTask::GetFwVersionTask(Worker&, QObject* object, const Job& job, QObject* parent)
    : ReadTask(object, job, parent)
{
}

GetFwVersionTask::GetFwVersionTask(QObject* object, QObject* parent)
    : ReadTask(QStringLiteral("GetFwVersionJob"), object, parent)
{
}

BusPendingCall GetFwVersionTask::request(DTSStdProxy& node)
{
    return node.getNodeAppVersion();
}

bool GetFwVersionTask::parse(const DTSStdProxy& node, const BusMessage& reply, StdConfigData& proxy)
{
    DTSStdProxy::AppVersion version;
    if (!node.getNodeAppVersionReply(reply, version))
        return false;
    if (!version.isValid()) {
        // The misspelling belongs to the message as users and translators know it.
        fail(tr("Internal error(firwmare version is not valid)"));
        return false;
    }
    proxy.data().appVersion = version;
    return true;
}

bool GetFwVersionTask::isKnown(const StdConfigData& record) const
{
    return record.isVersionValid();
}

void GetFwVersionTask::seed(const StdConfigData& from, StdConfigData& to) const
{
    to.data().appVersion = from.getConstData().appVersion;
}

quint8 GetFwVersionTask::expectedReply() const
{
    return DTS::PostNodeAppVersion;
}
