#ifndef BUSDISCOVERTASK_H
#define BUSDISCOVERTASK_H

#include "task.h"
#include "vrnobject.h"

#include <QScopedPointer>

class BusDiscoverTaskPrivate;
class Worker;

/// Finds the nodes of the open bus, round after round, and registers each as
/// a device (`BusDiscoverJob`, bound to the bus).
///
/// A state machine of six steps: deaf mode for every node (broadcast 0x56),
/// clear every discovery mark (broadcast 0x50), then rounds of: collect the
/// addresses of the nodes that still answer (broadcast 0x40), create the
/// object of each new one through the object factory and set its discovery
/// mark with a `SetNodeDiscoveryJob` on its worker, so that it keeps quiet in
/// later rounds. After four rounds in a row without a new node the marks are
/// released again, and the result (property "result", a `QList<unsigned
/// int>`) is the identities of the devices found, in node address order.
///
/// A node whose object the factory does not make, because its row exists
/// already or the registry fails, appears in "result" as `NoObject` and is
/// never marked. `answeredNodes` lists the address of every node found, in
/// the order of "result", so that a caller can find such a node's row itself.
///
/// A node whose answers get lost in one round is found in a later one: the
/// rounds go on until the network is quiet.
class BusDiscoverTask : public Task
{
    Q_OBJECT
    /// Node addresses (`VRN::Addr`) of the nodes that answered, ascending;
    /// entry i is the node of entry i of "result"; complete at resultChanged().
    Q_PROPERTY(QList<unsigned int> answeredNodes READ answeredNodes NOTIFY resultChanged)

public:
    /// Rounds in a row without a new node that end the search.
    enum { MaxIdleRounds = 4 };
    /// Identity recorded for a node whose object could not be created.
    static constexpr VRNObject::UUID NoObject = 0xFFFFFFFF;

    /// `object` is the bus (a `VRNBus`); any other object leaves the task without a bus.
    BusDiscoverTask(Worker& worker, QObject* object, const Job& job, QObject* parent = nullptr);
    ~BusDiscoverTask() override;

    void run() override;
    /// Stops the rounds, cancels the outstanding call and takes the node job off its queue.
    void abort() override;

    /// Device kind of a node type: motors, standard nodes and the motor
    /// models by the table of the device network; any other type a standard node.
    static VRNObject::Type deviceType(VRN::NodeType nodeType);

    QList<unsigned int> answeredNodes() const;

Q_SIGNALS:
    void stateNext();
    void resultChanged();
    /// After each round of address collection and marking: the rounds run
    /// so far and the nodes found so far (for a progress display).
    void roundFinished(int round, int nodesFound);

private Q_SLOTS:
    void setDeafMode();
    void clearDiscoverBCast();
    void getNodeAddrs();
    void getNodeAddrsFinish();
    void nodeSetDiscover();
    void nodeClearDiscover();
    void nodeClearDiscoverFinish();

private:
    QScopedPointer<BusDiscoverTaskPrivate> d_ptr;
    Q_DECLARE_PRIVATE(BusDiscoverTask)
    Q_DISABLE_COPY(BusDiscoverTask)
};

#endif // BUSDISCOVERTASK_H
