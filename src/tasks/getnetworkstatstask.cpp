#include "getnetworkstatstask.h"

#include "devicetask_p.h"
#include "dts.h"

#include <QState>

class GetNetworkStatsTaskPrivate : public DeviceTaskPrivate
{
public:
    DTSStdProxy::NetworkStat stat;
    DTSStdProxy::NetworkErrorStat errorStat;
};

GetNetworkStatsTask::GetNetworkStatsTask(Worker&, QObject* object, const Job& job, QObject* parent)
    : ObjectTask(object, job, parent, new GetNetworkStatsTaskPrivate)
{
    buildMachine();
}

GetNetworkStatsTask::GetNetworkStatsTask(QObject* object, QObject* parent)
    : ObjectTask(QStringLiteral("GetNetworkStatsJob"), object, parent, new GetNetworkStatsTaskPrivate)
{
    buildMachine();
}

GetNetworkStatsTask::~GetNetworkStatsTask() = default;

void GetNetworkStatsTask::buildMachine()
{
    chainOnReply({addStep(&GetNetworkStatsTask::getNetworkStat), addStep(&GetNetworkStatsTask::getNetworkErrorStat)},
                 addEnd(&GetNetworkStatsTask::end));
}

void GetNetworkStatsTask::getNetworkStat()
{
    Q_D(GetNetworkStatsTask);
    if (checkObject())
        sendStep(node()->getNetworkStat(), DTS::PostNetworkStat, [this, d](const BusMessage& m) {
            return node()->getNetworkStatReply(m, d->stat);
        });
}

void GetNetworkStatsTask::getNetworkErrorStat()
{
    Q_D(GetNetworkStatsTask);
    if (checkObject())
        sendStep(node()->getNetworkErrorStat(), DTS::PostNetworkErrorStat, [this, d](const BusMessage& m) {
            if (node()->getNetworkErrorStatReply(m, d->errorStat))
                return true;
            fail(tr("GetNetworkErrorStat failed"));
            return false;
        });
}

void GetNetworkStatsTask::end()
{
    Q_D(GetNetworkStatsTask);
    if (!checkObject())
        return;
    VRNStdObject& std = *object();
    RuntimeData runtime = std.proxyRuntime();
    runtime.data().networkStat = d->stat;
    runtime.data().networkErrorStat = d->errorStat;
    std.updateProxyRuntime(runtime);
    finish();
}
