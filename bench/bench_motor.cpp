// Motor jobs: the library's CPU time per job against vrnsim on a loopback
// multicast group (the nodes run in the simulator's process, so this
// process's CPU is the library's own cost), the wall time of reading
// every setting of one DC motor on a 4800 Bd line against the line time of
// the frames exchanged, which the simulator computes, and the time from
// "stop every motor" to the last of 60 moving motors standing at 4800 Bd:
// one broadcast frame against one stop request per motor.
//
//     bench_motor

#include "busfactory.h"
#include "dts.h"
#include "dtsgroupproxy.h"
#include "dtsmotorproxy.h"
#include "getdirectionjob.h"
#include "getendlimitsjob.h"
#include "getmotoripsjob.h"
#include "getpositionjob.h"
#include "getrampjob.h"
#include "getspeedjob.h"
#include "motorcontroljob.h"
#include "setdirectionjob.h"
#include "setendlimitsjob.h"
#include "setfactorydefaultjob.h"
#include "setmotoripjob.h"
#include "setrampjob.h"
#include "setspeedjob.h"
#include "simnetwork.h"
#include "tx30object.h"
#include "visualfeedbackjob.h"
#include "vrnbus.h"
#include "vrnloopbackbus.h"
#include "vrnmessage.h"
#include "vrnobjectworker.h"
#include "workqueue.h"

#include "benchclock.h"
#include "benchline.h"
#include "benchsim.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QLoggingCategory>
#include <QProcess>
#include <QStandardPaths>

#include <cstdio>
#include <algorithm>
#include <functional>
#include <memory>
#include <vector>

namespace {

using MakeJob = std::function<Job*()>;

struct Kind
{
    const char* name;
    MakeJob make;
};

template <class J>
MakeJob plain()
{
    return [] { return new J; };
}

const std::vector<Kind>& kinds()
{
    static const std::vector<Kind> all = {
        {"wink", plain<VisualFeedbackJob>()},
        {"stop", [] { auto j = new MotorControlJob; j->setCommand(255); return j; }},
        {"get position", plain<GetPositionJob>()},
        {"get direction", plain<GetDirectionJob>()},
        {"get limits", plain<GetEndLimitsJob>()},
        {"get speed", plain<GetSpeedJob>()},
        {"get ramp", plain<GetRampJob>()},
        {"get 16 ips", plain<GetMotorIpsJob>()},
        {"set direction", [] { auto j = new SetDirectionJob; j->setDirection(1); return j; }},
        {"set speed", [] { auto j = new SetSpeedJob; j->setUpSpeed(20); j->setDownSpeed(20); j->setSlowSpeed(8); return j; }},
        {"set limit + read", [] { auto j = new SetEndLimitsJob; j->setCommand(1); j->setLimit(1); j->setDelta(100); return j; }},
        {"set ramps (4 req)", [] { auto j = new SetRampJob; j->setRamps(1); j->setSoftStartStatus(1); j->setSoftStartValue(30);
                                   j->setSoftStopStatus(1); j->setSoftStopValue(30); return j; }},
        {"set ip + read", [] { auto j = new SetMotorIpJob; j->setIpIndex(2); j->setFunction(3); j->setValue(40); return j; }},
        {"factory ips", [] { auto j = new SetFactoryDefaultJob; j->setCommand(0x15); return j; }},
    };
    return all;
}

// Queues every job on `worker` and waits (on the event loop) for the last.
int runAll(VRNObjectWorker& worker, std::vector<std::unique_ptr<Job>>& jobs)
{
    int ended = 0;
    int failed = 0;
    for (auto& job : jobs) {
        QObject::connect(job.get(), &Job::finished, [&](Job::Error e) { ++ended; failed += e != Job::NoError; });
        worker.queue()->enqueue(*job, 0);
    }
    while (ended < int(jobs.size()))
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    return failed;
}

int cpuPerJob()
{
    QProcess sim;
    if (!openSimBus(sim, {QStringLiteral("--mcast"), QStringLiteral("239.255.92.1:47920"), QStringLiteral("--devices"),
                          QStringLiteral("tx30:1"), QStringLiteral("--time-scale"), QStringLiteral("1000")}))
        return 1;
    BusFactory* buses = BusFactory::instance();
    quint64 frames = 0;
    QObject::connect(buses->bus(), &Bus::messageSent, [&frames] { ++frames; });
    QSharedPointer<VRNObject> motor(new TX30Object);
    motor->setNodeAddress(VRN::makeAddr(VRN::NodeTX30, 0x000100));
    motor->attach(buses->bus());
    VRNObjectWorker worker(motor);
    constexpr int Runs = 300;
    std::printf("library CPU per motor job (%d jobs each, vrnsim over loopback multicast):\n", Runs);
    for (const Kind& kind : kinds()) {
        std::vector<std::unique_ptr<Job>> jobs;
        for (int i = 0; i < Runs; ++i)
            jobs.emplace_back(kind.make());
        frames = 0;
        QElapsedTimer wall;
        wall.start();
        const double cpu0 = cpuSeconds();
        const int failed = runAll(worker, jobs);
        const double cpu = cpuSeconds() - cpu0;
        std::printf("  %-18s %6.1f us CPU/job, %4.1f requests/job, %6.2f ms wall/job%s\n", kind.name, cpu * 1e6 / Runs,
                    double(frames) / Runs, wall.nsecsElapsed() / 1e6 / Runs,
                    failed ? qPrintable(QStringLiteral(" (%1 failed)").arg(failed)) : "");
    }
    BusFactory::destroy();
    sim.terminate();
    sim.waitForFinished(10000);
    return 0;
}

int settingsAt4800()
{
    BenchLine line4800(3, 4800, SimNode::TX30, new TX30Object);
    SimNetwork& net = line4800.net;
    VRNObjectWorker worker(line4800.object);
    std::vector<std::unique_ptr<Job>> jobs;
    jobs.emplace_back(new GetDirectionJob);
    jobs.emplace_back(new GetEndLimitsJob);
    jobs.emplace_back(new GetMotorIpsJob);
    jobs.emplace_back(new GetSpeedJob);
    jobs.emplace_back(new GetRampJob);
    net.resetCounters();
    QElapsedTimer wall;
    wall.start();
    const int failed = runAll(worker, jobs);
    const double seconds = wall.nsecsElapsed() / 1e9;
    const double line = net.lineTimeUs(4800) / 1e6;
    std::printf("every setting of one DC motor at 4800 Bd (direction, limits, 16 ips, speeds, ramps):\n"
                "  %llu frames, %.3f s wall, line time %.3f s, wall / line time = %.3f%s\n",
                (unsigned long long)(net.framesIn() + net.framesOut()), seconds, line, seconds / line,
                failed ? " (some jobs failed)" : "");
    return 0;
}

// 60 motors moving at 4800 Bd; `stop` stops them; the wall time until the
// last one stands, in seconds.
double timeToStandstill(SimNetwork& net, const QList<SimNode*>& motors, const std::function<void()>& stop)
{
    for (SimNode* m : motors) {
        m->setLimits(60000, 0);
        m->setPosition(10);
        VRNMessage move(DTS::CtrlMoveTo, VRN::ToolAddr, m->number(), VRN::AddrNode, QByteArray::fromHex("01EA60FF"));
        move.setAck(true);
        move.prepare();
        m->handle(move); // started directly: only the stop crosses the line
    }
    net.resetCounters();
    QElapsedTimer wall;
    wall.start();
    stop();
    auto moving = [&motors] {
        return std::any_of(motors.begin(), motors.end(), [](SimNode* m) { return m->isMoving(); });
    };
    while (moving() && wall.elapsed() < 30000)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
    return moving() ? -1 : wall.nsecsElapsed() / 1e9;
}

int stopAllAt4800()
{
    SimNetwork net(8);
    VRNLoopbackBus bus;
    net.setBaud(4800);
    net.setReplyWindow(0);
    net.addDevices(QStringLiteral("motor:60"));
    bus.setTimeout(1000);
    net.attach(&bus);
    bus.open();
    const QList<SimNode*> motors = net.nodes();
    std::vector<std::unique_ptr<DTSMotorProxy>> proxies;
    for (SimNode* m : motors)
        proxies.emplace_back(new DTSMotorProxy(m->address(), &bus));
    DTSGroupProxy everyMotor(VRN::BroadcastNumber, &bus);
    const double broadcast = timeToStandstill(net, motors, [&] { everyMotor.stopAll(); });
    const double frameLine = net.lineTimeUs(4800) / 1e6;
    // The line and the bus quiet again before the other way.
    QElapsedTimer settle;
    settle.start();
    while ((net.isBusy() || settle.elapsed() < 200) && settle.elapsed() < 5000)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    const double oneByOne = timeToStandstill(net, motors, [&] {
        for (auto& p : proxies)
            p->ctrlStop(0xFF); // the bus sends them one after another, each after its answer
    });
    const double oneByOneLine = net.lineTimeUs(4800) / 1e6;
    std::printf("stop 60 moving motors at 4800 Bd, until the last one stands:\n"
                "  one CTRL_STOP_ALL frame: %.3f ms after sending (the simulator acts when the frame arrives),\n"
                "    + its line time %.1f ms = %.1f ms; goal: one frame's line time plus the reaction\n"
                "  60 CTRL_STOP one after another: %.3f s (line time of their frames %.3f s)\n",
                broadcast * 1e3, frameLine * 1e3, (broadcast + frameLine) * 1e3, oneByOne, oneByOneLine);
    return broadcast < 0 || oneByOne < 0 ? 1 : 0;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QStandardPaths::setTestModeEnabled(true);
    QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false"));
    const int a = settingsAt4800();
    const int b = stopAllAt4800();
    return cpuPerJob() | a | b;
}
