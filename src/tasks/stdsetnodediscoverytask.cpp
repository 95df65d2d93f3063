#include "stdsetnodediscoverytask.h"
#include "stdsetnodediscoverytask_p.h"

StdSetNodeDiscoveryTask::StdSetNodeDiscoveryTask(Worker&, QObject* object, const Job& job, QObject* parent)
    : WriteTask(object, job, parent, new StdSetNodeDiscoveryTaskPrivate(job.property("enabled").toBool()))
{
}

StdSetNodeDiscoveryTask::StdSetNodeDiscoveryTask(bool enabled, QObject* object, QObject* parent)
    : WriteTask(QStringLiteral("SetNodeDiscoveryJob"), object, parent, new StdSetNodeDiscoveryTaskPrivate(enabled))
{
}

StdSetNodeDiscoveryTask::~StdSetNodeDiscoveryTask() = default;

BusPendingCall StdSetNodeDiscoveryTask::request(DTSStdProxy& node)
{
    return node.setNodeDiscovery(!d_func()->enabled);
}
