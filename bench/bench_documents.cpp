// Network documents on a line of 200 devices (120 standard nodes, 50 motors,
// 30 TX30 DC motors) on the in-process simulator:
// - a backup of every device at 4800 Bd, its wall time (in simulated time:
//   the line runs 4 times as fast as real time; much faster, the timers'
//   millisecond grain is counted many times over) against the line time of
//   the frames it exchanged (goal: at most 1.1);
// - the frames an apply sends for the backed-up document changed in one field
//   (the label) on 10 devices (goal: those 10 writes and 10 read-backs, 40
//   frames both ways), beside the frames of the compare that found them.
//
//     bench_documents [TIMESCALE]

#include "groupfactory.h"
#include "networkconfiguration.h"
#include "objectfactory.h"
#include "simnetwork.h"
#include "vrnloopbackbus.h"
#include "vrnobject.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QLoggingCategory>
#include <QSqlDatabase>
#include <QStandardPaths>

#include <cstdio>

namespace {

constexpr int Baud = 4800;
// How much faster than real time the simulated line runs (argument 1).
double TimeScale = 4;

void waitFor(NetworkConfiguration& config)
{
    while (config.isRunning())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

int run()
{
    SimNetwork net(11);
    VRNLoopbackBus bus;
    net.setReplyWindow(0);
    net.setBaud(Baud);
    net.setTimeScale(TimeScale);
    QList<QSharedPointer<VRNObject>> keep;
    QList<quint32> uuids;
    struct Kind { SimNode::Kind sim; VRNObject::Type type; int count; };
    quint32 number = 0x100;
    for (const Kind& k : {Kind{SimNode::Std, VRNObject::DtsStd, 120}, Kind{SimNode::Motor, VRNObject::DtsMotor, 50},
                          Kind{SimNode::TX30, VRNObject::TX30, 30}}) {
        for (int i = 0; i < k.count; ++i, ++number) {
            net.addNode(k.sim, number);
            auto obj = ObjectFactory::instance()->createObject(k.type, number, false);
            keep << obj;
            uuids << obj->uuid();
        }
    }
    bus.setTimeout(2000);
    net.attach(&bus);
    bus.open();
    for (auto& obj : keep)
        obj->attach(&bus);

    NetworkConfiguration config;
    net.resetCounters();
    QElapsedTimer wall;
    wall.start();
    config.backup(uuids);
    waitFor(config);
    const double seconds = wall.nsecsElapsed() / 1e9 * TimeScale;
    const double lineTime = net.lineTimeUs(Baud) / 1e6;
    int failed = 0;
    for (const auto& r : config.results())
        failed += r.ok ? 0 : 1;
    std::printf("backup of %d devices at %d Bd (simulated %gx real time):\n"
                "  %llu frames, %.1f s, line time %.1f s, backup / line time = %.3f, %d failed\n",
                int(uuids.size()), Baud, TimeScale, (unsigned long long)(net.framesIn() + net.framesOut()), seconds,
                lineTime, seconds / lineTime, failed);

    NetworkDocument document = config.document();
    for (int i = 0; i < 10; ++i) {
        QJsonObject& entry = document.devices[i * 19];
        entry.insert(QStringLiteral("label"), QStringLiteral("Renamed %1").arg(i));
    }
    net.setBaud(0);
    net.setTimeScale(1);
    net.resetCounters();
    config.compare(document);
    waitFor(config);
    const quint64 compareFrames = net.framesIn() + net.framesOut();
    const auto differences = config.differences();
    net.resetCounters();
    config.apply(differences);
    waitFor(config);
    failed = 0;
    for (const auto& r : config.results())
        failed += r.ok ? 0 : 1;
    std::printf("apply of a %d-device document differing in one field on 10 devices:\n"
                "  %d differences; compare %llu frames; apply %llu frames (goal 40: 20 requests, 20 replies), %d failed\n",
                int(uuids.size()), int(differences.size()), (unsigned long long)compareFrames,
                (unsigned long long)(net.framesIn() + net.framesOut()), failed);
    for (auto& obj : keep)
        obj->attach(nullptr);
    GroupFactory::destroy();
    return failed ? 1 : 0;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    if (argc > 1 && QByteArray(argv[1]).toDouble() > 0)
        TimeScale = QByteArray(argv[1]).toDouble();
    QStandardPaths::setTestModeEnabled(true);
    QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false"));
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"));
    db.setDatabaseName(QStringLiteral(":memory:"));
    db.open();
    return run();
}
