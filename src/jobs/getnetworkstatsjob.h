#ifndef GETNETWORKSTATSJOB_H
#define GETNETWORKSTATSJOB_H

#include "qmljob.h"

/// Reads a node's traffic and error counters into its runtime record.
class GetNetworkStatsJob : public QmlJob
{
    Q_OBJECT

public:
    Q_INVOKABLE explicit GetNetworkStatsJob(QObject* parent = nullptr);
    ~GetNetworkStatsJob() override;

private:
    Q_DISABLE_COPY(GetNetworkStatsJob)
};

#endif // GETNETWORKSTATSJOB_H
