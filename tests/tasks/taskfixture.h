#ifndef TASKFIXTURE_H
#define TASKFIXTURE_H

// Shared set-up of the task tests: a loopback wire with simulated nodes,
// short bus timings, a record of the requests sent, and a scripted peer for
// replies no well-behaved node gives.

#include "busfactory.h"
#include "busfactory_p.h"
#include "job.h"
#include "objectfactory.h"
#include "simnetwork.h"
#include "vrnloopbackbus.h"
#include "vrnmessage.h"
#include "vrnobjectworker.h"
#include "workqueue.h"

#include <QList>
#include <QPointer>
#include <QSqlDatabase>
#include <QTest>
#include <QTimer>

namespace TaskFixture {

/// A loopback bus that can hand any frame to the waiting call, as a bus of
/// another make might: lets a task meet a reply that is no valid message.
class TestBus : public VRNLoopbackBus
{
public:
    bool acceptAnyFrame = false;
    /// Hands `bytes` to the waiting call as one frame read from the wire,
    /// even none at all.
    void deliver(const QByteArray& bytes) { frameReceived(BusMessage(bytes)); }
    /// Every write fails: calls end with a write error (neither timeout nor bus failure).
    bool failWrites = false;

protected:
    bool writeFrame(const BusMessage& message) override
    {
        return !failWrites && VRNLoopbackBus::writeFrame(message);
    }
    bool isReplyTo(const BusMessage& request, const BusMessage& frame) const override
    {
        return acceptAnyFrame || VRNLoopbackBus::isReplyTo(request, frame);
    }
};

/// A frame node `src` sends to the tool.
inline QByteArray nodeFrame(quint8 cmd, VRN::Addr src, const QByteArray& payload = QByteArray())
{
    VRNMessage m(cmd, src, VRN::getNumber(VRN::ToolAddr), VRN::AddrNode, payload);
    m.prepare();
    return m.data();
}

/// The wire and what travels on it.
struct Wire
{
    /// Owned by the wire unless someone takes it over (the bus factory).
    QPointer<TestBus> bus = new TestBus;
    SimNetwork net{11};
    /// Requests written, in order.
    QList<VRNMessage> sent;
    /// Answers injected, one per request, instead of (or before) the nodes'.
    QList<QByteArray> script;

    Wire()
    {
        bus->setTimeout(40);
        bus->setBroadcastWindow(20);
        net.setReplyWindow(8);
        net.attach(bus);
        bus->open();
        QObject::connect(bus, &Bus::messageSent, [this](const BusMessage& m) { sent.append(VRNMessage(m)); });
        QObject::connect(bus, &VRNLoopbackBus::transmitted, [this](const QByteArray&) {
            if (script.isEmpty())
                return;
            const QByteArray reply = script.takeFirst();
            QTimer::singleShot(0, bus, [this, reply] { bus->inject(reply); });
        });
    }
    ~Wire() { delete bus.data(); }

    /// Requests of code `cmd` sent so far.
    QList<VRNMessage> sentOf(quint8 cmd) const
    {
        QList<VRNMessage> out;
        for (const VRNMessage& m : sent) {
            if (m.cmd() == cmd)
                out.append(m);
        }
        return out;
    }
};

/// Puts `bus` in the bus factory's place of a serial or multicast bus (the
/// factory takes it over), so the registry's objects talk on it.
inline void installBus(VRNBus* bus, const QString& uuid = QStringLiteral("loopback"))
{
    struct Access : BusFactory
    {
        static void install(VRNBus* bus, const QString& uuid)
        {
            (BusFactory::instance()->*(&Access::d_ptr))->setBus(bus, uuid);
        }
    };
    Access::install(bus, uuid);
}

/// A device registry on a fresh in-memory default connection, its bus the
/// wire's; `closeRegistry()` ends it (the bus factory deletes the wire's bus).
inline bool openRegistry(Wire& wire)
{
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"));
    db.setDatabaseName(QStringLiteral(":memory:"));
    if (!db.open())
        return false;
    installBus(wire.bus);
    return ObjectFactory::instance();
}

inline void closeRegistry()
{
    ObjectFactory::destroy();
    BusFactory::destroy();
    QSqlDatabase::database(QSqlDatabase::defaultConnection, false).close();
    QSqlDatabase::removeDatabase(QSqlDatabase::defaultConnection);
}

/// Waits for the end of `job`'s run; false when it does not end.
inline bool waitEnd(const Job& job, int ms = 3000)
{
    return QTest::qWaitFor([&] { return job.state() == Job::Finished || job.state() == Job::Idle; }, ms);
}

/// Queues `job` on `worker` and waits for its end.
inline Job::Error runJob(VRNObjectWorker& worker, Job& job)
{
    if (!worker.queue()->enqueue(job, 0) || !waitEnd(job))
        return Job::AbortedError;
    return job.error();
}

/// Runs `task` on a job of its own and waits for its end; `error` gets the job's text.
inline Job::Error runTask(Task* task, QString* error = nullptr)
{
    Job job;
    job.attach(task);
    job.start();
    if (!waitEnd(job))
        return Job::AbortedError;
    if (error)
        *error = job.errorString();
    return job.error();
}

/// A device object of class `T` for simulated `node`, attached to `wire`'s bus.
template<class T>
QSharedPointer<VRNObject> attachedObject(Wire& wire, const SimNode* node)
{
    QSharedPointer<VRNObject> object(new T);
    object->setNodeAddress(node->address());
    object->attach(wire.bus);
    return object;
}

} // namespace TaskFixture

#endif // TASKFIXTURE_H
