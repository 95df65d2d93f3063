// Cost of the message bus itself: calls per second and CPU time per call on
// the loopback bus, with a peer that answers every request at once, so that
// the figures are the library's own overhead and not the time of a line.
//
//     bench_bus [calls]

#include "buspendingcallwatcher.h"
#include "dts.h"
#include "vrnloopbackbus.h"
#include "vrnmcastbus.h"
#include "vrnmessage.h"

#include "benchclock.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QHostAddress>
#include <QProcess>
#include <QTimer>


#include <cstdio>
#include <functional>
#include <memory>
#include <vector>

namespace {

struct Measure
{
    QElapsedTimer wall;
    double cpuStart = cpuSeconds();
    Measure() { wall.start(); }
    void print(const char* name, int calls) const
    {
        const double seconds = double(wall.nsecsElapsed()) / 1e9;
        const double cpu = cpuSeconds() - cpuStart;
        std::printf("%-34s %8d calls %10.0f calls/s %8.2f us CPU/call\n", name, calls,
                    calls / seconds, cpu * 1e6 / calls);
    }
};

const int NodeCount = 64;
const quint32 FirstNode = 0x100;  // below lie numbers no device has

VRNMessage requestTo(quint32 node)
{
    VRNMessage m(DTS::GetNodeLabel, VRN::ToolAddr, node, VRN::AddrNode);
    m.setAck(true);
    m.prepare();
    return m;
}

VRNMessage request(int index)
{
    return requestTo(FirstNode + quint32(index));
}

// A node for each request: answers with its label, at once or from the event loop.
class EchoPeer : public QObject
{
public:
    /// `dropFirst`: the first try of every request is lost, its repeat answered.
    EchoPeer(VRNLoopbackBus* bus, bool deferred, bool dropFirst = false) : m_bus(bus)
    {
        for (int node = 0; node < NodeCount; ++node)
            m_replies.append(VRNMessage(DTS::PostNodeLabel, VRN::makeAddr(VRN::NodeMotor, int(FirstNode) + node),
                                        VRN::getNumber(VRN::ToolAddr), VRN::AddrNode, "bench label")
                                 .data());
        connect(bus, &VRNLoopbackBus::transmitted, this, [this, deferred, dropFirst](const QByteArray& frame) {
            const bool repeat = frame == m_last;
            m_last = frame;
            if (dropFirst && !repeat)
                return;
            const VRNMessage request{BusMessage(frame)};
            const QByteArray reply = m_replies.value(int(request.dstAddr() - FirstNode));
            if (deferred)
                QTimer::singleShot(0, m_bus, [this, reply] { m_bus->inject(reply); });
            else
                m_bus->inject(reply);
        });
    }

private:
    VRNLoopbackBus* m_bus;
    QList<QByteArray> m_replies;
    QByteArray m_last;
};

// Every call submitted at once; the queue sends them one by one.
void benchQueued(int calls, bool deferred)
{
    VRNLoopbackBus bus;
    bus.open();
    EchoPeer peer(&bus, deferred);
    std::vector<std::unique_ptr<BusPendingCallWatcher>> watchers;
    watchers.reserve(size_t(calls));
    int done = 0;
    Measure measure;
    for (int i = 0; i < calls; ++i) {
        watchers.push_back(std::make_unique<BusPendingCallWatcher>(bus.call(request(i % NodeCount))));
        QObject::connect(watchers.back().get(), &BusPendingCallWatcher::finished, [&done] { ++done; });
    }
    while (done < calls)
        QCoreApplication::processEvents(QEventLoop::AllEvents);
    measure.print(deferred ? "queued, peer answers from loop" : "queued, peer answers at once", calls);
}

// One call at a time, the next submitted when the previous reports, as the
// tasks of one worker do.
void benchChained(int calls, bool deferred, bool dropFirst = false)
{
    VRNLoopbackBus bus;
    bus.open();
    if (dropFirst)
        bus.setTimeout(0);  // the repeat goes from the next turn of the loop
    EchoPeer peer(&bus, deferred, dropFirst);
    BusPendingCallWatcher watcher;
    int done = 0;
    QObject::connect(&watcher, &BusPendingCallWatcher::finished, [&] {
        if (++done < calls)
            watcher = bus.call(request(done % NodeCount));
    });
    Measure measure;
    watcher = bus.call(request(0));
    while (done < calls)
        QCoreApplication::processEvents(QEventLoop::AllEvents);
    measure.print(dropFirst ? "chained, every request sent twice"
                  : deferred ? "chained, peer answers from loop" : "chained, peer answers at once", calls);
    if (dropFirst)
        std::printf("%-34s %8llu retransmissions\n", "", static_cast<unsigned long long>(bus.retransmissionCount()));
}

// Label reads on a multicast group against 200 nodes served by `vrnsim` on
// loopback (TTL 0): the same queue and watcher path as the loopback runs, now
// with real datagrams and a separate process answering.
void benchMulticastNodes(int calls)
{
    const char* name = "multicast, 200 simulated nodes";
    const QString sim = QCoreApplication::applicationDirPath() + QStringLiteral("/vrnsim");
    QProcess vrnsim;
    vrnsim.start(sim, {QStringLiteral("--mcast"), QStringLiteral("239.255.90.1:47900"),
                       QStringLiteral("--bind"), QStringLiteral("127.0.0.1"),
                       QStringLiteral("--devices"), QStringLiteral("std:100,motor:100"),
                       QStringLiteral("--seed"), QStringLiteral("7")});
    if (!vrnsim.waitForStarted(5000) || !vrnsim.waitForReadyRead(5000)) {
        std::printf("%-34s skipped: cannot start %s\n", name, qPrintable(sim));
        return;
    }
    vrnsim.readLine();
    VRNMCastBus bus(QHostAddress(QStringLiteral("239.255.90.1")), 47900,
                    QHostAddress(QStringLiteral("127.0.0.1")));
    if (!bus.open()) {
        std::printf("%-34s skipped: %s\n", name, qPrintable(bus.errorString()));
        return;
    }
    bus.setBroadcastWindow(300);

    // Find the nodes first, as discovery would.
    BusPendingCallWatcher watcher;
    bool found = false;
    QList<quint32> nodes;
    QObject::connect(&watcher, &BusPendingCallWatcher::finished, [&] {
        for (const BusMessage& reply : watcher.replies())
            nodes.append(VRNMessage(reply).srcAddr(false));
        found = true;
    });
    VRNMessage broadcast(DTS::GetNodeAddr, VRN::ToolAddr, 0, VRN::AddrBroadcast);
    watcher = bus.call(broadcast);
    while (!found)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    if (nodes.isEmpty()) {
        std::printf("%-34s skipped: no node answered\n", name);
        return;
    }

    int done = 0;
    int failed = 0;
    BusPendingCallWatcher reads;
    QObject::connect(&reads, &BusPendingCallWatcher::finished, [&] {
        failed += reads.error() != BusPendingCall::NoError;
        if (++done < calls)
            reads = bus.call(requestTo(nodes.at(done % nodes.size())));
    });
    Measure measure;
    reads = bus.call(requestTo(nodes.first()));
    while (done < calls)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    measure.print(name, calls);
    std::printf("%-34s %8d nodes answered, %d calls failed\n", "", int(nodes.size()), failed);
    vrnsim.terminate();
    vrnsim.waitForFinished(5000);
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const int calls = argc > 1 ? qMax(1, QByteArray(argv[1]).toInt()) : 20000;
    for (bool deferred : {false, true}) {
        benchQueued(calls, deferred);
        benchChained(calls, deferred);
    }
    // Against "chained, peer answers at once": the difference per call is
    // the cost of one retransmission (a timer turn and a second write).
    benchChained(calls, false, true);
    benchMulticastNodes(qMin(calls, 4000));
    return 0;
}
