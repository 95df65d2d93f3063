// Motor diagnostics and retries, in process on the loopback bus:
// - the wall time of one motor's diagnostics (seven requests) on a 4800 Bd
//   line against the line time of the frames exchanged;
// - the labels of 200 nodes on a line that loses 10 % of the frames in each
//   direction, each read tried again after a timeout (as `--retries N` does),
//   with how many tries the devices needed.
//
//     bench_diag

#include "getlabeljob.h"
#include "getmotordiagnosticjob.h"
#include "simnetwork.h"
#include "stateretry.h"
#include "vrnloopbackbus.h"
#include "vrnmotorobject.h"
#include "vrnobjectworker.h"
#include "workqueue.h"

#include <QCoreApplication>
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
    SimNetwork net(5);
    net.setBaud(4800);
    net.setReplyWindow(0);
    SimNode* node = net.addNode(SimNode::Motor, 0x000100);
    VRNLoopbackBus bus;
    bus.setTimeout(1000);
    net.attach(&bus);
    bus.open();
    QSharedPointer<VRNObject> motor(new VRNMotorObject);
    motor->setNodeAddress(node->address());
    motor->attach(&bus);
    VRNObjectWorker worker(motor);
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

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QStandardPaths::setTestModeEnabled(true);
    QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false"));
    const int a = diagnosticsAt4800();
    labelsOnLossyLine(0);
    labelsOnLossyLine(3);
    return a;
}
