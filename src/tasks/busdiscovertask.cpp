#include "busdiscovertask.h"
#include "busdiscovertask_p.h"

#include "dts.h"
#include "jobmonitorstate.h"
#include "objectfactory.h"
#include "vrncall.h"
#include "vrndatawriter.h"
#include "workqueue.h"

#include <QDebug>
#include <QFinalState>
#include <QSignalTransition>
#include <QTimer>

#include <functional>

namespace {
QString hexAddr(unsigned int addr)
{
    return QStringLiteral("0x%1").arg(addr, 8, 16, QLatin1Char('0'));
}
} // namespace

bool BusDiscoverTaskPrivate::broadcast(quint8 cmd, const std::function<void(VRNDataWriter&)>& fill)
{
    Q_Q(BusDiscoverTask);
    if (!bus) {
        q->fail(BusDiscoverTask::tr("bus not available"));
        return false;
    }
    VRNCall call(DTS::cmds().value(cmd), VRN::makeAddr(VRN::NodeAll, 1), VRN::AddrBroadcast, 0xFF);
    if (fill) {
        VRNDataWriter writer(call);
        fill(writer);
    }
    call.setAck(false);
    call.prepare();
    watcher = bus->call(call);
    return true;
}

VRNObject::UUID BusDiscoverTaskPrivate::registerNode(VRN::Addr addr)
{
    const VRNObject::Type type = BusDiscoverTask::deviceType(VRN::getType(addr));
    // The registry's nodeID column holds the 24-bit node number, the node
    // type having a column of its own: the full address would put the type
    // byte into every node id, and two nodes of one number but different
    // types could not be told from the rows of one type.
    const unsigned int number = VRN::getNumber(addr);
    const QSharedPointer<VRNObject> object = ObjectFactory::instance()->createObject(type, number, false);
    return object ? object->uuid() : BusDiscoverTask::NoObject;
}

bool BusDiscoverTaskPrivate::queueNodeJob(VRNObject::UUID uuid, bool enabled)
{
    const QSharedPointer<VRNObjectWorker> worker = ObjectFactory::instance()->objectWorker(uuid);
    if (!worker)
        return false;
    // The previous worker may be on the call stack that reports its job's
    // end (this function runs from there): it is let go from the event loop.
    QTimer::singleShot(0, [previous = nodeWorker] {});
    nodeWorker = worker;
    nodeJob.setEnabled(enabled);
    return worker->queue()->enqueue(nodeJob, 0);
}

BusDiscoverTask::BusDiscoverTask(Worker&, QObject* object, const Job& job, QObject* parent)
    : Task(job, parent)
    , d_ptr(new BusDiscoverTaskPrivate(this))
{
    Q_D(BusDiscoverTask);
    d->bus = qobject_cast<VRNBus*>(object);

    QStateMachine* m = &d->machine;
    auto* deaf = new QState(m);
    auto* clear = new QState(m);
    auto* collect = new QState(m);
    auto* mark = new JobMonitorState(d->nodeJob, nullptr, false, m);
    auto* release = new JobMonitorState(d->nodeJob, nullptr, false, m);
    auto* done = new QFinalState(m);
    m->setInitialState(deaf);

    connect(deaf, &QState::entered, this, &BusDiscoverTask::setDeafMode);
    deaf->addTransition(&d->watcher, &BusPendingCallWatcher::finished, clear);
    connect(clear, &QState::entered, this, &BusDiscoverTask::clearDiscoverBCast);
    clear->addTransition(&d->watcher, &BusPendingCallWatcher::finished, collect);
    connect(collect, &QState::entered, this, &BusDiscoverTask::getNodeAddrs);
    // The answers are read on the way out of a round's collection, not when
    // the quiet network leaves for the release step: that has no call of its own.
    auto* collected = collect->addTransition(&d->watcher, &BusPendingCallWatcher::finished, mark);
    connect(collected, &QAbstractTransition::triggered, this, &BusDiscoverTask::getNodeAddrsFinish);
    collect->addTransition(this, &BusDiscoverTask::stateNext, release);
    connect(mark->idleState(), &QState::entered, this, &BusDiscoverTask::nodeSetDiscover);
    mark->addTransition(this, &BusDiscoverTask::stateNext, collect);
    connect(release->idleState(), &QState::entered, this, &BusDiscoverTask::nodeClearDiscover);
    auto* released = release->addTransition(this, &BusDiscoverTask::stateNext, done);
    connect(released, &QAbstractTransition::triggered, this, &BusDiscoverTask::nodeClearDiscoverFinish);

    connect(this, &Task::finished, m, &QStateMachine::stop);
}

BusDiscoverTask::~BusDiscoverTask()
{
    Q_D(BusDiscoverTask);
    d->machine.stop();
    d->nodeJob.disconnect();
}

void BusDiscoverTask::run()
{
    setState(Job::Running);
    d_func()->machine.start();
}

QList<unsigned int> BusDiscoverTask::answeredNodes() const
{
    return d_func()->discovered.keys();
}

void BusDiscoverTask::abort()
{
    Q_D(BusDiscoverTask);
    d->machine.stop();
    d->watcher.call().cancel();
    if (d->nodeWorker)
        d->nodeWorker->queue()->dequeue(d->nodeJob);
    Task::abort();
}

VRNObject::Type BusDiscoverTask::deviceType(VRN::NodeType nodeType)
{
    static const VRNObject::Type table[] = {
        VRNObject::DtsMotor, VRNObject::TX30, VRNObject::DtsStd, VRNObject::DtsStd,
        VRNObject::DtsStd, VRNObject::DtsMotor, VRNObject::LRU50, VRNObject::TX50DC,
    };
    return nodeType >= 1 && nodeType <= 8 ? table[nodeType - 1] : VRNObject::DtsStd;
}

void BusDiscoverTask::setDeafMode()
{
    if (!isRunning())
        return;
    // Every node (0xFFFFFF) listens only to configuration tools until told
    // otherwise (0xFFFF), so no keypad disturbs the rounds.
    d_func()->broadcast(DTS::SetDeafMode, [](VRNDataWriter& w) {
        w.writeUint8(0xFF).writeUint8(0xFF).writeUint8(0xFF).writeUint16(0xFFFF).writeUint8(0xFF);
    });
}

void BusDiscoverTask::clearDiscoverBCast()
{
    if (isRunning())
        d_func()->broadcast(DTS::ClearDiscovery);
}

void BusDiscoverTask::getNodeAddrs()
{
    Q_D(BusDiscoverTask);
    if (!isRunning())
        return;
    if (d->idleRounds < MaxIdleRounds) {
        d->newNodeFound = false;
        d->broadcast(DTS::GetNodeAddr);
        return;
    }
    d->pendingAddrs = d->discovered.keys();
    Q_EMIT stateNext();
}

void BusDiscoverTask::getNodeAddrsFinish()
{
    Q_D(BusDiscoverTask);
    if (!isRunning())
        return;
    if (d->watcher.error() != BusPendingCall::NoError) {
        fail(tr("Discover failed (%1)").arg(int(d->watcher.error())));
        return;
    }
    const QList<BusMessage> replies = d->watcher.replies();
    for (const BusMessage& reply : replies) {
        const VRNMessage message(reply);
        if (!message.isValid()) {
            qWarning() << "[BusDiscoverTask]: invalid message received";
            continue;
        }
        d->pendingAddrs.append(message.srcAddr(true));
    }
}

void BusDiscoverTask::nodeSetDiscover()
{
    Q_D(BusDiscoverTask);
    if (!isRunning())
        return;
    while (!d->pendingAddrs.isEmpty()) {
        const unsigned int addr = d->pendingAddrs.takeFirst();
        if (d->discovered.contains(addr)) {
            qDebug().noquote() << "[BusDiscoverTask]: already discovered node:" << hexAddr(addr);
            continue;
        }
        qDebug().noquote() << "[BusDiscoverTask]: not yet discovered node:" << hexAddr(addr);
        d->newNodeFound = true;
        // A node whose object is not made (a node listed before included)
        // counts as found all the same, is not tried again in later rounds,
        // is not marked, and shows as NoObject in "result": deliberately.
        // `answeredNodes` tells the caller which address it was.
        const VRNObject::UUID uuid = d->registerNode(addr);
        // Aborted while the registry was busy: the next node waits for none.
        if (!isRunning())
            return;
        d->discovered.insert(addr, uuid);
        if (uuid == NoObject) {
            qWarning() << "[BusDiscoverTask]: failed to createObject";
            continue;
        }
        if (d->queueNodeJob(uuid, false))
            return;
        qWarning() << "[BusDiscoverTask]: " << "failed to retrieve objectWorker";
    }
    d->idleRounds = d->newNodeFound ? 0 : d->idleRounds + 1;
    Q_EMIT roundFinished(++d->rounds, d->discovered.size());
    Q_EMIT stateNext();
}

void BusDiscoverTask::nodeClearDiscover()
{
    Q_D(BusDiscoverTask);
    if (!isRunning())
        return;
    while (!d->pendingAddrs.isEmpty()) {
        const unsigned int addr = d->pendingAddrs.takeFirst();
        // Looked up by the full address, as the map is keyed: an address
        // cut to its low 24 bits (the node number) would never match a key,
        // since every key carries its node type in the top byte.
        if (d->queueNodeJob(d->discovered.value(addr), true))
            return;
        qWarning() << "[BusDiscoverTask]: failed to retrieve objectWorker";
    }
    Q_EMIT stateNext();
}

void BusDiscoverTask::nodeClearDiscoverFinish()
{
    Q_D(BusDiscoverTask);
    if (!isRunning())
        return;
    setResult(QVariant::fromValue(d->discovered.values()));
    Q_EMIT resultChanged();
    setState(Job::Finished);
}
