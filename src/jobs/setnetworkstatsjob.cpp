#include "setnetworkstatsjob.h"
#include "setnetworkstatsjob_p.h"

SetNetworkStatsJob::SetNetworkStatsJob(QObject* parent)
    : QmlJob(parent)
    , d_ptr(new SetNetworkStatsJobPrivate)
{
}

SetNetworkStatsJob::~SetNetworkStatsJob() = default;

int SetNetworkStatsJob::stats() const
{
    return d_func()->stats;
}

void SetNetworkStatsJob::setStats(int stats)
{
    Q_D(SetNetworkStatsJob);
    if (d->stats == stats)
        return;
    d->stats = stats;
    Q_EMIT statsChanged(stats);
}
