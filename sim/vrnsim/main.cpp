// vrnsim: a simulated device network on a local multicast group or a
// pseudo-terminal. `vrnsim --help` lists the options.
#include "options.h"
#include "simmcastlink.h"
#include "simnetwork.h"
#include "simptylink.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace {

int signalPipe[2] = {-1, -1};

void onSignal(int number)
{
    const char byte = char(number);
    // Nothing to do when the pipe is full: a quit is already on its way.
    [[maybe_unused]] const ssize_t n = ::write(signalPipe[1], &byte, 1);
}

// What the motors go through on SIGUSR1 (a power cut) and SIGUSR2 (a restart).
void disturbMotors(SimNetwork& network, int signal)
{
    int count = 0;
    for (SimNode* node : network.nodes()) {
        if (!SimNode::hasMotor(node->kind()))
            continue;
        signal == SIGUSR1 ? node->powerCycle() : node->restart();
        ++count;
    }
    std::fprintf(stderr, "vrnsim: %s of %d motor(s)\n", signal == SIGUSR1 ? "power cycle" : "restart", count);
}

// Signals reach the event loop through a self-pipe, so that they are handled
// there and not within a signal handler: SIGINT and SIGTERM end the program,
// SIGUSR1 and SIGUSR2 power-cycle or restart every motor.
bool watchSignals(QCoreApplication* app, SimNetwork& network)
{
    if (::pipe(signalPipe) != 0)
        return false;
    for (int fd : signalPipe)
        ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) | O_NONBLOCK);
    auto* notifier = new QSocketNotifier(signalPipe[0], QSocketNotifier::Read, app);
    QObject::connect(notifier, &QSocketNotifier::activated, app, [app, &network] {
        char byte = 0;
        while (::read(signalPipe[0], &byte, 1) == 1) {
            if (byte == SIGUSR1 || byte == SIGUSR2)
                disturbMotors(network, byte);
            else
                app->quit();
        }
    });
    struct sigaction action = {};
    action.sa_handler = onSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (int signal : {SIGINT, SIGTERM, SIGUSR1, SIGUSR2}) {
        if (::sigaction(signal, &action, nullptr) != 0)
            return false;
    }
    return true;
}

int fail(const QString& text, int code)
{
    std::fprintf(stderr, "vrnsim: %s\n", qPrintable(text));
    return code;
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("vrnsim"));

    SimOptions options;
    QString error;
    switch (options.parse(app.arguments(), &error)) {
    case SimOptions::Help:
        std::fputs(qPrintable(error), stdout);
        return 0;
    case SimOptions::Error:
        return fail(error + QStringLiteral(" (see vrnsim --help)"), 2);
    case SimOptions::Run:
        break;
    }

    SimNetwork network(options.seed);
    if (!network.addDevices(options.devices, &error))
        return fail(QStringLiteral("--devices: ") + error, 2);
    network.addDuplicates(options.duplicates);
    network.setSilentCount(options.silent);
    for (SimNode* node : network.nodes())
        node->setEncoderFault(options.encoderFaults);
    network.setLoss(options.loss);
    network.setCorrupt(options.corrupt);
    network.setLatency(options.latencyMs);
    network.setBaud(options.baud);
    network.setReplyWindow(options.replyWindowMs);
    network.setTimeScale(options.timeScale);
    network.setHostile(options.hostile);
    for (SimNode* node : network.nodes()) {
        node->setPowerLossAtBlock(options.powerLossAt);
        node->setBlockCorruption(options.corruptBlocks);
    }

    QString identifier;
    QString where;
    QScopedPointer<QObject> link;
    if (options.serial) {
        auto* pty = new SimPtyLink(&network);
        link.reset(pty);
        if (!pty->open(&error))
            return fail(error, 1);
        identifier = pty->identifier();
        where = QStringLiteral(" on ") + pty->devicePath();
    } else {
        if (!SimMCastLink::checkAddresses(options.group, options.bind, &error))
            return fail(error, 2);
        auto* mcast = new SimMCastLink(&network);
        link.reset(mcast);
        if (!mcast->open(options.group, options.port, options.bind, &error))
            return fail(error, 1);
        identifier = mcast->identifier();
    }
    if (!watchSignals(&app, network))
        return fail(QStringLiteral("cannot watch signals"), 1);

    std::printf("%s\n", qPrintable(identifier));
    std::fflush(stdout);
    std::fprintf(stderr, "vrnsim: %d nodes%s\n", int(network.nodes().size()), qPrintable(where));

    app.exec();

    std::fprintf(stderr,
                 "vrnsim: frames in %llu, out %llu, lost %llu, corrupted %llu, invalid %llu, forged %llu; "
                 "line time %lld us\n",
                 static_cast<unsigned long long>(network.framesIn()),
                 static_cast<unsigned long long>(network.framesOut()),
                 static_cast<unsigned long long>(network.framesLost()),
                 static_cast<unsigned long long>(network.framesCorrupted()),
                 static_cast<unsigned long long>(network.framesInvalid()),
                 static_cast<unsigned long long>(network.framesForged()),
                 static_cast<long long>(network.lineTimeUs()));
    return 0;
}
