#ifndef STDSETNODEDISCOVERYTASK_H
#define STDSETNODEDISCOVERYTASK_H

#include "writetask.h"

class StdSetNodeDiscoveryTaskPrivate;

/// Sets (job property "enabled" false) or clears (true) the discovery mark
/// of a node in one exchange; a marked node stops answering the discovery's
/// address requests. The records are left alone.
class StdSetNodeDiscoveryTask : public WriteTask<StdConfigData>
{
    Q_OBJECT

public:
    StdSetNodeDiscoveryTask(Worker& worker, QObject* object, const Job& job, QObject* parent = nullptr);
    StdSetNodeDiscoveryTask(bool enabled, QObject* object, QObject* parent = nullptr);
    ~StdSetNodeDiscoveryTask() override;

protected:
    BusPendingCall request(DTSStdProxy& node) override;

private:
    Q_DECLARE_PRIVATE(StdSetNodeDiscoveryTask)
};

#endif // STDSETNODEDISCOVERYTASK_H
