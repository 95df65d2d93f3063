#ifndef SETNETWORKSTATSTASK_H
#define SETNETWORKSTATSTASK_H

#include "objecttask.h"

class SetNetworkStatsTaskPrivate;

/// Resets a node's network statistics and reads the reset counters back.
/// Job property "stats" (`SetNetworkStatsJob::Stats`): 0 the traffic
/// counters, 1 the error counters, 2 both; any other value fails with
/// "Internal error(unknown statistics %1)" before anything is sent.
///
/// The graph (`setNetworkStat(counters, value)`, value 0 clears):
///
///     resetNetwork --resetNetworkSignal--> resetNetworkStats (0,0) --+
///                  --resetErrorsSignal-->  resetErrorStats (1,0)   --+--> guardUpdate
///                  --resetAllSignal-->     resetAllStats (2,0)     --+
///     guardUpdate  --updateNetworkSignal--> updateNetworkStats --> guardUpdate
///                  --updateErrorsSignal-->  updateErrorStats   --> guardUpdate
///                  --doneSignal--> end
///
/// The guard reads back what was reset, traffic first, each counter set
/// once: the update steps store what they read in a copy of the proxy
/// runtime record at once (other fields carried over), so that the record
/// shows the node's counters even when a later read fails. A reset that
/// fails writes nothing.
class SetNetworkStatsTask : public ObjectTask<RuntimeData, StdRuntimeTraits>
{
    Q_OBJECT

public:
    SetNetworkStatsTask(Worker& worker, QObject* object, const Job& job, QObject* parent = nullptr);
    /// `stats`: a `SetNetworkStatsJob::Stats` value.
    SetNetworkStatsTask(int stats, QObject* object, QObject* parent = nullptr);
    ~SetNetworkStatsTask() override;

Q_SIGNALS:
    void resetNetworkSignal();
    void resetErrorsSignal();
    void resetAllSignal();
    void updateNetworkSignal();
    void updateErrorsSignal();
    void doneSignal();

public Q_SLOTS:
    void resetNetwork();
    void resetErrorStats();
    void resetAllStats();
    void resetNetworkStats();
    void guardUpdate();
    void updateNetworkStats();
    void updateErrorStats();
    void end();

protected:
    void start() override {}

private:
    void buildMachine();
    void reset(unsigned char counters);
    /// Sends `call` and stores the counters `parse` reads into `field` of the
    /// proxy runtime record; `read` is set once they are stored.
    template <class Stat>
    void readBack(const BusPendingCall& call, quint8 expected,
                  bool (DTSStdProxy::*parse)(const BusMessage&, Stat&) const, Stat RuntimeDataData::*field,
                  bool& read);
    Q_DECLARE_PRIVATE(SetNetworkStatsTask)
};

#endif // SETNETWORKSTATSTASK_H
