#ifndef GETNETWORKSTATSTASK_H
#define GETNETWORKSTATSTASK_H

#include "objecttask.h"

class GetNetworkStatsTaskPrivate;

/// Reads a node's traffic and error counters, two requests in a chain:
///
///     getNetworkStat -> getNetworkErrorStat -> end
///
/// with the usual checks on each reply. A traffic reply that does not parse
/// is an "Unexpected reply(%1)"; an error reply that does not parse fails
/// with "GetNetworkErrorStat failed". Both counters are written together at
/// the end, into a copy of the proxy runtime record (other fields carried
/// over); a failure writes nothing.
class GetNetworkStatsTask : public ObjectTask<RuntimeData, StdRuntimeTraits>
{
    Q_OBJECT

public:
    GetNetworkStatsTask(Worker& worker, QObject* object, const Job& job, QObject* parent = nullptr);
    explicit GetNetworkStatsTask(QObject* object, QObject* parent = nullptr);
    ~GetNetworkStatsTask() override;

public Q_SLOTS:
    void getNetworkStat();
    void getNetworkErrorStat();
    void end();

protected:
    void start() override {}

private:
    void buildMachine();
    Q_DECLARE_PRIVATE(GetNetworkStatsTask)
};

#endif // GETNETWORKSTATSTASK_H
