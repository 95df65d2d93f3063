// Motor diagnostics and retries, in process on the loopback bus:
// - the wall time of one motor's diagnostics (seven requests) on a 4800 Bd
//   line against the line time of the frames exchanged;
// - the labels of 200 nodes on a line that loses 10 % of the frames in each
//   direction, each read tried again after a timeout (as `--retries N` does),
//   with how many tries the devices needed;
// - the same through the tool: vrnconfig --retries 3 get label all against
//   200 nodes of vrnsim --loss 0.1 on a loopback multicast group.
//
//     bench_diag

#include "benchline.h"
#include "getlabeljob.h"
#include "getmotordiagnosticjob.h"
#include "simnetwork.h"
#include "stateretry.h"
#include "vrnloopbackbus.h"
#include "vrnmotorobject.h"
#include "vrnobjectworker.h"
#include "workqueue.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QElapsedTimer>
#include <QFinalState>
#include <QLoggingCategory>
#include <QStandardPaths>
#include <QStateMachine>

#include <cstdio>
#include <map>
#include <memory>
#include <vector>

namespace {

void waitFor(const std::function<bool()>& done)
{
    while (!done())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

int diagnosticsAt4800()
{
    BenchLine line4800(5, 4800, SimNode::Motor, new VRNMotorObject);
    SimNetwork& net = line4800.net;
    VRNObjectWorker worker(line4800.object);
    std::printf("one motor's diagnostics at 4800 Bd (7 requests, 7 replies):\n");
    int failed = 0;
    for (int run = 1; run <= 5; ++run) {
        net.resetCounters();
        GetMotorDiagnosticJob job;
        QElapsedTimer wall;
        wall.start();
        worker.queue()->enqueue(job, 0);
        waitFor([&] { return job.state() == Job::Finished; });
        const double seconds = wall.nsecsElapsed() / 1e9;
        const double line = net.lineTimeUs(4800) / 1e6;
        failed += job.error() != Job::NoError;
        std::printf("  run %d: %llu frames, %.3f s wall, line time %.3f s, wall / line time = %.3f%s\n", run,
                    (unsigned long long)(net.framesIn() + net.framesOut()), seconds, line, seconds / line,
                    job.error() ? qPrintable(QStringLiteral(" (%1)").arg(job.errorString())) : "");
    }
    return failed ? 1 : 0;
}

/// One device's label read, run again after a timeout by a `StateRetry`.
struct RetriedRead
{
    QSharedPointer<VRNObject> object;
    std::unique_ptr<VRNObjectWorker> worker;
    GetLabelJob job;
    QStateMachine machine;
    StateRetry* retry = nullptr;
    bool ok = false;
    bool ended = false;
};

int labelsOnLossyLine(int retries)
{
    constexpr int Devices = 200;
    SimNetwork net(17);
    net.setLoss(0.10);
    net.setReplyWindow(0);
    net.setLatency(2);
    VRNLoopbackBus bus;
    bus.setTimeout(40);
    net.attach(&bus);
    bus.open();
    std::vector<std::unique_ptr<RetriedRead>> reads;
    for (int i = 0; i < Devices; ++i) {
        auto r = std::make_unique<RetriedRead>();
        SimNode* node = net.addNode(SimNode::Std);
        r->object.reset(new VRNStdObject);
        r->object->setNodeAddress(node->address());
        r->object->attach(&bus);
        r->worker = std::make_unique<VRNObjectWorker>(r->object);
        r->retry = new StateRetry(retries, 0, &r->machine);
        auto* done = new QFinalState(&r->machine);
        auto* gaveUp = new QFinalState(&r->machine);
        r->machine.setInitialState(r->retry);
        r->retry->addTransition(r->retry, &QState::finished, done);
        r->retry->addTransition(r->retry, &StateRetry::failed, gaveUp);
        RetriedRead* raw = r.get();
        QObject::connect(&r->machine, &QStateMachine::finished, [raw] { raw->ended = true; });
        QObject::connect(r->retry, &StateRetry::attempt, [raw] { raw->worker->queue()->enqueue(raw->job, 0); });
        QObject::connect(&r->job, &Job::finished, [raw] {
            raw->ok = raw->job.error() == Job::NoError;
            raw->retry->reportJob(raw->job);
        });
        reads.push_back(std::move(r));
    }
    QElapsedTimer wall;
    wall.start();
    for (auto& r : reads)
        r->machine.start();
    waitFor([&] {
        for (auto& r : reads) {
            if (!r->ended)
                return false;
        }
        return true;
    });
    int ok = 0;
    std::map<int, int> byTries;
    for (auto& r : reads) {
        ok += r->ok;
        ++byTries[r->retry->tries()];
    }
    std::printf("labels of %d nodes, 10 %% frame loss each way, --retries %d: %d ok, %d failed, %.2f s\n", Devices,
                retries, ok, Devices - ok, wall.nsecsElapsed() / 1e9);
    for (const auto& [tries, count] : byTries)
        std::printf("  %d device(s) needed %d tr%s\n", count, tries, tries == 1 ? "y" : "ies");
    return 0;
}

// Runs a program of this build folder; its standard output, empty on failure.
QByteArray runTool(const QString& name, const QStringList& args, const QTemporaryDir& home)
{
    QProcess p;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("XDG_CONFIG_HOME"), home.path());
    env.insert(QStringLiteral("XDG_DATA_HOME"), home.path());
    p.setProcessEnvironment(env);
    p.start(QCoreApplication::applicationDirPath() + QLatin1Char('/') + name, args);
    if (!p.waitForFinished(600000))
        p.kill();
    return p.readAllStandardOutput();
}

bool startSim(QProcess& sim, const QStringList& extra)
{
    sim.start(QCoreApplication::applicationDirPath() + QStringLiteral("/vrnsim"),
              QStringList{QStringLiteral("--mcast"), QStringLiteral("239.255.92.7:47927"), QStringLiteral("--devices"),
                          QStringLiteral("std:200")} + extra);
    return sim.waitForStarted(5000) && sim.waitForReadyRead(10000);
}

int labelsThroughTool(int retries)
{
    QTemporaryDir home;
    QProcess sim;
    // Registered once on a clean line; then the same nodes on a lossy one.
    if (!startSim(sim, {}))
        return 1;
    const QString bus = QString::fromLatin1(sim.readLine()).trimmed();
    runTool(QStringLiteral("vrnconfig"), {QStringLiteral("open"), bus}, home);
    runTool(QStringLiteral("vrnconfig"), {QStringLiteral("discover")}, home);
    sim.terminate();
    sim.waitForFinished(10000);
    if (!startSim(sim, {QStringLiteral("--loss"), QStringLiteral("0.1")}))
        return 1;
    QElapsedTimer wall;
    wall.start();
    const QByteArray out = runTool(QStringLiteral("vrnconfig"),
                                   {QStringLiteral("--json"), QStringLiteral("--timeout"), QStringLiteral("100"),
                                    QStringLiteral("--retries"), QString::number(retries), QStringLiteral("get"),
                                    QStringLiteral("label"), QStringLiteral("all")},
                                   home);
    const double seconds = wall.nsecsElapsed() / 1e9;
    sim.terminate();
    sim.waitForFinished(10000);
    const QJsonArray results = QJsonDocument::fromJson(out).object().value(QStringLiteral("results")).toArray();
    int ok = 0;
    std::map<int, int> byTries;
    for (const QJsonValue& v : results) {
        ok += v.toObject().value(QStringLiteral("ok")).toBool();
        ++byTries[v.toObject().value(QStringLiteral("tries")).toInt(1)];
    }
    std::printf("vrnconfig --retries %d --timeout 100 get label all, vrnsim std:200 --loss 0.1: %d of %d ok, %.2f s\n",
                retries, ok, int(results.size()), seconds);
    for (const auto& [tries, count] : byTries)
        std::printf("  %d device(s) needed %d tr%s\n", count, tries, tries == 1 ? "y" : "ies");
    return ok == results.size() && !results.isEmpty() ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QStandardPaths::setTestModeEnabled(true);
    QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false"));
    const int a = diagnosticsAt4800();
    labelsOnLossyLine(0);
    labelsOnLossyLine(3);
    labelsThroughTool(3);
    return a;
}
