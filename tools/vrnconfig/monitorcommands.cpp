// The monitor family: the frames seen on the bus, as they come.
#include "command.h"
#include "vrnconfigcli.h"

#include "busfactory.h"
#include "vrnlistenermodel.h"

#include <QAbstractItemModel>
#include <QDateTime>
#include <QTimer>

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
    if (!cli.openBus())
        return;
    // Ctrl-C is the usual way to end a monitor: not a failure.
    cli.setInterruptHandler([&cli] { cli.finish(); });
    QAbstractItemModel* frames = BusFactory::instance()->busListener();
    auto seen = std::make_shared<quint32>(0);
    QObject::connect(frames, &QAbstractItemModel::rowsInserted, &cli, [&cli, frames, seen, counted, count](const QModelIndex&, int first, int last) {
        for (int row = first; row <= last && !cli.ended(); ++row) {
            const QModelIndex index = frames->index(row, 0);
            auto value = [&](int role) { return frames->data(index, role); };
            const qint64 ms = value(VRNListenerModel::TimeRole).toDateTime().toMSecsSinceEpoch();
            const QString time = QStringLiteral("%1.%2").arg(ms / 1000).arg((ms % 1000) * 1000, 6, 10, QLatin1Char('0'));
            const bool valid = value(VRNListenerModel::ValidRole).toBool();
            const QVariant source = value(VRNListenerModel::SourceRole);
            const QVariant destination = value(VRNListenerModel::DestinationRole);
            const QString command = value(VRNListenerModel::CommandNameRole).toString();
            const QString payload = value(VRNListenerModel::PayloadRole).toString();
            if (cli.json()) {
                cli.output().jsonLine(QJsonObject{{QStringLiteral("time"), time},
                                                  {QStringLiteral("direction"), value(VRNListenerModel::DirectionRole).toInt() == VRNListenerModel::Sent
                                                                                    ? QStringLiteral("sent") : QStringLiteral("received")},
                                                  {QStringLiteral("source"), source.isValid() ? qint64(source.toUInt()) : QJsonValue()},
                                                  {QStringLiteral("destination"), destination.isValid() ? qint64(destination.toUInt()) : QJsonValue()},
                                                  {QStringLiteral("command"), command},
                                                  {QStringLiteral("payload"), payload},
                                                  {QStringLiteral("valid"), valid}});
            } else {
                const QString from = source.isValid() ? Cli::hex(source.toUInt(), 8) : QStringLiteral("?");
                const QString to = destination.isValid() ? Cli::nodeText(destination.toUInt()) : QStringLiteral("?");
                cli.output().line(QStringLiteral("(%1) %2 > %3 %4 %5%6").arg(time, from, to, valid ? command : QStringLiteral("INVALID"), payload,
                                                                             valid ? QString() : QStringLiteral(" !")));
            }
            if (counted && ++*seen >= count)
                cli.finish();
        }
    });
    if (counted && count == 0)
        return cli.finish();
    if (duration >= 0)
        QTimer::singleShot(int(duration * 1000), &cli, [&cli] { cli.finish(); });
}

void addMonitorCommands(CommandRegistry& r)
{
    r.add({QStringLiteral("monitor"), {}, QStringLiteral("[--count N] [--duration S]"),
           Cli::tr("frames seen on the bus (JSON Lines with --json); Ctrl-C ends it"), monitor});
    r.addOption(QCommandLineOption(QStringLiteral("count"), QString(), QStringLiteral("N")), {QStringLiteral("monitor")});
    r.addOption(QCommandLineOption(QStringLiteral("duration"), QString(), QStringLiteral("S")), {QStringLiteral("monitor")});
}

const CommandFamily family(70, "Monitor", addMonitorCommands);

} // namespace
