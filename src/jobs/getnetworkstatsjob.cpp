#include "getnetworkstatsjob.h"

GetNetworkStatsJob::GetNetworkStatsJob(QObject* parent)
    : QmlJob(parent)
{
}

GetNetworkStatsJob::~GetNetworkStatsJob() = default;
