// Internal header of the device tasks, not API: may change without notice.
#ifndef BUSDISCOVERTASK_P_H
#define BUSDISCOVERTASK_P_H

#include "busdiscovertask.h"

#include "buspendingcallwatcher.h"
#include "setnodediscoveryjob.h"
#include "vrnbus.h"
#include "vrnobjectworker.h"

#include <QMap>
#include <QPointer>
#include <QSharedPointer>
#include <QStateMachine>

#include <functional>

class VRNDataWriter;

class BusDiscoverTaskPrivate
{
    Q_DECLARE_PUBLIC(BusDiscoverTask)

public:
    explicit BusDiscoverTaskPrivate(BusDiscoverTask* q) : q_ptr(q) {}

    /// Sends broadcast request `cmd` with the payload `fill` wrote; false
    /// (and the task failed) when there is no bus.
    bool broadcast(quint8 cmd, const std::function<void(VRNDataWriter&)>& fill = {});
    /// Queues `nodeJob` with `enabled` on the worker of the device `uuid`;
    /// false when the device has no worker.
    bool queueNodeJob(VRNObject::UUID uuid, bool enabled);
    /// The identity of a new row for node `addr`; `BusDiscoverTask::NoObject`
    /// when the factory makes none (the node is listed already, or the
    /// registry fails).
    VRNObject::UUID registerNode(VRN::Addr addr);

    BusDiscoverTask* q_ptr;
    QPointer<VRNBus> bus;
    QStateMachine machine;
    BusPendingCallWatcher watcher;
    QList<unsigned int> pendingAddrs;
    SetNodeDiscoveryJob nodeJob;
    QMap<unsigned int, unsigned int> discovered;
    bool newNodeFound = false;
    int idleRounds = 0;
    int rounds = 0;
    /// The factory holds workers weakly: the worker running `nodeJob` is
    /// kept alive here until the next node's worker replaces it.
    QSharedPointer<VRNObjectWorker> nodeWorker;
};

#endif // BUSDISCOVERTASK_P_H
