// The groups family: the group addresses the registry knows, and moving every
// motor of a group at once with one frame. Also the options every job
// command takes (the runner reads them).
#include "command.h"
#include "vrnconfigcli.h"

#include "dts.h"
#include "groupcontrol.h"
#include "objectfactory.h"
#include "vrn.h"

#include <QJsonArray>

namespace {

using Cli = VrnConfigCli;

void groupList(Cli& cli, const QStringList& args)
{
    if (!args.isEmpty())
        return cli.fail(Cli::Usage, Cli::tr("group list takes no argument"));
    ObjectFactory* registry = ObjectFactory::instance();
    QJsonArray array;
    TextTable table(cli.output(), {{QStringLiteral("GROUP"), 10}, {QStringLiteral("DEVICES"), 8, true}, {QStringLiteral("MEMBERS"), 0}});
    if (!cli.json())
        table.header();
    const QList<unsigned int> groups = registry->groupIds();
    for (unsigned int group : groups) {
        const QList<VRNObject::UUID> members = registry->groupMembers(group);
        QJsonArray uuids;
        QStringList words;
        for (VRNObject::UUID uuid : members) {
            uuids.append(qint64(uuid));
            words << QString::number(uuid);
        }
        if (cli.json())
            array.append(QJsonObject{{QStringLiteral("group"), qint64(group)}, {QStringLiteral("members"), uuids}});
        else
            table.row({Cli::nodeText(group), QString::number(members.size()), words.join(QLatin1Char(' '))});
    }
    if (cli.json())
        cli.output().document(array);
    else if (groups.isEmpty())
        cli.output().note(Cli::tr("no group known; 'vrnconfig get groups all' reads them from the devices"));
    cli.finish();
}

void groupMove(Cli& cli, const QStringList& args)
{
    const QString usage = Cli::tr("group move takes ADDR and up, down, to PERCENT or stop");
    if (args.size() < 2)
        return cli.fail(Cli::Usage, usage);
    quint32 group = 0;
    if (!Cli::parseGroupAddress(args.at(0), group))
        return cli.fail(Cli::Usage, Cli::tr("not a valid group address: %1 (1 to 0xFFFFFE)").arg(args.at(0)));
    const QString verb = args.at(1);
    quint32 percent = 0;
    if (verb == QLatin1String("to")) {
        if (args.size() != 3 || !Cli::parseNumber(args.at(2), 100, percent))
            return cli.fail(Cli::Usage, Cli::tr("group move ADDR to takes a percent from 0 to 100"));
    } else if (args.size() != 2 || (verb != QLatin1String("up") && verb != QLatin1String("down") && verb != QLatin1String("stop"))) {
        return cli.fail(Cli::Usage, usage);
    }
    if (!cli.openBus())
        return;
    auto* control = new GroupControl(&cli);
    QObject::connect(control, &GroupControl::sent, &cli, [&cli, verb](unsigned int group, bool ok, const QString& error) {
        if (!ok)
            return cli.fail(Cli::Failed, Cli::tr("group %1: %2").arg(Cli::nodeText(group), error));
        if (cli.json())
            cli.output().document(QJsonObject{{QStringLiteral("group"), qint64(group)}, {QStringLiteral("move"), verb},
                                              {QStringLiteral("ok"), true}});
        else
            cli.output().line(Cli::tr("group %1: %2 sent (group requests get no answer)").arg(Cli::nodeText(group), verb));
        cli.finish();
    });
    bool sent = false;
    if (verb == QLatin1String("up"))
        sent = control->moveTo(group, DTSMotor::MoveToUpLimit);
    else if (verb == QLatin1String("down"))
        sent = control->moveTo(group, DTSMotor::MoveToDownLimit);
    else if (verb == QLatin1String("to"))
        sent = control->moveTo(group, DTSMotor::MoveToPercent, int(percent));
    else
        sent = control->stop(group);
    if (!sent)
        cli.fail(Cli::Failed, Cli::tr("group %1: %2").arg(Cli::nodeText(group), control->lastError()));
}

// Stops every motor, or every motor of a group, with one broadcast frame and
// without asking first: stopping is never the harmful choice.
void stopCommand(Cli& cli, const QStringList& args)
{
    quint32 group = VRN::BroadcastNumber;
    if (args.size() == 2 && args.at(0) == QLatin1String("group")) {
        if (!Cli::parseGroupAddress(args.at(1), group))
            return cli.fail(Cli::Usage, Cli::tr("not a valid group address: %1 (1 to 0xFFFFFE)").arg(args.at(1)));
    } else if (args != QStringList{QStringLiteral("all")}) {
        return cli.fail(Cli::Usage, Cli::tr("stop takes all or group ADDR"));
    }
    if (!cli.openBus())
        return;
    const bool all = group == VRN::BroadcastNumber;
    auto* control = new GroupControl(&cli);
    QObject::connect(control, &GroupControl::sent, &cli, [&cli, all](unsigned int group, bool ok, const QString& error) {
        const QString whom = all ? Cli::tr("every motor") : Cli::tr("group %1").arg(Cli::nodeText(group));
        if (!ok)
            return cli.fail(Cli::Failed, Cli::tr("stop %1: %2").arg(whom, error));
        if (cli.json())
            cli.output().document(QJsonObject{{QStringLiteral("stop"), all ? QStringLiteral("all") : Cli::nodeText(group)},
                                              {QStringLiteral("frames"), 1}, {QStringLiteral("ok"), true}});
        else
            cli.output().line(Cli::tr("stop sent to %1 (one frame, no answers)").arg(whom));
        cli.finish();
    });
    if (!control->stopAll(group))
        cli.fail(Cli::Failed, Cli::tr("stop: %1").arg(control->lastError()));
}

void addGroupCommands(CommandRegistry& r)
{
    r.add({QStringLiteral("group"), QStringLiteral("list"), QString(),
           Cli::tr("the group addresses the registry knows and their devices"), groupList});
    r.add({QStringLiteral("group"), QStringLiteral("move"), QStringLiteral("ADDR up|down|to PERCENT|stop"),
           Cli::tr("move every motor of a group at once: one frame, no answers"), groupMove});
    r.add({QStringLiteral("stop"), {}, QStringLiteral("all|group ADDR"),
           Cli::tr("stop every motor, or every motor of a group, at once: one frame, no confirmation"), stopCommand});
    const QStringList jobCommands{QStringLiteral("get"), QStringLiteral("set"), QStringLiteral("wink"),
                                  QStringLiteral("move"), QStringLiteral("factory-default")};
    r.addOption(QCommandLineOption(QStringLiteral("priority"), QString(), QStringLiteral("N")), jobCommands);
    r.addOption(QCommandLineOption(QStringLiteral("abort-on-error")), jobCommands);
}

const CommandFamily family(35, "Groups", addGroupCommands);

} // namespace
