// Jobs over groups of devices:
// - the group machinery's CPU per device: label writes to 1,000 devices of
//   vrnsim on a loopback multicast group, once as 1,000 jobs queued on the
//   devices' own workers, once as one job on their group worker; the
//   difference per device is what the group adds (the nodes run in the
//   simulator's process, so this process's CPU is the library's own);
// - label reads of 100 devices through one group job on a 4800 Bd line,
//   wall time against the line time of the frames exchanged;
// - a group label write to 200 devices on a line that loses 10 % of the
//   frames each way, the failed devices run again as a group until all are
//   done (at most 8 rounds).
//
//     bench_groups

#include "busfactory.h"
#include "getlabeljob.h"
#include "groupfactory.h"
#include "grouptaskresultmodel.h"
#include "groupworker.h"
#include "objectfactory.h"
#include "setlabeljob.h"
#include "simnetwork.h"
#include "vrnbus.h"
#include "vrnloopbackbus.h"
#include "vrnobjectworker.h"
#include "workqueue.h"

#include "benchclock.h"
#include "benchsim.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QLoggingCategory>
#include <QProcess>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QStandardPaths>

#include <cstdio>
#include <memory>
#include <vector>

namespace {

using Uuids = QList<unsigned int>;

void waitFor(const std::function<bool()>& done)
{
    while (!done())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

/// Registry rows for `count` standard nodes numbered from 0x100 on, attached to `bus`.
Uuids registerDevices(int count, VRNBus* bus, QList<QSharedPointer<VRNObject>>& keep)
{
    Uuids uuids;
    for (int i = 0; i < count; ++i) {
        auto obj = ObjectFactory::instance()->createObject(VRNObject::DtsStd, 0x100 + i);
        if (bus)
            obj->attach(bus);
        keep.append(obj);
        uuids.append(obj->uuid());
    }
    return uuids;
}

/// Runs `job` on the group worker of `uuids`; the result model.
GroupTaskResultModel* runGroup(QmlJob& job, const Uuids& uuids)
{
    GroupFactory::instance()->groupWorker(uuids)->enqueue(&job);
    waitFor([&] { return job.state() == Job::Finished; });
    return qvariant_cast<GroupTaskResultModel*>(job.result());
}

int cpuPerDevice()
{
    constexpr int Devices = 1000;
    QProcess sim;
    if (!openSimBus(sim, {QStringLiteral("--mcast"), QStringLiteral("239.255.92.7:47927"), QStringLiteral("--devices"),
                          QStringLiteral("std:%1").arg(Devices), QStringLiteral("--reply-window"), QStringLiteral("5")}))
        return 1;
    QList<QSharedPointer<VRNObject>> keep;
    const Uuids uuids = registerDevices(Devices, nullptr, keep);

    // Each device's own worker, one job each, all queued at once.
    std::vector<std::unique_ptr<SetLabelJob>> jobs;
    QList<QSharedPointer<VRNObjectWorker>> workers;
    int ended = 0;
    int failedDirect = 0;
    double cpu0 = cpuSeconds();
    QElapsedTimer wall;
    wall.start();
    for (unsigned int uuid : uuids) {
        jobs.emplace_back(new SetLabelJob);
        jobs.back()->setLabel("direct");
        QObject::connect(jobs.back().get(), &Job::finished, [&](Job::Error e) { ++ended; failedDirect += e != Job::NoError; });
        workers.append(ObjectFactory::instance()->objectWorker(uuid));
        workers.back()->queue()->enqueue(*jobs.back(), 0);
    }
    waitFor([&] { return ended == Devices; });
    const double direct = cpuSeconds() - cpu0;
    const double directWall = wall.nsecsElapsed() / 1e9;
    workers.clear();

    SetLabelJob group;
    group.setLabel("grouped");
    cpu0 = cpuSeconds();
    wall.restart();
    GroupTaskResultModel* result = runGroup(group, uuids);
    const double grouped = cpuSeconds() - cpu0;
    std::printf("label write to %d devices of vrnsim (loopback multicast):\n"
                "  device workers: %7.1f us CPU/device, %.2f s wall, %d failed\n"
                "  group worker:   %7.1f us CPU/device, %.2f s wall, %d failed\n"
                "  group machinery: %+.1f us CPU/device\n",
                Devices, direct * 1e6 / Devices, directWall, failedDirect, grouped * 1e6 / Devices,
                wall.nsecsElapsed() / 1e9, result->failedCount(), (grouped - direct) * 1e6 / Devices);
    GroupFactory::destroy();
    BusFactory::destroy();
    sim.terminate();
    sim.waitForFinished(10000);
    return 0;
}

// Standard nodes numbered from 0x100 on an in-process line, each a device of
// the registry attached to it.
struct LocalLine
{
    SimNetwork net;
    VRNLoopbackBus bus;
    QList<QSharedPointer<VRNObject>> keep;
    Uuids uuids;

    LocalLine(quint32 seed, int devices, int timeoutMs, const std::function<void(SimNetwork&)>& setUp)
        : net(seed)
    {
        net.setReplyWindow(0);
        setUp(net);
        for (int i = 0; i < devices; ++i)
            net.addNode(SimNode::Std, 0x100 + i)->setLabel("Room " + QByteArray::number(i));
        bus.setTimeout(timeoutMs);
        net.attach(&bus);
        bus.open();
        uuids = registerDevices(devices, &bus, keep);
    }
    ~LocalLine()
    {
        for (auto& obj : keep)
            obj->attach(nullptr);
        GroupFactory::destroy();
    }
};

int labelReadsAt4800()
{
    constexpr int Devices = 100;
    LocalLine line(5, Devices, 1000, [](SimNetwork& net) { net.setBaud(4800); });
    GetLabelJob job;
    line.net.resetCounters();
    QElapsedTimer wall;
    wall.start();
    GroupTaskResultModel* result = runGroup(job, line.uuids);
    const double seconds = wall.nsecsElapsed() / 1e9;
    const double lineTime = line.net.lineTimeUs(4800) / 1e6;
    std::printf("label reads of %d devices through one group job at 4800 Bd:\n"
                "  %llu frames, %.3f s wall, line time %.3f s, wall / line time = %.3f, %d failed\n",
                Devices, (unsigned long long)(line.net.framesIn() + line.net.framesOut()), seconds, lineTime,
                seconds / lineTime, result->failedCount());
    return 0;
}

int lossyLine()
{
    constexpr int Devices = 200;
    LocalLine line(7, Devices, 30, [](SimNetwork& net) { net.setLoss(0.10); });
    Uuids pending = line.uuids;
    std::printf("group label write to %d devices, 10 %% of frames lost each way, failed devices run again:\n",
                Devices);
    int round = 0;
    while (!pending.isEmpty() && round < 8) {
        ++round;
        SetLabelJob job;
        job.setLabel("Lossy");
        GroupTaskResultModel* result = runGroup(job, pending);
        Uuids failed;
        for (unsigned int uuid : pending) {
            if (result->error(uuid) != Job::NoError)
                failed.append(uuid);
        }
        std::printf("  round %d: %d devices, %d failed\n", round, int(pending.size()), int(failed.size()));
        pending = failed;
    }
    int labelled = 0;
    for (int i = 0; i < Devices; ++i)
        labelled += line.net.node(0x100 + i)->label() == "Lossy";
    std::printf("  ok on every device: %s (%d of %d nodes hold the label)\n", pending.isEmpty() ? "yes" : "no",
                labelled, Devices);
    return pending.isEmpty() ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QStandardPaths::setTestModeEnabled(true);
    QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false"));
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"));
    db.setDatabaseName(QStringLiteral(":memory:"));
    db.open();
    // Each part starts from an empty registry.
    auto fresh = [] {
        ObjectFactory::destroy();
        QSqlQuery(QStringLiteral("DELETE FROM Devices")).exec();
    };
    int rc = labelReadsAt4800();
    fresh();
    rc |= lossyLine();
    fresh();
    rc |= cpuPerDevice();
    return rc;
}
