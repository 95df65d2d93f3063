#include "options.h"
#include "simnetwork.h"

#include <QCommandLineParser>

namespace {

// Reads a number option in [min, max]; false with a message otherwise.
template <typename T, typename Conv>
bool readNumber(const QCommandLineParser& parser, const QString& name, T min, T max, T* value,
                QString* error, Conv convert)
{
    if (!parser.isSet(name))
        return true;
    bool ok = false;
    const QString text = parser.value(name);
    const T v = convert(text, &ok);
    if (!ok || v < min || v > max) {
        *error = QStringLiteral("--%1: \"%2\" is not a number from %3 to %4")
                     .arg(name, text).arg(min).arg(max);
        return false;
    }
    *value = v;
    return true;
}

bool readInt(const QCommandLineParser& p, const QString& name, int min, int max, int* v, QString* e)
{
    return readNumber(p, name, min, max, v, e, [](const QString& t, bool* ok) { return t.toInt(ok); });
}

bool readProbability(const QCommandLineParser& p, const QString& name, double* v, QString* e)
{
    return readNumber(p, name, 0.0, 1.0, v, e, [](const QString& t, bool* ok) { return t.toDouble(ok); });
}

bool parseGroupPort(const QString& text, QHostAddress* group, quint16* port, QString* error)
{
    const int colon = text.lastIndexOf(QLatin1Char(':'));
    bool ok = colon > 0;
    const uint p = ok ? text.mid(colon + 1).toUInt(&ok) : 0;
    const QHostAddress address(text.left(colon));
    if (!ok || p == 0 || p > 65535 || address.isNull()) {
        *error = QStringLiteral("--mcast: \"%1\" is not GROUP:PORT (for example 239.255.0.1:5000)").arg(text);
        return false;
    }
    *group = address;
    *port = quint16(p);
    return true;
}

} // namespace

SimOptions::Result SimOptions::parse(const QStringList& arguments, QString* error)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Simulates a network of devices and serves it on a local multicast group or on a\n"
        "pseudo-terminal. The first line on standard output is the bus identifier to open\n"
        "(mcast:GROUP:PORT:BIND or serial:NAME). Runs until SIGINT or SIGTERM, then prints\n"
        "its statistics on standard error and exits 0. SIGUSR1 cuts the power of every motor\n"
        "and brings it back, SIGUSR2 restarts every motor (both counted in their diagnostics).\n"
        "Bad options exit 2."));
    const QCommandLineOption help({QStringLiteral("h"), QStringLiteral("help")},
                                  QStringLiteral("Shows this help."));
    parser.addOption(help);
    parser.addOptions({
        {QStringLiteral("mcast"), QStringLiteral("Serve on multicast GROUP:PORT; the group must lie in "
                                                 "239.255.0.0/16."), QStringLiteral("GROUP:PORT")},
        {QStringLiteral("bind"), QStringLiteral("Loopback address whose interface carries the multicast "
                                                "traffic (default 127.0.0.1)."), QStringLiteral("ADDRESS")},
        {QStringLiteral("serial"), QStringLiteral("Serve on a new pseudo-terminal instead.")},
        {QStringLiteral("devices"), QStringLiteral("Nodes to simulate, as KIND:COUNT,... with the kinds std, "
                                                   "motor, dcmotor, lru50, tx50dc, tx30, settingtool "
                                                   "(default std:2,motor:3,dcmotor:1)."), QStringLiteral("LIST")},
        {QStringLiteral("duplicates"), QStringLiteral("N extra nodes that reuse node numbers already present."),
         QStringLiteral("N")},
        {QStringLiteral("seed"), QStringLiteral("Seed of every random choice (default 1): same seed, same "
                                                "network."), QStringLiteral("N")},
        {QStringLiteral("loss"), QStringLiteral("Probability (0..1) that a frame is lost, in each direction."),
         QStringLiteral("P")},
        {QStringLiteral("corrupt"), QStringLiteral("Probability (0..1) that an answer gets a damaged byte."),
         QStringLiteral("P")},
        {QStringLiteral("latency"), QStringLiteral("Delay in ms before a node answers."), QStringLiteral("MS")},
        {QStringLiteral("baud"), QStringLiteral("Take the time of a serial line at N baud (11 bits a byte)."),
         QStringLiteral("N")},
        {QStringLiteral("silent"), QStringLiteral("N nodes that never answer."), QStringLiteral("N")},
        {QStringLiteral("encoder-faults"), QStringLiteral("Every N-th move of a motor counts an encoder error "
                                                          "(default 0: never)."), QStringLiteral("N")},
        {QStringLiteral("time-scale"), QStringLiteral("Run simulated time X times as fast as real time, moves "
                                                      "and line timing alike (default 1)."), QStringLiteral("X")},
        {QStringLiteral("reply-window"), QStringLiteral("Span in ms within which nodes answer a broadcast "
                                                        "(default 50)."), QStringLiteral("MS")},
        {QStringLiteral("power-loss-at"), QStringLiteral("Every node loses power once, when block N of a firmware "
                                                         "update arrives, and restarts into its bootloader."),
         QStringLiteral("N")},
        {QStringLiteral("corrupt-blocks"), QStringLiteral("Probability (0..1) that a firmware block arrives "
                                                          "damaged and is refused."), QStringLiteral("P")},
        {QStringLiteral("hostile"), QStringLiteral("Add a node that forges frames: broadcast (answers each discovery "
                                                   "round 40 times from reserved addresses), acks (acknowledges every "
                                                   "request with a wrong command), slots (answers every read of another "
                                                   "group slot "
                                                   "with slot 3), random (random valid frames)."),
         QStringLiteral("MODE")},
    });
    if (!parser.parse(arguments)) {
        *error = parser.errorText();
        return Error;
    }
    if (parser.isSet(help)) {
        *error = parser.helpText();
        return Help;
    }
    if (!parser.positionalArguments().isEmpty()) {
        *error = QStringLiteral("unexpected argument \"%1\"").arg(parser.positionalArguments().first());
        return Error;
    }
    serial = parser.isSet(QStringLiteral("serial"));
    const bool mcast = parser.isSet(QStringLiteral("mcast"));
    if (serial == mcast) {
        *error = QStringLiteral("choose one transport: --mcast GROUP:PORT or --serial");
        return Error;
    }
    if (mcast && !parseGroupPort(parser.value(QStringLiteral("mcast")), &group, &port, error))
        return Error;
    if (parser.isSet(QStringLiteral("bind"))) {
        if (serial) {
            *error = QStringLiteral("--bind applies to --mcast only");
            return Error;
        }
        bind = QHostAddress(parser.value(QStringLiteral("bind")));
        if (bind.isNull()) {
            *error = QStringLiteral("--bind: \"%1\" is not an address").arg(parser.value(QStringLiteral("bind")));
            return Error;
        }
    }
    if (parser.isSet(QStringLiteral("devices")))
        devices = parser.value(QStringLiteral("devices"));
    int seedValue = int(seed);
    const bool numbersOk = readInt(parser, QStringLiteral("duplicates"), 0, 1000000, &duplicates, error)
        && readInt(parser, QStringLiteral("seed"), 0, 2147483647, &seedValue, error)
        && readProbability(parser, QStringLiteral("loss"), &loss, error)
        && readProbability(parser, QStringLiteral("corrupt"), &corrupt, error)
        && readInt(parser, QStringLiteral("latency"), 0, 60000, &latencyMs, error)
        && readInt(parser, QStringLiteral("baud"), 50, 4000000, &baud, error)
        && readInt(parser, QStringLiteral("silent"), 0, 1000000, &silent, error)
        && readInt(parser, QStringLiteral("encoder-faults"), 0, 1000000, &encoderFaults, error)
        && readInt(parser, QStringLiteral("reply-window"), 0, 60000, &replyWindowMs, error)
        && readInt(parser, QStringLiteral("power-loss-at"), 0, 65535, &powerLossAt, error)
        && readProbability(parser, QStringLiteral("corrupt-blocks"), &corruptBlocks, error)
        && readNumber(parser, QStringLiteral("time-scale"), 0.01, 10000.0, &timeScale, error,
                      [](const QString& t, bool* ok) { return t.toDouble(ok); });
    seed = quint32(seedValue);
    if (numbersOk && parser.isSet(QStringLiteral("hostile"))
        && !SimNetwork::hostileFromName(parser.value(QStringLiteral("hostile")), &hostile)) {
        *error = QStringLiteral("--hostile: \"%1\" is not broadcast, acks, slots or random")
                     .arg(parser.value(QStringLiteral("hostile")));
        return Error;
    }
    return numbersOk ? Run : Error;
}
