// Firmware updates on the in-process simulator:
// - line time: a 32 KiB image at 38,400 Bd, the wall time of the standard
//   update against the line time of its frames (the simulator computes it),
//   in real time;
// - power loss: 100 updates cut off at a random block, each followed by the
//   recovery through the bootloader; how many end on the new version;
// - lossy line: updates over a line that loses 10 % of the frames each way;
// - noisy line: a 20,000-byte image (1,250 blocks) updated and recovered
//   where 30 % of the blocks arrive damaged and 20 % of the frames are lost
//   each way, with the default retries: how many get through.
//
//     bench_firmware

#include "bpkpackage.h"
#include "directupdatefwjob.h"
#include "simnetwork.h"
#include "updatefwjob.h"
#include "vrnloopbackbus.h"
#include "vrnmotorobject.h"
#include "vrnobjectworker.h"
#include "workqueue.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QLoggingCategory>
#include <QRandomGenerator>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QEventLoop>

#include <cstdio>

namespace {

struct Package
{
    QTemporaryDir dir;
    QString path;
    QString keys;
    int blocks = 0;

    explicit Package(int size)
    {
        const BpkKeys k = BpkKeys::generate();
        keys = dir.filePath(QStringLiteral("keys"));
        k.save(keys, false, nullptr);
        BpkManifest m;
        m.nodeTypes = {VRN::NodeMotor};
        m.major = 5;
        QByteArray image(size, Qt::Uninitialized);
        for (int i = 0; i < size; ++i)
            image[i] = char(QRandomGenerator::global()->bounded(256));
        path = dir.filePath(QStringLiteral("m.bpk"));
        QFile f(path);
        f.open(QIODevice::WriteOnly);
        f.write(BpkPackage::build(m, image, k, nullptr));
        blocks = m.blockSize > 0 ? (size + m.blockSize - 1) / m.blockSize : 0;
    }
};

/// One motor on its own line, ready for jobs.
struct Line
{
    SimNetwork net;
    VRNLoopbackBus bus;
    SimNode* node;
    QSharedPointer<VRNObject> motor{new VRNMotorObject};
    QScopedPointer<VRNObjectWorker> worker;

    Line(quint32 seed, int timeoutMs) : net(seed)
    {
        node = net.addNode(SimNode::Motor, 0x000100);
        node->setAppVersion({1, 0, 0, 0});
        bus.setTimeout(timeoutMs);
        net.attach(&bus);
        bus.open();
        motor->setNodeAddress(node->address());
        motor->attach(&bus);
        worker.reset(new VRNObjectWorker(motor));
    }

    Job::Error run(FirmwareJob& job, const Package& p, int retries)
    {
        job.setPackage(p.path);
        job.setKeyFile(p.keys);
        job.setRetries(retries);
        // An event loop of its own: a polling wait would add its sleeps to every exchange.
        QEventLoop loop;
        QObject::connect(&job, &Job::finished, &loop, &QEventLoop::quit);
        worker->queue()->enqueue(job, 0);
        if (job.state() != Job::Finished)
            loop.exec();
        return job.error();
    }
};

void lineTime()
{
    const Package p(32 * 1024);
    Line line(1, 2000);
    // Real time: the simulator's timers wait whole milliseconds, which a
    // faster clock would count several times over in every exchange.
    const double scale = 1;
    line.net.setBaud(38400);
    line.net.setTimeScale(scale);
    line.net.resetCounters();
    UpdateFwJob job;
    QElapsedTimer wall;
    wall.start();
    const Job::Error error = line.run(job, p, 5);
    const double seconds = wall.nsecsElapsed() / 1e9 * scale;
    const double lineSeconds = line.net.lineTimeUs(38400) / 1e6;
    std::printf("32 KiB image at 38400 Bd: %d blocks, %llu frames, %.2f s wall, line time %.2f s, "
                "ratio %.3f%s\n",
                p.blocks, (unsigned long long)(line.net.framesIn() + line.net.framesOut()), seconds, lineSeconds,
                seconds / lineSeconds, error == Job::NoError ? "" : " (update failed)");
}

void powerLoss()
{
    const Package p(2 * 1024);
    QRandomGenerator rng(7);
    int recovered = 0;
    const int runs = 100;
    for (int i = 0; i < runs; ++i) {
        Line line(quint32(i + 1), 15);
        line.node->setPowerLossAtBlock(rng.bounded(p.blocks));
        UpdateFwJob update;
        line.run(update, p, 1);
        DirectUpdateFwJob recover;
        if (line.node->inBootloader() && line.run(recover, p, 5) == Job::NoError && !line.node->inBootloader()
            && line.node->appVersion().major == 5)
            ++recovered;
    }
    std::printf("power lost at a random block, then recovered through the bootloader: %d of %d on the new version\n",
                recovered, runs);
}

void lossyLine()
{
    const Package p(8 * 1024);
    int done = 0;
    int retries = 0;
    const int runs = 5;
    for (int i = 0; i < runs; ++i) {
        Line line(quint32(100 + i), 15);
        line.net.setLoss(0.10);
        UpdateFwJob job;
        if (line.run(job, p, 20) == Job::NoError && line.node->appVersion().major == 5)
            ++done;
        retries += job.result().toMap().value(QStringLiteral("retries")).toInt();
    }
    std::printf("10 %% frame loss each way, 8 KiB image (%d blocks): %d of %d updates completed, %.1f retries each\n",
                p.blocks, done, runs, double(retries) / runs);
}

void noisyLine()
{
    const Package p(20000);
    const int runs = 6;
    for (bool direct : {false, true}) {
        int done = 0;
        int retries = 0;
        QElapsedTimer wall;
        wall.start();
        for (int i = 0; i < runs; ++i) {
            Line line(quint32(200 + i), 15);
            line.net.setLoss(0.2);
            line.node->setBlockCorruption(0.3);
            UpdateFwJob update;
            DirectUpdateFwJob recover;
            FirmwareJob& job = direct ? static_cast<FirmwareJob&>(recover) : update;
            if (line.run(job, p, 5) == Job::NoError && line.node->appVersion().major == 5)
                ++done;
            else
                std::printf("  failed: %s\n", qPrintable(job.errorString()));
            retries += job.result().toMap().value(QStringLiteral("retries")).toInt();
        }
        std::printf("30 %% damaged blocks, 20 %% frame loss each way, %d blocks, %s: %d of %d completed, "
                    "%.0f retries each, %.1f s each\n",
                    p.blocks, direct ? "recovery through the bootloader" : "standard update", done, runs,
                    double(retries) / qMax(1, done), wall.elapsed() / 1000.0 / runs);
    }
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QStandardPaths::setTestModeEnabled(true);
    QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false"));
    for (auto bench : {lineTime, powerLoss, lossyLine, noisyLine}) {
        bench();
        std::fflush(stdout);
    }
    return 0;
}
