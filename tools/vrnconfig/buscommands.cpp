// The bus family: serial ports, opening and closing the bus, discovery.
#include "command.h"
#include "vrnconfigcli.h"

#include "devicerunner.h"
#include "labelcommands.h"

#include "bus.h"
#include "busdiscoverjob.h"
#include "busdiscovertask.h"
#include "busfactory.h"
#include "dts.h"
#include "buspendingcallwatcher.h"
#include "getlabeljob.h"
#include "motorbl.h"
#include "objectfactory.h"
#include "objectquerymodel.h"
#include "qmlserialportlist.h"
#include "settings.h"
#include "vrnbus.h"
#include "vrnmessage.h"
#include "vrnstdobject.h"
#include "vrnobjectworker.h"
#include "workqueue.h"

#include <QJsonArray>
#include <QSet>

#include <algorithm>
#include <memory>

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
    if (!cli.checkBusUuid(uuid) || !cli.openBusUuid(uuid))
        return;
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

// What discovery saw of one device.
struct Found
{
    VRNObject::UUID uuid = 0;
    quint32 node = 0;
    int type = 0;
    QString label;
    QString status; // new, known, missing, in bootloader
    bool duplicate = false;
    QString labelError;
};

// Counts the answers to each round's address request: two from one node
// number in one round means two devices share that number.
struct DuplicateWatch
{
    QHash<quint32, int> round;
    QSet<quint32> duplicates;

    void sent(const BusMessage& frame)
    {
        const VRNMessage m(frame);
        if (m.isValid() && m.cmd() == DTS::GetNodeAddr)
            round.clear();
    }
    void received(const BusMessage& frame)
    {
        const VRNMessage m(frame);
        if (!m.isValid() || m.cmd() != DTS::PostNodeAddr || m.dstAddr() != VRN::getNumber(VRN::toolAddr()))
            return;
        const quint32 node = VRN::getNumber(m.srcAddr());
        if (++round[node] == 2)
            duplicates.insert(node);
    }
};

// The report: every device found or missing, by node number, with its label.
void report(Cli& cli, QList<Found> devices, const QSet<quint32>& duplicates, const QString& bus)
{
    std::sort(devices.begin(), devices.end(), [](const Found& a, const Found& b) {
        return a.node != b.node ? a.node < b.node : a.uuid < b.uuid;
    });
    int counts[4] = {0, 0, 0, 0};
    const QStringList statuses{QStringLiteral("new"), QStringLiteral("known"), QStringLiteral("missing"),
                               QStringLiteral("in bootloader")};
    for (const Found& f : qAsConst(devices))
        ++counts[statuses.indexOf(f.status)];
    const int found = counts[0] + counts[1];
    QList<quint32> sortedDuplicates = duplicates.values();
    std::sort(sortedDuplicates.begin(), sortedDuplicates.end());
    QStringList duplicateNodes;
    for (quint32 node : qAsConst(sortedDuplicates))
        duplicateNodes << Cli::nodeText(node);
    const QString hint = Cli::tr("no device answered on %1: check that it is the right bus, its cabling and the devices' power").arg(bus);
    if (cli.json()) {
        QJsonArray array;
        for (const Found& f : qAsConst(devices)) {
            QJsonObject o{{QStringLiteral("uuid"), qint64(f.uuid)}, {QStringLiteral("nodeID"), qint64(f.node)},
                          {QStringLiteral("node"), Cli::nodeText(f.node)}, {QStringLiteral("type"), f.type},
                          {QStringLiteral("typeName"), VRNObject::typeToString(VRNObject::Type(f.type))},
                          {QStringLiteral("kind"), Cli::kindName(f.type)}, {QStringLiteral("label"), f.label},
                          {QStringLiteral("status"), f.status}, {QStringLiteral("duplicate"), f.duplicate}};
            if (!f.labelError.isEmpty())
                o.insert(QStringLiteral("labelError"), f.labelError);
            array.append(o);
        }
        QJsonObject doc{{QStringLiteral("devices"), array},
                        {QStringLiteral("summary"), QJsonObject{{QStringLiteral("found"), found}, {QStringLiteral("new"), counts[0]},
                                                                {QStringLiteral("known"), counts[1]}, {QStringLiteral("missing"), counts[2]},
                                                                {QStringLiteral("inBootloader"), counts[3]},
                                                                {QStringLiteral("duplicates"), QJsonArray::fromStringList(duplicateNodes)}}}};
        if (found == 0)
            doc.insert(QStringLiteral("hint"), hint);
        cli.output().document(doc);
    } else {
        TextTable table(cli.output(), {{QStringLiteral("UUID"), 8, true}, {QStringLiteral("NODE"), 8}, {QStringLiteral("KIND"), 13},
                                       {QStringLiteral("LABEL"), 17}, {QStringLiteral("STATUS"), 0}});
        if (!devices.isEmpty())
            table.header();
        for (const Found& f : qAsConst(devices)) {
            QString status = f.status;
            if (f.duplicate)
                status += Cli::tr(", DUPLICATE ADDRESS");
            if (!f.labelError.isEmpty())
                status += Cli::tr(", label not read: %1").arg(f.labelError);
            table.row({QString::number(f.uuid), Cli::nodeText(f.node), Cli::kindName(f.type), f.label, status});
        }
        cli.output().line(Cli::tr("%1 device(s) found: %2 new, %3 known; %4 missing")
                              .arg(found).arg(counts[0]).arg(counts[1]).arg(counts[2])
                          + (counts[3] ? Cli::tr(", %1 in bootloader (vrnconfig firmware recover)").arg(counts[3]) : QString()));
    }
    for (const QString& node : qAsConst(duplicateNodes))
        cli.output().note(Cli::tr("vrnconfig: warning: node %1 answered twice in one round: two devices may share that address")
                              .arg(node));
    if (found == 0)
        cli.output().note(QStringLiteral("vrnconfig: ") + hint);
}

// A device that answers no discovery may wait in its bootloader (cut off in
// an update): BL_EXIT, which such a node answers without leaving, tells.
void probeBootloaders(Cli& cli, QList<Found> devices, const std::function<void(QList<Found>)>& then)
{
    auto left = std::make_shared<QList<Found>>(devices);
    auto waiting = std::make_shared<int>(1);
    auto oneDone = [left, waiting, then] {
        if (--*waiting == 0)
            then(*left);
    };
    for (int i = 0; i < left->size(); ++i) {
        if (left->at(i).status != QLatin1String("missing"))
            continue;
        const QSharedPointer<VRNObject> object = ObjectFactory::instance()->object(left->at(i).uuid);
        if (!object)
            continue;
        auto* probe = new MotorBL(object->address(), BusFactory::instance()->bus(), &cli);
        auto* watcher = new BusPendingCallWatcher(probe->exit(), probe);
        ++*waiting;
        QObject::connect(watcher, &BusPendingCallWatcher::finished, probe, [probe, watcher, left, i, oneDone] {
            MotorBL::Status status = MotorBL::Ok;
            quint32 value = 0;
            if (watcher->error() == BusPendingCall::NoError && probe->statusReply(watcher->reply(), status, value)
                && status == MotorBL::NoImage)
                (*left)[i].status = QStringLiteral("in bootloader");
            probe->deleteLater();
            oneDone();
        });
    }
    oneDone();
}

// Reads the label of every device found, so the registry lists them at once,
// then reports.
void readLabels(Cli& cli, QList<Found> devices, const QSet<quint32>& duplicates, const QString& bus)
{
    QList<VRNObject::UUID> uuids;
    for (const Found& f : qAsConst(devices))
        if (f.status == QLatin1String("new") || f.status == QLatin1String("known"))
            uuids << f.uuid;
    auto runner = new DeviceRunner(cli);
    runner->setQuiet(true);
    QObject::connect(runner, &DeviceRunner::finished, &cli, [&cli, runner, devices, duplicates, bus]() mutable {
        QHash<qint64, QJsonObject> results;
        for (const QJsonObject& r : runner->results())
            results.insert(r.value(QStringLiteral("uuid")).toVariant().toLongLong(), r);
        for (Found& f : devices) {
            if (!results.contains(f.uuid))
                continue;
            const QJsonObject r = results.value(f.uuid);
            if (r.value(QStringLiteral("ok")).toBool())
                f.label = r.value(QStringLiteral("label")).toString();
            else
                f.labelError = r.value(QStringLiteral("error")).toString();
        }
        report(cli, devices, duplicates, bus);
        cli.finish();
    });
    runner->runJobs(uuids, [](VRNStdObject&) { return new GetLabelJob; }, readLabel);
}

void discover(Cli& cli, const QStringList& args)
{
    if (!args.isEmpty())
        return cli.fail(Cli::Usage, Cli::tr("discover takes no argument"));
    if (!cli.openBus())
        return;
    Bus* bus = BusFactory::instance()->bus();
    // Nodes that answer late need a round that waits for them: --timeout is
    // how long the first answers may take.
    if (cli.timeout() > 0) {
        bus->setBroadcastQuietTime(cli.timeout());
        bus->setBroadcastWindow(2 * cli.timeout() + 1000);
    }
    ObjectFactory* factory = ObjectFactory::instance();
    QSet<VRNObject::UUID> before;
    {
        QScopedPointer<ObjectQueryModel> model(factory->createQueryModel(nullptr));
        for (VRNObject::UUID uuid : model->toList())
            before.insert(uuid);
    }
    auto watch = std::make_shared<DuplicateWatch>();
    QObject::connect(bus, &Bus::messageSent, &cli, [watch](const BusMessage& m) { watch->sent(m); });
    QObject::connect(bus, &Bus::messageReceived, &cli, [watch](const BusMessage& m) { watch->received(m); });
    auto job = new BusDiscoverJob(&cli);
    QObject::connect(job, &Job::started, &cli, [job, &cli] {
        auto task = qobject_cast<BusDiscoverTask*>(job->task());
        if (task)
            QObject::connect(task, &BusDiscoverTask::roundFinished, task, [&cli](int round, int found) {
                cli.output().progress(Cli::tr("round %1: %2 node(s) found").arg(round).arg(found));
            });
    });
    const QString busUuid = BusFactory::instance()->busUUID();
    QObject::connect(job, &Job::finished, &cli, [&cli, job, before, watch, busUuid](Job::Error error) {
        cli.output().clearProgress();
        if (error != Job::NoError)
            return cli.fail(Cli::Failed, Cli::tr("discovery failed: %1").arg(job->errorString()));
        auto task = qobject_cast<BusDiscoverTask*>(job->task());
        const QList<unsigned int> uuids = job->result().value<QList<unsigned int>>();
        const QList<unsigned int> addrs = task ? task->answeredNodes() : QList<unsigned int>();
        ObjectFactory* factory = ObjectFactory::instance();
        QList<Found> devices;
        QSet<VRNObject::UUID> seen;
        for (int i = 0; i < uuids.size(); ++i) {
            Found f;
            f.uuid = uuids.at(i);
            f.status = QStringLiteral("new");
            // A node listed before comes back as NoObject: its row is found by its address.
            if (f.uuid == BusDiscoverTask::NoObject && i < addrs.size()) {
                const VRN::Addr addr = addrs.at(i);
                f.uuid = factory->findObject(VRN::getNumber(addr), BusDiscoverTask::deviceType(VRN::getType(addr)));
            }
            if (before.contains(f.uuid))
                f.status = QStringLiteral("known");
            const QSharedPointer<VRNObject> object = f.uuid == 0 || f.uuid == BusDiscoverTask::NoObject ? nullptr : factory->object(f.uuid);
            if (!object || seen.contains(f.uuid))
                continue;
            seen.insert(f.uuid);
            f.node = VRN::getNumber(object->address());
            f.type = int(object->type());
            f.duplicate = watch->duplicates.contains(f.node);
            devices << f;
        }
        for (VRNObject::UUID uuid : before) {
            if (seen.contains(uuid))
                continue;
            const QSharedPointer<VRNObject> object = factory->object(uuid);
            if (!object)
                continue;
            Found f;
            f.uuid = uuid;
            f.node = VRN::getNumber(object->address());
            f.type = int(object->type());
            f.label = QString::fromUtf8(object->label());
            f.status = QStringLiteral("missing");
            devices << f;
        }
        probeBootloaders(cli, devices, [&cli, watch, busUuid](QList<Found> devices) {
            readLabels(cli, devices, watch->duplicates, busUuid);
        });
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
