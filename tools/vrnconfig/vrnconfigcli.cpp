#include "vrnconfigcli.h"

#include "busdiscoverjob.h"
#include "busdiscovertask.h"
#include "busfactory.h"
#include "getfwversionjob.h"
#include "getgroupsjob.h"
#include "getlabeljob.h"
#include "objectfactory.h"
#include "objectquerymodel.h"
#include "objectselectionmodel.h"
#include "qmlobjectworker.h"
#include "qmlserialportlist.h"
#include "setgroupsjob.h"
#include "setgroupstask.h"
#include "setlabeljob.h"
#include "settings.h"
#include "vrnbus.h"
#include "vrnlistenermodel.h"
#include "vrnlistenerviewmodel.h"
#include "vrnobjectworker.h"
#include "vrnstdobject.h"
#include "workqueue.h"

#include <QCommandLineParser>
#include <QDateTime>
#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSqlDatabase>
#include <QSqlError>
#include <QStandardPaths>
#include <QTextStream>
#include <QTimer>

#include <cstdio>
#include <unistd.h>

namespace {

const int LabelMax = 16;
const int GroupSlots = 16;

const char UsageText[] =
    "Usage: vrnconfig [options] COMMAND [arguments]\n"
    "\n"
    "Options:\n"
    "  --bus UUID      bus to use (default: the remembered last bus)\n"
    "  --db FILE       device registry, an SQLite file (default: devices.sqlite in the\n"
    "                  user's data folder; :memory: for none)\n"
    "  --json          machine-readable output on standard output\n"
    "  --timeout MS    time a device has to answer one request\n"
    "  --help          this text\n"
    "\n"
    "Commands:\n"
    "  ports                         serial ports: name, description, path\n"
    "  open UUID                     open a bus (serial:NAME or mcast:GROUP:PORT:BIND), remember it\n"
    "  close                         forget the remembered bus\n"
    "  discover                      find the nodes on the bus and register them\n"
    "  list [--sort COLUMN] [--desc] the registry; COLUMN: uuid nodeid type label serial nboccur\n"
    "  get label|version|groups DEVICE...\n"
    "  set label DEVICE TEXT\n"
    "  set groups DEVICE ADDR...     group numbers, decimal or 0x hexadecimal\n"
    "  forget DEVICE...              remove devices from the registry\n"
    "  monitor [--count N] [--duration S]   frames seen on the bus\n"
    "\n"
    "Motors:\n"
    "  wink DEVICE...                make motors show themselves\n"
    "  move DEVICE... up|down|stop|to PERCENT|to-pulse N|to-ip INDEX|by PULSES\n"
    "                                (a negative PULSES after --: move 3 by -- -200)\n"
    "  get position|direction|limits|speed|ramp|ips DEVICE...\n"
    "  set direction DEVICE standard|reversed\n"
    "  set limits DEVICE up|down here|PULSES|adjust DELTA   (a negative DELTA after --)\n"
    "  set speed DEVICE UP DOWN SLOW          rolling speeds 6..28 (DC motors)\n"
    "  set ramp DEVICE START STOP             soft start and stop: off or 0..100 (DC motors)\n"
    "  set ip DEVICE INDEX here|delete|PULSES|PERCENT%   intermediate position 0..15\n"
    "  factory-default DEVICE... [--ips-only] [--yes]   asks first on a terminal\n"
    "  watch position DEVICE         the position as it changes, until the motor stops\n"
    "\n"
    "DEVICE: a uuid, node:NUMBER (decimal or 0x hexadecimal), or all.\n"
    "Exit code: 0 success, 1 a device's job or the bus failed, 2 usage error.\n";

QString hex(quint32 value, int width = 6)
{
    return QStringLiteral("0x%1").arg(value, width, 16, QLatin1Char('0')).toUpper().replace(QLatin1String("0X"), QLatin1String("0x"));
}

QString text(const QByteArray& bytes)
{
    return QString::fromUtf8(bytes);
}

// A list of group numbers as a JSON array and as one line of hexadecimal words.
template <typename List, typename ToUInt>
void putGroups(const List& list, ToUInt toUInt, QJsonObject& json, QString& line)
{
    QJsonArray array;
    QStringList words;
    for (const auto& item : list) {
        const quint32 group = toUInt(item);
        array.append(qint64(group));
        words << hex(group);
    }
    line = words.join(QLatin1Char(' '));
    json.insert(QStringLiteral("groups"), array);
}

QHash<QString, ObjectQueryModel::Role> sortKeys()
{
    return {{QStringLiteral("uuid"), ObjectQueryModel::UuidRole},
            {QStringLiteral("nodeid"), ObjectQueryModel::NodeIDRole},
            {QStringLiteral("type"), ObjectQueryModel::TypeRole},
            {QStringLiteral("label"), ObjectQueryModel::LabelRole},
            {QStringLiteral("serial"), ObjectQueryModel::SerialNumberRole},
            {QStringLiteral("nboccur"), ObjectQueryModel::NbOccurRole}};
}

} // namespace

VrnConfigCli::VrnConfigCli(QObject* parent) : QObject(parent) {}

bool VrnConfigCli::start(const QStringList& arguments)
{
    QCommandLineParser parser;
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    const QCommandLineOption bus(QStringLiteral("bus"), QString(), QStringLiteral("UUID"));
    const QCommandLineOption db(QStringLiteral("db"), QString(), QStringLiteral("FILE"));
    const QCommandLineOption json(QStringLiteral("json"));
    const QCommandLineOption timeout(QStringLiteral("timeout"), QString(), QStringLiteral("MS"));
    const QCommandLineOption help(QStringLiteral("help"));
    const QCommandLineOption sort(QStringLiteral("sort"), QString(), QStringLiteral("COLUMN"));
    const QCommandLineOption desc(QStringLiteral("desc"));
    const QCommandLineOption count(QStringLiteral("count"), QString(), QStringLiteral("N"));
    const QCommandLineOption duration(QStringLiteral("duration"), QString(), QStringLiteral("S"));
    const QCommandLineOption yes(QStringLiteral("yes"));
    const QCommandLineOption ipsOnly(QStringLiteral("ips-only"));
    parser.addOptions({bus, db, json, timeout, help, sort, desc, count, duration, yes, ipsOnly});
    if (!parser.parse(arguments)) {
        fail(Usage, parser.errorText());
        return false;
    }
    if (parser.isSet(help)) {
        std::fputs(UsageText, stdout);
        m_ended = true;
        return false;
    }
    m_busUuid = parser.value(bus);
    m_dbFile = parser.value(db);
    m_json = parser.isSet(json);
    m_sort = parser.value(sort).toLower();
    m_desc = parser.isSet(desc);
    m_yes = parser.isSet(yes);
    m_ipsOnly = parser.isSet(ipsOnly);
    quint32 number = 0;
    if (parser.isSet(timeout)) {
        if (!parseNumber(parser.value(timeout), 3600000, number) || number == 0) {
            fail(Usage, tr("bad --timeout: %1").arg(parser.value(timeout)));
            return false;
        }
        m_timeout = int(number);
    }
    if (parser.isSet(count)) {
        if (!parseNumber(parser.value(count), 0x7FFFFFFF, number)) {
            fail(Usage, tr("bad --count: %1").arg(parser.value(count)));
            return false;
        }
        m_count = int(number);
    }
    if (parser.isSet(duration)) {
        bool ok = false;
        m_duration = parser.value(duration).toDouble(&ok);
        // The bound keeps the timer's milliseconds in an int; NaN fails both tests.
        if (!ok || !(m_duration >= 0 && m_duration <= 2000000)) {
            fail(Usage, tr("bad --duration: %1").arg(parser.value(duration)));
            return false;
        }
    }
    if (!m_sort.isEmpty() && !sortKeys().contains(m_sort)) {
        fail(Usage, tr("unknown sort column: %1").arg(m_sort));
        return false;
    }

    QStringList args = parser.positionalArguments();
    if (args.isEmpty()) {
        fail(Usage, tr("no command; see vrnconfig --help"));
        return false;
    }
    const QString name = args.takeFirst();
    const QHash<QString, Command> commands{
        {QStringLiteral("ports"), [this](const QStringList& a) { cmdPorts(a); }},
        {QStringLiteral("open"), [this](const QStringList& a) { cmdOpen(a); }},
        {QStringLiteral("close"), [this](const QStringList& a) { cmdClose(a); }},
        {QStringLiteral("discover"), [this](const QStringList& a) { cmdDiscover(a); }},
        {QStringLiteral("list"), [this](const QStringList& a) { cmdList(a); }},
        {QStringLiteral("get"), [this](const QStringList& a) { cmdGet(a); }},
        {QStringLiteral("set"), [this](const QStringList& a) { cmdSet(a); }},
        {QStringLiteral("forget"), [this](const QStringList& a) { cmdForget(a); }},
        {QStringLiteral("monitor"), [this](const QStringList& a) { cmdMonitor(a); }},
        {QStringLiteral("wink"), [this](const QStringList& a) { cmdWink(a); }},
        {QStringLiteral("move"), [this](const QStringList& a) { cmdMove(a); }},
        {QStringLiteral("factory-default"), [this](const QStringList& a) { cmdFactoryDefault(a); }},
        {QStringLiteral("watch"), [this](const QStringList& a) { cmdWatch(a); }},
    };
    const Command command = commands.value(name);
    if (!command) {
        fail(Usage, tr("unknown command: %1; see vrnconfig --help").arg(name));
        return false;
    }
    // Options of one command are refused elsewhere rather than silently ignored.
    const QList<QPair<const QCommandLineOption*, QString>> ownOptions{
        {&sort, QStringLiteral("list")}, {&desc, QStringLiteral("list")},
        {&count, QStringLiteral("monitor")}, {&duration, QStringLiteral("monitor")},
        {&yes, QStringLiteral("factory-default")}, {&ipsOnly, QStringLiteral("factory-default")}};
    for (const auto& own : ownOptions) {
        if (parser.isSet(*own.first) && name != own.second) {
            fail(Usage, tr("--%1 applies to %2 only").arg(own.first->names().first(), own.second));
            return false;
        }
    }
    if (!openDatabase())
        return false;
    command(args);
    return !m_ended;
}

// --- commands ---------------------------------------------------------------

void VrnConfigCli::cmdPorts(const QStringList& args)
{
    if (!args.isEmpty())
        return fail(Usage, tr("ports takes no argument"));
    QMLSerialPortList ports;
    QJsonArray array;
    for (int row = 0; row < ports.count(); ++row) {
        const QModelIndex index = ports.index(row, 0);
        const QString name = ports.data(index, QMLSerialPortList::NameRole).toString();
        const QString description = ports.data(index, QMLSerialPortList::DescriptionRole).toString();
        const QString path = ports.data(index, QMLSerialPortList::DevicePathRole).toString();
        if (m_json)
            array.append(QJsonObject{{QStringLiteral("name"), name},
                                     {QStringLiteral("description"), description},
                                     {QStringLiteral("path"), path}});
        else
            out(QStringLiteral("%1\t%2\t%3").arg(name, description, path));
    }
    if (m_json)
        outJson(array);
    else if (ports.count() == 0)
        std::fputs("no serial port\n", stderr);
    finish();
}

void VrnConfigCli::cmdOpen(const QStringList& args)
{
    if (args.size() != 1)
        return fail(Usage, tr("open takes one bus identifier"));
    BusFactory* buses = BusFactory::instance();
    const QString uuid = args.first();
    if (!BusFactory::isSerialUUID(uuid) && !BusFactory::isMCastUUID(uuid))
        return fail(Usage, tr("not a bus identifier: %1 (serial:NAME or mcast:GROUP:PORT:BIND)").arg(uuid));
    if (!buses->openUUID(uuid))
        return fail(Failed, tr("cannot open %1: %2").arg(uuid, buses->lastError()));
    if (m_json)
        outJson(QJsonObject{{QStringLiteral("bus"), buses->busUUID()}});
    else
        out(buses->busUUID());
    finish();
}

void VrnConfigCli::cmdClose(const QStringList& args)
{
    if (!args.isEmpty())
        return fail(Usage, tr("close takes no argument"));
    // No bus is open in this process: forgetting the remembered one is what
    // the bus factory's close() does to the settings.
    Settings::instance()->setValue(QStringLiteral("lastBusUUID"), QString());
    finish();
}

void VrnConfigCli::cmdDiscover(const QStringList& args)
{
    if (!args.isEmpty())
        return fail(Usage, tr("discover takes no argument"));
    if (!openBus())
        return;
    auto job = new BusDiscoverJob(this);
    const bool progress = !m_json && isatty(STDERR_FILENO);
    connect(job, &Job::started, this, [job, progress] {
        auto task = qobject_cast<BusDiscoverTask*>(job->task());
        if (task && progress)
            connect(task, &BusDiscoverTask::roundFinished, task, [](int round, int found) {
                std::fprintf(stderr, "\rround %d: %d node(s) found", round, found);
                std::fflush(stderr);
            });
    });
    connect(job, &Job::finished, this, [this, job, progress](Job::Error error) {
        if (progress)
            std::fputs("\n", stderr);
        if (error != Job::NoError)
            return fail(Failed, tr("discovery failed: %1").arg(job->errorString()));
        auto task = qobject_cast<BusDiscoverTask*>(job->task());
        printDevices(job->result().value<QList<unsigned int>>(), task ? task->answeredNodes() : QList<unsigned int>());
        finish();
    });
    if (!BusFactory::instance()->busWorker()->queue()->enqueue(*job, 0))
        fail(Failed, tr("cannot queue the discovery"));
}

void VrnConfigCli::cmdList(const QStringList& args)
{
    if (!args.isEmpty())
        return fail(Usage, tr("list takes no argument besides --sort and --desc"));
    ObjectQueryModel* model = ObjectFactory::instance()->createQueryModel(this);
    model->setSort(sortKeys().value(m_sort.isEmpty() ? QStringLiteral("uuid") : m_sort),
                   m_desc ? Qt::DescendingOrder : Qt::AscendingOrder);
    QJsonArray array;
    if (!m_json)
        out(QStringLiteral("%1 %2 %3 %4 %5 %6")
                .arg(QStringLiteral("UUID"), 8).arg(QStringLiteral("NODE"), -8).arg(QStringLiteral("TYPE"), -12)
                .arg(QStringLiteral("LABEL"), -17).arg(QStringLiteral("SERIAL"), -14).arg(QStringLiteral("NBOCCUR")));
    for (int row = 0; row < model->rowCount(); ++row) {
        const QModelIndex index = model->index(row, 0);
        auto value = [&](ObjectQueryModel::Role role) { return model->data(index, role); };
        const uint uuid = value(ObjectQueryModel::UuidRole).toUInt();
        const uint node = value(ObjectQueryModel::NodeIDRole).toUInt();
        const int type = value(ObjectQueryModel::TypeRole).toInt();
        const QString typeName = VRNObject::typeToString(VRNObject::Type(type));
        const QString label = value(ObjectQueryModel::LabelRole).toString();
        const QString serial = text(value(ObjectQueryModel::SerialNumberRole).toByteArray());
        const int nbOccur = value(ObjectQueryModel::NbOccurRole).toInt();
        if (m_json)
            array.append(QJsonObject{{QStringLiteral("uuid"), qint64(uuid)}, {QStringLiteral("nodeID"), qint64(node)},
                                     {QStringLiteral("type"), type}, {QStringLiteral("typeName"), typeName},
                                     {QStringLiteral("label"), label}, {QStringLiteral("serialNumber"), serial},
                                     {QStringLiteral("nbOccur"), nbOccur}});
        else
            out(QStringLiteral("%1 %2 %3 %4 %5 %6").arg(uuid, 8).arg(hex(node), -8).arg(typeName, -12)
                    .arg(label, -17).arg(serial, -14).arg(nbOccur));
    }
    if (m_json)
        outJson(array);
    finish();
}

void VrnConfigCli::cmdGet(const QStringList& args)
{
    if (args.size() < 2)
        return fail(Usage, tr("get needs what (label, version or groups) and at least one DEVICE"));
    const QString what = args.first();
    QList<VRNObject::UUID> uuids;
    if (!resolveDevices(args.mid(1), uuids))
        return;
    JobFactory makeJob;
    ValueReader readValue;
    if (what == QLatin1String("label")) {
        makeJob = [](VRNStdObject&) -> QmlJob* { return new GetLabelJob; };
        readValue = [](VRNStdObject& o, QJsonObject& json, QString& line) {
            line = text(o.proxyStdConfig().getConstData().label);
            json.insert(QStringLiteral("label"), line);
        };
    } else if (what == QLatin1String("version")) {
        makeJob = [](VRNStdObject&) -> QmlJob* { return new GetFwVersionJob; };
        readValue = [](VRNStdObject& o, QJsonObject& json, QString& line) {
            line = o.proxyStdConfig().getConstData().appVersion.toString();
            json.insert(QStringLiteral("version"), line);
        };
    } else if (what == QLatin1String("groups")) {
        makeJob = [](VRNStdObject&) -> QmlJob* { return new GetGroupsJob; };
        readValue = [](VRNStdObject& o, QJsonObject& json, QString& line) {
            putGroups(o.proxyStdConfig().getConstData().groups, [](VRN::Addr g) { return g; }, json, line);
        };
    } else if (getMotor(what, uuids)) {
        return;
    } else {
        return fail(Usage, tr("cannot get %1 (label, version, groups, position, direction, limits, speed, "
                              "ramp or ips)").arg(what));
    }
    if (openBus())
        runOnDevices(uuids, makeJob, readValue, what == QLatin1String("label"));
}

void VrnConfigCli::cmdSet(const QStringList& args)
{
    if (args.size() < 3)
        return fail(Usage, tr("set needs what, a DEVICE and values; see vrnconfig --help"));
    const QString what = args.first();
    QList<VRNObject::UUID> uuids;
    if (!resolveDevices(args.mid(1, 1), uuids))
        return;
    JobFactory makeJob;
    ValueReader readValue;
    if (what == QLatin1String("label")) {
        if (args.size() != 3)
            return fail(Usage, tr("set label takes one DEVICE and one TEXT"));
        const QByteArray label = args.at(2).toUtf8();
        if (label.size() > LabelMax)
            return fail(Usage, tr("label longer than %1 bytes: %2").arg(LabelMax).arg(args.at(2)));
        makeJob = [label](VRNStdObject&) -> QmlJob* {
            auto job = new SetLabelJob;
            job->setLabel(label);
            return job;
        };
        readValue = [label](VRNStdObject&, QJsonObject& json, QString& line) {
            line = text(label);
            json.insert(QStringLiteral("label"), line);
        };
    } else if (what == QLatin1String("groups")) {
        QVariantList groups;
        for (const QString& word : args.mid(2)) {
            quint32 group = 0;
            if (!parseNumber(word, 0xFFFFFF, group))
                return fail(Usage, tr("bad group number: %1").arg(word));
            groups << group;
        }
        if (groups.size() > GroupSlots)
            return fail(Usage, tr("a node has %1 group slots, %2 given").arg(GroupSlots).arg(groups.size()));
        makeJob = [groups](VRNStdObject&) -> QmlJob* {
            auto job = new SetGroupsJob;
            job->setGroups(groups);
            return job;
        };
        readValue = [groups](VRNStdObject&, QJsonObject& json, QString& line) {
            putGroups(groups, [](const QVariant& g) { return g.toUInt(); }, json, line);
        };
    } else if (setMotor(what, uuids, args.mid(2))) {
        return;
    } else {
        return fail(Usage, tr("cannot set %1 (label, groups, direction, limits, speed, ramp or ip)").arg(what));
    }
    if (!openBus())
        return;
    // A group write that fails leaves its job running for good (see
    // SetGroupsTask): the wait is bounded by the time every request may take.
    int bound = 0;
    if (what == QLatin1String("groups")) {
        const int requests = int(uuids.size()) * (args.size() - 2);
        bound = (requests + 1) * BusFactory::instance()->bus()->timeout() + 1000;
    }
    runOnDevices(uuids, makeJob, readValue, what == QLatin1String("label"), QString(), bound);
}

void VrnConfigCli::cmdForget(const QStringList& args)
{
    QList<VRNObject::UUID> uuids;
    if (args.isEmpty())
        return fail(Usage, tr("forget needs at least one DEVICE"));
    if (!resolveDevices(args, uuids))
        return;
    int code = Ok;
    for (VRNObject::UUID uuid : qAsConst(uuids)) {
        const bool ok = ObjectFactory::instance()->destroyObject(uuid);
        if (!ok)
            code = Failed;
        if (m_json)
            outJson(QJsonObject{{QStringLiteral("uuid"), qint64(uuid)}, {QStringLiteral("ok"), ok}});
        else
            out(QStringLiteral("%1 %2").arg(uuid).arg(ok ? QStringLiteral("forgotten") : QStringLiteral("not found")));
    }
    finish(code);
}

void VrnConfigCli::cmdMonitor(const QStringList& args)
{
    if (!args.isEmpty())
        return fail(Usage, tr("monitor takes no argument besides --count and --duration"));
    if (!openBus())
        return;
    QAbstractItemModel* frames = BusFactory::instance()->busListener();
    auto seen = std::make_shared<int>(0);
    connect(frames, &QAbstractItemModel::rowsInserted, this, [this, frames, seen](const QModelIndex&, int first, int last) {
        for (int row = first; row <= last && !m_ended; ++row) {
            const QModelIndex index = frames->index(row, 0);
            auto value = [&](int role) { return frames->data(index, role); };
            const qint64 ms = value(VRNListenerModel::TimeRole).toDateTime().toMSecsSinceEpoch();
            const QString time = QStringLiteral("%1.%2").arg(ms / 1000).arg((ms % 1000) * 1000, 6, 10, QLatin1Char('0'));
            const bool valid = value(VRNListenerModel::ValidRole).toBool();
            const QVariant source = value(VRNListenerModel::SourceRole);
            const QVariant destination = value(VRNListenerModel::DestinationRole);
            const QString command = value(VRNListenerModel::CommandNameRole).toString();
            const QString payload = value(VRNListenerModel::PayloadRole).toString();
            if (m_json) {
                outJson(QJsonObject{{QStringLiteral("time"), time},
                                    {QStringLiteral("direction"), value(VRNListenerModel::DirectionRole).toInt() == VRNListenerModel::Sent
                                                                      ? QStringLiteral("sent") : QStringLiteral("received")},
                                    {QStringLiteral("source"), source.isValid() ? qint64(source.toUInt()) : QJsonValue()},
                                    {QStringLiteral("destination"), destination.isValid() ? qint64(destination.toUInt()) : QJsonValue()},
                                    {QStringLiteral("command"), command},
                                    {QStringLiteral("payload"), payload},
                                    {QStringLiteral("valid"), valid}});
            } else {
                const QString from = source.isValid() ? hex(source.toUInt(), 8) : QStringLiteral("?");
                const QString to = destination.isValid() ? hex(destination.toUInt()) : QStringLiteral("?");
                out(QStringLiteral("(%1) %2 > %3 %4 %5%6").arg(time, from, to, valid ? command : QStringLiteral("INVALID"), payload,
                                                                valid ? QString() : QStringLiteral(" !")));
            }
            if (m_count >= 0 && ++*seen >= m_count)
                finish();
        }
    });
    if (m_count == 0)
        return finish();
    if (m_duration >= 0)
        QTimer::singleShot(int(m_duration * 1000), this, [this] { finish(); });
}

// --- shared steps -----------------------------------------------------------

bool VrnConfigCli::openDatabase()
{
    QString file = m_dbFile;
    if (file.isEmpty()) {
        const QString dir = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
        if (!QDir().mkpath(dir)) {
            fail(Failed, tr("cannot create the data folder %1").arg(dir));
            return false;
        }
        file = dir + QStringLiteral("/devices.sqlite");
    }
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"));
    db.setDatabaseName(file);
    if (!db.open()) {
        fail(Failed, tr("cannot open the device registry %1: %2").arg(file, db.lastError().text()));
        return false;
    }
    return true;
}

bool VrnConfigCli::openBus()
{
    BusFactory* buses = BusFactory::instance();
    const QString remembered = buses->lastBusUUID();
    const QString uuid = m_busUuid.isEmpty() ? remembered : m_busUuid;
    if (uuid.isEmpty()) {
        fail(Failed, tr("no bus: open one with 'vrnconfig open UUID' or give --bus UUID"));
        return false;
    }
    if (!BusFactory::isSerialUUID(uuid) && !BusFactory::isMCastUUID(uuid)) {
        fail(Usage, tr("not a bus identifier: %1").arg(uuid));
        return false;
    }
    if (!buses->openUUID(uuid)) {
        fail(Failed, tr("cannot open %1: %2").arg(uuid, buses->lastError()));
        return false;
    }
    // A bus given with --bus serves this run only: the remembered one stays.
    if (!m_busUuid.isEmpty() && m_busUuid != remembered)
        Settings::instance()->setValue(QStringLiteral("lastBusUUID"), remembered);
    if (m_timeout > 0)
        buses->bus()->setTimeout(m_timeout);
    // Nodes answer a broadcast within a short spread: a round ends once the
    // line has been quiet a little longer than that, not after a fixed window.
    buses->bus()->setBroadcastQuietTime(300);
    return true;
}

bool VrnConfigCli::resolveDevices(const QStringList& words, QList<VRNObject::UUID>& uuids)
{
    ObjectFactory* factory = ObjectFactory::instance();
    for (const QString& word : words) {
        QList<VRNObject::UUID> found;
        if (word == QLatin1String("all")) {
            ObjectQueryModel* model = factory->createQueryModel(this);
            model->setSort(ObjectQueryModel::UuidRole, Qt::AscendingOrder);
            found = model->toList();
            delete model;
        } else if (word.startsWith(QLatin1String("node:"))) {
            quint32 node = 0;
            if (!parseNumber(word.mid(5), 0xFFFFFF, node)) {
                fail(Usage, tr("bad node number: %1").arg(word));
                return false;
            }
            ObjectSelectionModel selection(factory->database());
            selection.addItems(ObjectFactory::NodeIDColumn, node);
            found = selection.toList();
            if (found.isEmpty()) {
                fail(Usage, tr("unknown device: %1").arg(word));
                return false;
            }
        } else {
            quint32 uuid = 0;
            if (!parseNumber(word, 0xFFFFFFFE, uuid)) {
                fail(Usage, tr("bad device: %1 (a uuid, node:NUMBER or all)").arg(word));
                return false;
            }
            if (!factory->object(uuid)) {
                fail(Usage, tr("unknown device: %1").arg(word));
                return false;
            }
            found << uuid;
        }
        for (VRNObject::UUID uuid : qAsConst(found))
            if (!uuids.contains(uuid))
                uuids << uuid;
    }
    return true;
}

// Runs one job per device, each on its device's worker (the bus puts the
// requests on the wire one at a time), and prints one result per device in
// the order given once every job has ended.
void VrnConfigCli::runOnDevices(const QList<VRNObject::UUID>& uuids, const JobFactory& makeJob,
                                const ValueReader& readValue, bool store, const QString& refusal, int bound)
{
    struct Run
    {
        QSharedPointer<VRNObjectWorker> worker;
        QSharedPointer<VRNObject> object;
        QmlJob* job = nullptr;
        QJsonObject json;
        QString line;
        /// Why the job was taken off its queue, when it was.
        QString stopped;
        bool ended = false;
    };
    auto runs = std::make_shared<QList<Run>>();
    auto report = [this, runs] {
        for (const Run& run : qAsConst(*runs))
            if (!run.ended)
                return;
        int code = Ok;
        for (const Run& run : qAsConst(*runs)) {
            const bool ok = run.json.value(QStringLiteral("ok")).toBool();
            code = ok ? code : Failed;
            if (m_json)
                outJson(run.json);
            else
                out(QStringLiteral("%1 %2 %3").arg(run.json.value(QStringLiteral("uuid")).toInt(), 8)
                        .arg(ok ? QStringLiteral("ok    ") : QStringLiteral("FAILED"), ok ? run.line : run.json.value(QStringLiteral("error")).toString()));
        }
        finish(code);
    };
    ObjectFactory* factory = ObjectFactory::instance();
    for (VRNObject::UUID uuid : uuids) {
        Run run;
        run.json = QJsonObject{{QStringLiteral("uuid"), qint64(uuid)}, {QStringLiteral("ok"), false}};
        run.object = factory->object(uuid);
        run.worker = factory->objectWorker(uuid);
        auto std = qobject_cast<VRNStdObject*>(run.object.data());
        if (!std || !run.worker) {
            run.json.insert(QStringLiteral("error"), tr("not a network node"));
            run.ended = true;
        } else if ((run.job = makeJob(*std))) {
            run.job->setParent(this);
        } else {
            run.json.insert(QStringLiteral("error"), refusal);
            run.ended = true;
        }
        runs->append(run);
    }
    for (int i = 0; i < runs->size(); ++i) {
        Run& run = (*runs)[i];
        if (run.ended)
            continue;
        connect(run.job, &Job::finished, this, [this, runs, i, readValue, store, report, factory](Job::Error error) {
            Run& run = (*runs)[i];
            if (error == Job::NoError) {
                run.json.insert(QStringLiteral("ok"), true);
                run.json.insert(QStringLiteral("error"), QString());
                readValue(*qobject_cast<VRNStdObject*>(run.object.data()), run.json, run.line);
                // Keep what the device said, so the registry lists it.
                if (store && !factory->save(run.object.data()))
                    std::fprintf(stderr, "vrnconfig: device %u: label not stored in the registry\n", run.object->uuid());
            } else {
                run.json.insert(QStringLiteral("error"), run.stopped.isEmpty() ? run.job->errorString() : run.stopped);
            }
            run.ended = true;
            run.worker.reset();
            report();
        });
        // Stops a job that would not end by itself (a failed group write).
        auto stop = [runs, i](const QString& why) {
            Run& run = (*runs)[i];
            if (run.ended || !run.worker)
                return;
            run.stopped = why;
            run.worker->queue()->dequeue(*run.job);
        };
        connect(run.job, &Job::started, this, [this, runs, i, stop] {
            auto task = qobject_cast<SetGroupsTask*>((*runs)[i].job->task());
            if (!task)
                return;
            // Queued: the task is still inside its slot job's end when it reports.
            connect(task, &SetGroupsTask::slotFailed, this, [this, runs, i, stop](int slot, const QString& error) {
                (*runs)[i].json.insert(QStringLiteral("slot"), slot);
                stop(tr("group slot %1 refused: %2").arg(slot).arg(error));
            }, Qt::QueuedConnection);
        });
        if (bound > 0) {
            QTimer::singleShot(bound, this, [this, runs, i, stop, bound] {
                const Run& run = (*runs)[i];
                auto task = run.job ? qobject_cast<SetGroupsTask*>(run.job->task()) : nullptr;
                if (task && task->failedSlot() >= 0)
                    stop(tr("group slot %1 refused: %2").arg(task->failedSlot()).arg(task->slotError()));
                else
                    stop(tr("no end within %1 ms").arg(bound));
            });
        }
        if (!run.worker->queue()->enqueue(*run.job, 0)) {
            run.json.insert(QStringLiteral("error"), tr("cannot queue the job"));
            run.ended = true;
        }
    }
    report();
}

// Discovery reports the nodes it registered now; a node listed before comes
// back as NoObject, and its row is found here by its address.
void VrnConfigCli::printDevices(const QList<VRNObject::UUID>& uuids, const QList<unsigned int>& addrs)
{
    ObjectFactory* factory = ObjectFactory::instance();
    QJsonArray array;
    if (!m_json)
        out(tr("%1 device(s) found").arg(uuids.size()));
    for (int i = 0; i < uuids.size(); ++i) {
        VRNObject::UUID uuid = uuids.at(i);
        const bool known = uuid == BusDiscoverTask::NoObject && i < addrs.size();
        if (known) {
            const VRN::Addr addr = addrs.at(i);
            uuid = factory->findObject(VRN::getNumber(addr), BusDiscoverTask::deviceType(VRN::getType(addr)));
        }
        const QSharedPointer<VRNObject> object = uuid == BusDiscoverTask::NoObject || uuid == 0 ? nullptr : factory->object(uuid);
        if (!object) {
            if (m_json)
                array.append(QJsonObject{{QStringLiteral("uuid"), QJsonValue()}});
            else
                out(tr("       - (not registered)"));
            continue;
        }
        const QString typeName = VRNObject::typeToString(object->type());
        const quint32 node = VRN::getNumber(object->address());
        if (m_json)
            array.append(QJsonObject{{QStringLiteral("uuid"), qint64(uuid)}, {QStringLiteral("nodeID"), qint64(node)},
                                     {QStringLiteral("type"), int(object->type())}, {QStringLiteral("typeName"), typeName},
                                     {QStringLiteral("new"), !known}});
        else
            out(QStringLiteral("%1 %2 %3%4").arg(uuid, 8).arg(hex(node), -8).arg(typeName, -12)
                    .arg(known ? tr("(listed before)") : tr("(new)")));
    }
    if (m_json)
        outJson(array);
}

// --- output -----------------------------------------------------------------

bool VrnConfigCli::parseNumber(const QString& text, quint32 max, quint32& value)
{
    bool ok = false;
    const qulonglong v = text.startsWith(QLatin1String("0x"), Qt::CaseInsensitive) ? text.mid(2).toULongLong(&ok, 16)
                                                                                   : text.toULongLong(&ok, 10);
    if (!ok || v > max)
        return false;
    value = quint32(v);
    return true;
}

void VrnConfigCli::out(const QString& line)
{
    std::fputs(line.toUtf8().constData(), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

void VrnConfigCli::outJson(const QJsonValue& value)
{
    const QByteArray bytes = value.isArray() ? QJsonDocument(value.toArray()).toJson(QJsonDocument::Compact)
                                             : QJsonDocument(value.toObject()).toJson(QJsonDocument::Compact);
    out(QString::fromUtf8(bytes));
}

void VrnConfigCli::fail(int code, const QString& message)
{
    std::fprintf(stderr, "vrnconfig: %s\n", message.toUtf8().constData());
    finish(code);
}

void VrnConfigCli::finish(int code)
{
    if (m_ended)
        return;
    m_ended = true;
    m_exit = code;
    emit done(code);
}
