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
#include "getserialnumberjob.h"
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

#include <QElapsedTimer>
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
    QString serial;
    QString status; // new, known, missing, in bootloader
    bool duplicate = false;
    QString labelError;
};

// Counts the answers to each round's address request: two from one node
// number in one round means two devices share that number, unless the two
// lie as far apart as the requests do: then one is a late answer to the
// round before (or to a repeated request), from the same device. Answers of
// devices sharing a number come within the nodes' short spread of replies.
// Serial numbers tell devices apart too: two different ones from one
// number are two devices.
struct DuplicateWatch
{
    QHash<quint32, qint64> firstAnswer;
    QSet<quint32> duplicates;
    QHash<quint32, QSet<QByteArray>> serials;
    QElapsedTimer clock;
    qint64 roundStart = -1;
    qint64 roundGap = -1;

    void sent(const BusMessage& frame)
    {
        const VRNMessage m(frame);
        if (!m.isValid() || m.cmd() != DTS::GetNodeAddr)
            return;
        if (!clock.isValid())
            clock.start();
        const qint64 now = clock.elapsed();
        roundGap = roundStart < 0 ? -1 : now - roundStart;
        roundStart = now;
        firstAnswer.clear();
    }
    void received(const BusMessage& frame)
    {
        const VRNMessage m(frame);
        if (!m.isValid() || m.dstAddr() != VRN::getNumber(VRN::toolAddr()))
            return;
        const quint32 node = VRN::getNumber(m.srcAddr());
        if (m.cmd() == DTS::PostNodeSerialNumber) {
            QSet<QByteArray>& seen = serials[node];
            seen.insert(VRNMessage(frame).payload());
            if (seen.size() > 1)
                duplicates.insert(node);
            return;
        }
        if (m.cmd() != DTS::PostNodeAddr || !clock.isValid())
            return;
        const qint64 now = clock.elapsed();
        const auto first = firstAnswer.constFind(node);
        if (first == firstAnswer.constEnd())
            firstAnswer.insert(node, now);
        else if (roundGap < 0 || now - *first < roundGap / 2)
            duplicates.insert(node);
    }
    /// How many devices answer to `node`.
    int occurrences(quint32 node) const
    {
        return duplicates.contains(node) ? qMax(2, int(serials.value(node).size())) : 1;
    }
};

// The report: every device found or missing, by node number, with its label.
void report(Cli& cli, QList<Found> devices, const QSet<quint32>& duplicates, const QString& bus, int answered)
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
                          {QStringLiteral("serialNumber"), f.serial},
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
        if (answered == 0)
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
    // The cabling is named only when nothing answered at all, not when the
    // registry failed to keep what answered.
    if (answered == 0)
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

// Runs one job quietly on every node found (not the missing ones, nor
// setting tools, which answer no node request); `then` gets each device's
// result by uuid.
void readFound(Cli& cli, const QList<Found>& devices, const DeviceRunner::JobFactory& make,
               const DeviceRunner::ValueReader& read, std::function<void(const QHash<qint64, QJsonObject>&)> then)
{
    QList<VRNObject::UUID> uuids;
    for (const Found& f : devices)
        if ((f.status == QLatin1String("new") || f.status == QLatin1String("known"))
            && VRNObject::isNetworkNode(VRNObject::Type(f.type)))
            uuids << f.uuid;
    auto runner = new DeviceRunner(cli);
    runner->setQuiet(true);
    QObject::connect(runner, &DeviceRunner::finished, &cli, [runner, then] {
        QHash<qint64, QJsonObject> results;
        for (const QJsonObject& r : runner->results())
            results.insert(r.value(QStringLiteral("uuid")).toVariant().toLongLong(), r);
        then(results);
    });
    runner->runJobs(uuids, make, read);
}

// Reads the label of every device found, so the registry lists them at once,
// keeps a row per device of a duplicated number, then reports.
void readLabels(Cli& cli, QList<Found> devices, std::shared_ptr<DuplicateWatch> watch, const QString& bus, int answered)
{
    readFound(cli, devices, [](VRNStdObject&) { return new GetLabelJob; }, readLabel,
              [&cli, devices, watch, bus, answered](const QHash<qint64, QJsonObject>& results) mutable {
        ObjectFactory* factory = ObjectFactory::instance();
        for (Found& f : devices) {
            if (results.contains(f.uuid)) {
                const QJsonObject r = results.value(f.uuid);
                if (r.value(QStringLiteral("ok")).toBool())
                    f.label = r.value(QStringLiteral("label")).toString();
                else
                    f.labelError = r.value(QStringLiteral("error")).toString();
            }
            if (f.status == QLatin1String("missing") || f.status == QLatin1String("in bootloader"))
                continue;
            // A number that more devices answer to keeps a row per device, so
            // the registry shows it (nbOccur) until a discovery sees it once.
            f.duplicate = watch->duplicates.contains(f.node);
            factory->setOccurrences(f.node, VRNObject::Type(f.type), watch->occurrences(f.node));
        }
        report(cli, devices, watch->duplicates, bus, answered);
        cli.finish();
    });
}

// Reads the serial number of every device found into the registry, then
// the labels.
void readSerials(Cli& cli, QList<Found> devices, std::shared_ptr<DuplicateWatch> watch, const QString& bus, int answered)
{
    auto read = [](DeviceRun& run, QString& error) {
        const QByteArray serial = run.device->proxyStdConfig().getConstData().serialNumber;
        run.result.insert(QStringLiteral("serialNumber"), QString::fromLatin1(serial));
        if (ObjectFactory::instance()->storeSerialNumberRead(run.device))
            return true;
        error = ObjectFactory::instance()->lastError();
        return false;
    };
    readFound(cli, devices, [](VRNStdObject&) { return new GetSerialNumberJob; }, read,
              [&cli, devices, watch, bus, answered](const QHash<qint64, QJsonObject>& results) mutable {
        for (Found& f : devices)
            if (results.value(f.uuid).value(QStringLiteral("ok")).toBool())
                f.serial = results.value(f.uuid).value(QStringLiteral("serialNumber")).toString();
        readLabels(cli, devices, watch, bus, answered);
    });
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
    // A device the registry cannot keep is lost to the report: the run ends
    // at once with the registry's reason rather than waiting on every node.
    QObject::connect(factory, &ObjectFactory::writeFailed, job, [&cli, job](const QString& why) {
        cli.fail(Cli::Failed, Cli::tr("discovery stopped: %1").arg(why));
        if (auto task = job->task())
            task->abort();
    });
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
        for (int i = 0; i < uuids.size() && i < addrs.size(); ++i) {
            Found f;
            // Each device gets the kind its node type names (discovery's own
            // table knows fewer); a node listed before comes back as NoObject
            // and is found by its address.
            f.uuid = factory->settleKind(addrs.at(i), uuids.at(i));
            f.status = before.contains(f.uuid) ? QStringLiteral("known") : QStringLiteral("new");
            const QSharedPointer<VRNObject> object = f.uuid == 0 ? nullptr : factory->object(f.uuid);
            // No row: the registry failed to keep the device (the failure
            // ends the run with its reason).
            if (!object || seen.contains(f.uuid))
                continue;
            seen.insert(f.uuid);
            f.node = VRN::getNumber(object->address());
            f.type = int(object->type());
            devices << f;
        }
        QSet<QPair<quint32, int>> answeredKinds;
        for (const Found& f : qAsConst(devices))
            answeredKinds.insert({f.node, f.type});
        for (VRNObject::UUID uuid : before) {
            if (seen.contains(uuid))
                continue;
            const QSharedPointer<VRNObject> object = factory->object(uuid);
            // The further rows of a number several devices answer to are
            // not missing while the number answers.
            if (!object || answeredKinds.contains({VRN::getNumber(object->address()), int(object->type())}))
                continue;
            Found f;
            f.uuid = uuid;
            f.node = VRN::getNumber(object->address());
            f.type = int(object->type());
            f.label = QString::fromUtf8(object->label());
            f.status = QStringLiteral("missing");
            devices << f;
        }
        probeBootloaders(cli, devices, [&cli, watch, busUuid, answered = addrs.size()](QList<Found> devices) {
            readSerials(cli, devices, watch, busUuid, answered);
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
