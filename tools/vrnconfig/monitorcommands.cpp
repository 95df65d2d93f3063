// The monitor family: the frames on the bus, as they come, decoded; and a
// capture for Wireshark.
#include "command.h"
#include "vrnconfigcli.h"

#include "framedecoder.h"
#include "healthcommands.h"
#include "output.h"
#include "pcapwriter.h"

#include "bus.h"
#include "busfactory.h"
#include "busmessage.h"

#include <QDateTime>
#include <QTimer>

#include <chrono>
#include <memory>

namespace {

using Cli = VrnConfigCli;

void monitor(Cli& cli, const QStringList& args)
{
    cli.output().setStream(true);
    if (!args.isEmpty())
        return cli.fail(Cli::Usage, Cli::tr("monitor takes no argument besides --count and --duration"));
    quint32 count = 0;
    const bool counted = cli.isSet(QStringLiteral("count"));
    if (counted && !Cli::parseNumber(cli.value(QStringLiteral("count")), 0x7FFFFFFF, count))
        return cli.fail(Cli::Usage, Cli::tr("bad --count: %1").arg(cli.value(QStringLiteral("count"))));
    double duration = -1;
    if (cli.isSet(QStringLiteral("duration"))) {
        bool ok = false;
        duration = cli.value(QStringLiteral("duration")).toDouble(&ok);
        // The bound keeps the timer's milliseconds in an int; NaN fails both tests.
        if (!ok || !(duration >= 0 && duration <= 2000000))
            return cli.fail(Cli::Usage, Cli::tr("bad --duration: %1").arg(cli.value(QStringLiteral("duration"))));
    }
    if (cli.isSet(QStringLiteral("health"))) {
        if (counted || cli.isSet(QStringLiteral("write")))
            return cli.fail(Cli::Usage, Cli::tr("--health takes --duration only"));
        return monitorHealth(cli, duration);
    }
    const QString pcapFile = cli.value(QStringLiteral("write"));
    if (cli.isSet(QStringLiteral("write")) && pcapFile.isEmpty())
        return cli.fail(Cli::Usage, Cli::tr("--write needs a file name"));
    auto pcap = std::make_shared<PcapWriter>();
    if (!pcapFile.isEmpty() && !pcap->open(pcapFile))
        return cli.fail(Cli::Failed, Cli::tr("cannot write %1: %2").arg(pcapFile, pcap->errorString()));
    if (!cli.openBus())
        return;
    // Ctrl-C is the usual way to end a monitor: not a failure.
    auto end = [&cli, pcap] {
        pcap->close();
        cli.finish();
    };
    cli.setInterruptHandler(end);
    auto seen = std::make_shared<quint32>(0);
    auto show = [&cli, pcap, seen, counted, count, end](const BusMessage& message, bool sent) {
        if (cli.ended())
            return;
        const qint64 us = std::chrono::duration_cast<std::chrono::microseconds>(
                              std::chrono::system_clock::now().time_since_epoch()).count();
        const QByteArray bytes = message.data();
        if (pcap->write(us, bytes))
            pcap->flush();
        const QDateTime wall = QDateTime::fromMSecsSinceEpoch(us / 1000);
        const QString time = wall.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss.")) + QStringLiteral("%1").arg(us % 1000000, 6, 10, QLatin1Char('0'));
        const DecodedFrame f = decodeFrame(bytes);
        if (cli.json()) {
            QJsonObject o = f.json;
            o.insert(QStringLiteral("time"), time);
            o.insert(QStringLiteral("epochUs"), us);
            o.insert(QStringLiteral("direction"), sent ? QStringLiteral("sent") : QStringLiteral("received"));
            cli.output().jsonLine(o);
        } else if (f.valid) {
            cli.output().line(QStringLiteral("%1 %2 %3 > %4 %5%6").arg(time, sent ? QStringLiteral(">>") : QStringLiteral("<<"),
                                                                       f.source, f.destination, f.command,
                                                                       f.text.isEmpty() ? QString() : QStringLiteral(" ") + printable(f.text)));
        } else {
            cli.output().line(QStringLiteral("%1 %2 INVALID %3").arg(time, sent ? QStringLiteral(">>") : QStringLiteral("<<"),
                                                                     f.json.value(QStringLiteral("bytes")).toString()));
        }
        if (counted && ++*seen >= count)
            end();
    };
    Bus* bus = BusFactory::instance()->bus();
    QObject::connect(bus, &Bus::messageSent, &cli, [show](const BusMessage& m) { show(m, true); });
    QObject::connect(bus, &Bus::messageReceived, &cli, [show](const BusMessage& m) { show(m, false); });
    // A monitor that went on after its line vanished would watch nothing.
    failWhenBusGoes(cli, bus, [pcap] { pcap->close(); });
    if (counted && count == 0)
        return end();
    if (duration >= 0)
        QTimer::singleShot(int(duration * 1000), &cli, end);
}

void addMonitorCommands(CommandRegistry& r)
{
    r.add({QStringLiteral("monitor"), {}, QStringLiteral("[--count N] [--duration S] [--write FILE.pcap] [--health]"),
           Cli::tr("every frame on the bus, both directions, decoded, with wall-clock time\n"
                   "(JSON Lines with --json); --write also saves them as a pcap file for\n"
                   "Wireshark (tools/wireshark/vrn.lua); --health shows each node's figures\n"
                   "instead, redrawn every second; Ctrl-C ends it"), monitor});
    r.addOption(QCommandLineOption(QStringLiteral("write"), QString(), QStringLiteral("FILE")), {QStringLiteral("monitor")});
    r.addOption(QCommandLineOption(QStringLiteral("count"), QString(), QStringLiteral("N")), {QStringLiteral("monitor"), QStringLiteral("health")});
    r.addOption(QCommandLineOption(QStringLiteral("duration"), QString(), QStringLiteral("S")), {QStringLiteral("monitor")});
}

const CommandFamily family(70, "Monitor", addMonitorCommands);

} // namespace
