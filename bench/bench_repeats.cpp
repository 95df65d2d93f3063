// Retransmission on a lossy line: the share of whole group reads (16 slot
// requests, all of which must be answered) that succeed over 200 simulated
// motors, by frame loss and by the bus's number of repeats, in process on
// the loopback bus (loss applies to requests and replies alike). Each read
// is the library's own GetGroupsJob on the device's worker; a run that
// fails for a timeout is queued again as vrnconfig's --retries do (default
// 2), and a run again continues at the slot that failed.
//
//     bench_repeats [devices]

#include "devicetask.h"
#include "getgroupsjob.h"
#include "simnetwork.h"
#include "vrnloopbackbus.h"
#include "vrnmotorobject.h"
#include "vrnobjectworker.h"
#include "workqueue.h"

#include <QCoreApplication>
#include <QElapsedTimer>

#include <cstdio>
#include <memory>
#include <vector>

namespace {

struct Outcome
{
    int ok = 0;
    quint64 frames = 0;
    double seconds = 0;
};

enum class Retry { Resume, FromSlot0 };

// `jobRetries`: how often a read that timed out is queued again. With
// `FromSlot0` the job's kept place is dropped first, so each run asks for
// all 16 slots again (what a retry cost before runs resumed).
Outcome groupReads(int devices, double loss, int repeats, int jobRetries, Retry mode = Retry::Resume)
{
    SimNetwork net(7);
    net.addDevices(QStringLiteral("motor:%1").arg(devices));
    net.setLoss(loss);
    VRNLoopbackBus bus;
    // The simulator answers within a turn of the loop; the margin keeps a
    // busy machine from turning a late answer into a loss.
    bus.setTimeout(20);
    bus.setRepeats(repeats);
    net.attach(&bus);
    bus.open();

    Outcome out;
    QObject::connect(&bus, &Bus::messageSent, [&out] { ++out.frames; });
    QElapsedTimer wall;
    wall.start();
    for (SimNode* node : net.nodes()) {
        QSharedPointer<VRNObject> object(new VRNMotorObject);
        object->setNodeAddress(node->address());
        object->attach(&bus);
        VRNObjectWorker worker(object);
        GetGroupsJob job;
        for (int run = 0; run <= jobRetries; ++run) {
            if (mode == Retry::FromSlot0)
                job.setProperty(DeviceTask::ResumeProperty, QVariant());
            worker.queue()->enqueue(job, 0);
            while (job.state() != Job::Finished && job.state() != Job::Idle)
                QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
            if (job.error() == Job::NoError || !job.isTransientError())
                break;
        }
        out.ok += job.error() == Job::NoError;
    }
    out.seconds = wall.nsecsElapsed() / 1e9;
    return out;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const int devices = argc > 1 ? qMax(1, atoi(argv[1])) : 200;
    std::printf("group reads (16 requests each) over %d motors: share that succeeded, frames sent per device (repeats included)\n", devices);
    for (int jobRetries : {0, 2}) {
        std::printf("%s\n", jobRetries ? "the default: 2 job retries (vrnconfig --retries), each continuing at the slot that failed:"
                                       : "one run of the job:");
        std::printf("%-8s %16s %16s %16s %16s\n", "loss", "repeats 0", "repeats 1", "repeats 2*", "repeats 3");
        for (double loss : {0.05, 0.10, 0.20}) {
            std::printf("%6.0f %%  ", loss * 100);
            for (int repeats = 0; repeats <= 3; ++repeats) {
                const Outcome o = groupReads(devices, loss, repeats, jobRetries);
                std::printf(" %7.2f %% %5.1f", 100.0 * o.ok / devices, double(o.frames) / devices);
                std::fflush(stdout);
            }
            std::printf("\n");
        }
    }
    std::printf("* the default repeats; loss applies to requests and replies alike;\n"
                "  the goal at 10 %% loss with the defaults is at least 99.5 %%\n");
    const Outcome resumed = groupReads(devices, 0.10, 2, 2);
    const Outcome restarted = groupReads(devices, 0.10, 2, 2, Retry::FromSlot0);
    std::printf("10 %% loss, the defaults: resuming %.2f %% (%.1f frames, %.1f s), restarting at slot 0 %.2f %% (%.1f frames, %.1f s)\n",
                100.0 * resumed.ok / devices, double(resumed.frames) / devices, resumed.seconds,
                100.0 * restarted.ok / devices, double(restarted.frames) / devices, restarted.seconds);
    return 0;
}
