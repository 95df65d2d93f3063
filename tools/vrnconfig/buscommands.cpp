// The bus family: serial ports, opening and closing the bus, discovery.
#include "command.h"
#include "vrnconfigcli.h"

#include "busdiscoverjob.h"
#include "busdiscovertask.h"
#include "busfactory.h"
#include "objectfactory.h"
#include "qmlserialportlist.h"
#include "settings.h"
#include "vrnbus.h"
#include "vrnobjectworker.h"
#include "workqueue.h"

#include <QJsonArray>

#include <unistd.h>

namespace {

using Cli = VrnConfigCli;

void ports(Cli& cli, const QStringList& args)
{
    if (!args.isEmpty())
        return cli.fail(Cli::Usage, Cli::tr("ports takes no argument"));
    QMLSerialPortList ports;
    QJsonArray array;
    TextTable table(cli.output(), {{QStringLiteral("NAME"), 12}, {QStringLiteral("DESCRIPTION"), 30}, {QStringLiteral("PATH"), 0}});
    if (!cli.json() && ports.count() > 0)
        table.header();
    for (int row = 0; row < ports.count(); ++row) {
        const QModelIndex index = ports.index(row, 0);
        const QString name = ports.data(index, QMLSerialPortList::NameRole).toString();
        const QString description = ports.data(index, QMLSerialPortList::DescriptionRole).toString();
        const QString path = ports.data(index, QMLSerialPortList::DevicePathRole).toString();
        if (cli.json())
            array.append(QJsonObject{{QStringLiteral("name"), name},
                                     {QStringLiteral("description"), description},
                                     {QStringLiteral("path"), path}});
        else
            table.row({name, description, path});
    }
    if (cli.json())
        cli.output().document(array);
    else if (ports.count() == 0)
        cli.output().note(Cli::tr("no serial port"));
    cli.finish();
}

void open(Cli& cli, const QStringList& args)
{
    if (args.size() != 1)
        return cli.fail(Cli::Usage, Cli::tr("open takes one bus identifier"));
    BusFactory* buses = BusFactory::instance();
    const QString uuid = args.first();
    if (!BusFactory::isSerialUUID(uuid) && !BusFactory::isMCastUUID(uuid))
        return cli.fail(Cli::Usage, Cli::tr("not a bus identifier: %1 (serial:NAME or mcast:GROUP:PORT:BIND)").arg(uuid));
    if (!buses->openUUID(uuid))
        return cli.fail(Cli::Failed, Cli::tr("cannot open %1: %2").arg(uuid, buses->lastError()));
    if (cli.json())
        cli.output().document(QJsonObject{{QStringLiteral("bus"), buses->busUUID()}});
    else
        cli.output().line(buses->busUUID());
    cli.finish();
}

void close(Cli& cli, const QStringList& args)
{
    if (!args.isEmpty())
        return cli.fail(Cli::Usage, Cli::tr("close takes no argument"));
    // No bus is open in this process: forgetting the remembered one is what
    // the bus factory's close() does to the settings.
    Settings::instance()->setValue(QStringLiteral("lastBusUUID"), QString());
    if (cli.json())
        cli.output().document(QJsonObject{{QStringLiteral("bus"), QJsonValue()}});
    cli.finish();
}

// Discovery reports the nodes it registered now; a node listed before comes
// back as NoObject, and its row is found here by its address.
void printDevices(Cli& cli, const QList<VRNObject::UUID>& uuids, const QList<unsigned int>& addrs)
{
    ObjectFactory* factory = ObjectFactory::instance();
    QJsonArray array;
    if (!cli.json())
        cli.output().line(Cli::tr("%1 device(s) found").arg(uuids.size()));
    for (int i = 0; i < uuids.size(); ++i) {
        VRNObject::UUID uuid = uuids.at(i);
        const bool known = uuid == BusDiscoverTask::NoObject && i < addrs.size();
        if (known) {
            const VRN::Addr addr = addrs.at(i);
            uuid = factory->findObject(VRN::getNumber(addr), BusDiscoverTask::deviceType(VRN::getType(addr)));
        }
        const QSharedPointer<VRNObject> object = uuid == BusDiscoverTask::NoObject || uuid == 0 ? nullptr : factory->object(uuid);
        if (!object) {
            if (cli.json())
                array.append(QJsonObject{{QStringLiteral("uuid"), QJsonValue()}});
            else
                cli.output().line(Cli::tr("       - (not registered)"));
            continue;
        }
        const QString typeName = VRNObject::typeToString(object->type());
        const quint32 node = VRN::getNumber(object->address());
        if (cli.json())
            array.append(QJsonObject{{QStringLiteral("uuid"), qint64(uuid)}, {QStringLiteral("nodeID"), qint64(node)},
                                     {QStringLiteral("type"), int(object->type())}, {QStringLiteral("typeName"), typeName},
                                     {QStringLiteral("new"), !known}});
        else
            cli.output().line(QStringLiteral("%1 %2 %3%4").arg(uuid, 8).arg(Cli::nodeText(node), -8).arg(typeName, -12)
                                  .arg(known ? Cli::tr("(listed before)") : Cli::tr("(new)")));
    }
    if (cli.json())
        cli.output().document(array);
}

void discover(Cli& cli, const QStringList& args)
{
    if (!args.isEmpty())
        return cli.fail(Cli::Usage, Cli::tr("discover takes no argument"));
    if (!cli.openBus())
        return;
    auto job = new BusDiscoverJob(&cli);
    QObject::connect(job, &Job::started, &cli, [job, &cli] {
        auto task = qobject_cast<BusDiscoverTask*>(job->task());
        if (task)
            QObject::connect(task, &BusDiscoverTask::roundFinished, task, [&cli](int round, int found) {
                cli.output().progress(Cli::tr("round %1: %2 node(s) found").arg(round).arg(found));
            });
    });
    QObject::connect(job, &Job::finished, &cli, [&cli, job](Job::Error error) {
        cli.output().clearProgress();
        if (error != Job::NoError)
            return cli.fail(Cli::Failed, Cli::tr("discovery failed: %1").arg(job->errorString()));
        auto task = qobject_cast<BusDiscoverTask*>(job->task());
        printDevices(cli, job->result().value<QList<unsigned int>>(), task ? task->answeredNodes() : QList<unsigned int>());
        cli.finish();
    });
    if (!BusFactory::instance()->busWorker()->queue()->enqueue(*job, 0))
        cli.fail(Cli::Failed, Cli::tr("cannot queue the discovery"));
}

void addBusCommands(CommandRegistry& r)
{
    r.add({QStringLiteral("ports"), {}, {}, Cli::tr("serial ports: name, description, path"), ports});
    r.add({QStringLiteral("open"), {}, QStringLiteral("UUID"),
           Cli::tr("open a bus (serial:NAME or mcast:GROUP:PORT:BIND) and remember it"), open});
    r.add({QStringLiteral("close"), {}, {}, Cli::tr("forget the remembered bus"), close});
    r.add({QStringLiteral("discover"), {}, {}, Cli::tr("find the nodes on the bus and register them"), discover});
}

const CommandFamily family(10, "Bus", addBusCommands);

} // namespace
