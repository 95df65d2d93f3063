// Discovery of a large network and label reads, against vrnsim on a loopback
// multicast group (TTL 0): wall time, frames, and this process's CPU time,
// which is the library's own cost (the nodes run in the simulator's process).
// With a baud rate the simulator takes a serial line's time and reports it on
// exit: the lower bound the discovery time is set against.
//
//     bench_discovery                 every case, each in a fresh process
//     bench_discovery NODES [BAUD]    one case

#include "busdiscoverjob.h"
#include "busfactory.h"
#include "getlabeljob.h"
#include "objectfactory.h"
#include "qmlobjectworker.h"
#include "vrnbus.h"
#include "vrnobjectworker.h"
#include "workqueue.h"

#include "benchclock.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QLoggingCategory>
#include <QProcess>
#include <QRegularExpression>
#include <QSqlDatabase>
#include <QStandardPaths>


#include <cstdio>
#include <memory>

namespace {

void spin(const bool& done)
{
    while (!done)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

int runCase(int nodes, int baud, bool readLabels, bool hostile)
{
    QStandardPaths::setTestModeEnabled(true);
    QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false"));
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"));
    db.setDatabaseName(QStringLiteral(":memory:"));
    db.open();

    const QString group = QStringLiteral("239.255.91.%1:%2").arg(1 + nodes % 200).arg(47910 + nodes % 50 + (baud ? 1 : 0));
    QStringList args{QStringLiteral("--mcast"), group, QStringLiteral("--bind"), QStringLiteral("127.0.0.1"),
                     QStringLiteral("--devices"),
                     QStringLiteral("std:%1,motor:%2").arg(nodes / 2).arg(nodes - nodes / 2),
                     QStringLiteral("--seed"), QStringLiteral("11")};
    if (baud)
        args << QStringLiteral("--baud") << QString::number(baud);
    // A node that answers every round 40 times from reserved addresses.
    if (hostile)
        args << QStringLiteral("--hostile") << QStringLiteral("broadcast");
    QProcess sim;
    sim.start(QCoreApplication::applicationDirPath() + QStringLiteral("/vrnsim"), args);
    if (!sim.waitForStarted(5000) || !sim.waitForReadyRead(10000)) {
        std::printf("cannot start vrnsim\n");
        return 1;
    }
    const QString uuid = QString::fromLatin1(sim.readLine()).trimmed();
    BusFactory* buses = BusFactory::instance();
    if (!buses->openUUID(uuid)) {
        std::printf("cannot open %s: %s\n", qPrintable(uuid), qPrintable(buses->lastError()));
        return 1;
    }
    VRNBus* bus = buses->bus();
    // Quiet gap: the simulator's reply spread (50 ms) plus, on a slow line,
    // the request and one reply on the wire.
    const int frameMs = baud ? (32 * 11 * 1000) / baud : 0;
    bus->setBroadcastQuietTime(80 + 2 * frameMs);
    bus->setBroadcastWindow(60000);
    bus->setTimeout(baud ? 500 + 2 * frameMs : 300);
    quint64 frames = 0;
    QObject::connect(bus, &Bus::messageSent, [&frames] { ++frames; });
    QObject::connect(bus, &Bus::messageReceived, [&frames] { ++frames; });

    BusDiscoverJob discover;
    bool done = false;
    QObject::connect(&discover, &Job::finished, [&done] { done = true; });
    QElapsedTimer wall;
    wall.start();
    const double cpu0 = cpuSeconds();
    buses->busWorker()->queue()->enqueue(discover, 0);
    spin(done);
    const double seconds = wall.nsecsElapsed() / 1e9;
    const double cpu = cpuSeconds() - cpu0;
    const QList<unsigned int> found = discover.result().value<QList<unsigned int>>();
    std::printf("discovery %5d nodes%s%s: %5d found, %8.2f s, %7llu frames, library CPU %7.3f s (%.0f us/frame)%s\n",
                nodes, baud ? qPrintable(QStringLiteral(" @%1 Bd").arg(baud)) : "",
                hostile ? ", 40 forged answers a round" : ", 0 forged answers", int(found.size()), seconds,
                (unsigned long long)frames, cpu, frames ? cpu * 1e6 / double(frames) : 0.0,
                discover.error() ? qPrintable(QStringLiteral(" (") + discover.errorString() + QStringLiteral(")")) : "");

    if (readLabels && !found.isEmpty()) {
        ObjectFactory* factory = ObjectFactory::instance();
        struct Read
        {
            QSharedPointer<VRNObjectWorker> worker;
            std::unique_ptr<GetLabelJob> job;
        };
        std::vector<Read> reads;
        int ended = 0;
        int failed = 0;
        bool all = false;
        for (unsigned int id : found) {
            Read read{factory->objectWorker(id), std::make_unique<GetLabelJob>()};
            if (!read.worker)
                continue;
            QObject::connect(read.job.get(), &Job::finished, [&, count = int(found.size())](Job::Error e) {
                failed += e != Job::NoError;
                all = ++ended == count;
            });
            reads.push_back(std::move(read));
        }
        wall.restart();
        const double c0 = cpuSeconds();
        for (Read& read : reads)
            read.worker->queue()->enqueue(*read.job, 0);
        spin(all);
        const double s = wall.nsecsElapsed() / 1e9;
        const double c = cpuSeconds() - c0;
        std::printf("label reads %5d devices: %8.2f s, %8.0f jobs/s, library CPU %6.1f us/job, %d failed\n",
                    int(reads.size()), s, reads.size() / s, c * 1e6 / reads.size(), failed);
    }

    BusFactory::destroy();
    sim.terminate();
    sim.waitForFinished(10000);
    const QString stats = QString::fromLocal8Bit(sim.readAllStandardError());
    const QRegularExpressionMatch line = QRegularExpression(QStringLiteral("line time (\\d+) us")).match(stats);
    if (baud && line.hasMatch()) {
        const double bound = line.captured(1).toDouble() / 1e6;
        std::printf("  line time of the frames exchanged (lower bound): %.2f s; discovery / bound = %.3f\n", bound,
                    seconds / bound);
    }
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    if (argc > 1)
        return runCase(atoi(argv[1]), argc > 2 ? atoi(argv[2]) : 0, argc > 3 && !qstrcmp(argv[3], "labels"),
                       argc > 3 && !qstrcmp(argv[3], "hostile"));
    // Each case in a process of its own: a fresh registry, bus and factory.
    const QList<QStringList> cases{{QStringLiteral("100")},
                                   {QStringLiteral("100"), QStringLiteral("0"), QStringLiteral("hostile")},
                                   {QStringLiteral("100"), QStringLiteral("4800")},
                                   {QStringLiteral("1000"), QStringLiteral("0"), QStringLiteral("labels")},
                                   {QStringLiteral("5000")}};
    for (const QStringList& c : cases) {
        QProcess one;
        one.setProcessChannelMode(QProcess::ForwardedChannels);
        one.start(QCoreApplication::applicationFilePath(), c);
        one.waitForFinished(-1);
    }
    return 0;
}
