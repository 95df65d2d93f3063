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

void onSignal(int)
{
    const char byte = 1;
    // Nothing to do when the pipe is full: a quit is already on its way.
    [[maybe_unused]] const ssize_t n = ::write(signalPipe[1], &byte, 1);
}

// SIGINT and SIGTERM end the event loop through a self-pipe, so the program
// leaves from the loop and not from within a signal handler.
bool watchSignals(QCoreApplication* app)
{
    if (::pipe(signalPipe) != 0)
        return false;
    for (int fd : signalPipe)
        ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) | O_NONBLOCK);
    auto* notifier = new QSocketNotifier(signalPipe[0], QSocketNotifier::Read, app);
    QObject::connect(notifier, &QSocketNotifier::activated, app, &QCoreApplication::quit);
    struct sigaction action = {};
    action.sa_handler = onSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    return ::sigaction(SIGINT, &action, nullptr) == 0 && ::sigaction(SIGTERM, &action, nullptr) == 0;
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
    if (!watchSignals(&app))
        return fail(QStringLiteral("cannot watch SIGINT and SIGTERM"), 1);

    std::printf("%s\n", qPrintable(identifier));
    std::fflush(stdout);
    std::fprintf(stderr, "vrnsim: %d nodes%s\n", network.nodes().size(), qPrintable(where));

    app.exec();

    std::fprintf(stderr,
                 "vrnsim: frames in %llu, out %llu, lost %llu, corrupted %llu, invalid %llu; "
                 "line time %lld us\n",
                 static_cast<unsigned long long>(network.framesIn()),
                 static_cast<unsigned long long>(network.framesOut()),
                 static_cast<unsigned long long>(network.framesLost()),
                 static_cast<unsigned long long>(network.framesCorrupted()),
                 static_cast<unsigned long long>(network.framesInvalid()),
                 static_cast<long long>(network.lineTimeUs()));
    return 0;
}
