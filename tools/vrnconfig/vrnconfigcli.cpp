#include "vrnconfigcli.h"

#include "framedecoder.h"

#include "busfactory.h"
#include "groupcontrol.h"
#include "objectfactory.h"
#include "objectquerymodel.h"
#include "objectselectionmodel.h"
#include "settings.h"
#include "vrnbus.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QHostAddress>
#include <QSqlQuery>
#include <QRegularExpression>
#include <QSocketNotifier>
#include <QSqlDatabase>
#include <QSqlError>
#include <QStandardPaths>
#include <QTextStream>

#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace {

// Ctrl-C reaches the event loop through a pipe: the handler only writes a byte.
int interruptPipe[2] = {-1, -1};

void onSignal(int)
{
    const char byte = 1;
    if (interruptPipe[1] >= 0)
        (void)!write(interruptPipe[1], &byte, 1);
}

// A negative number given as an argument ("move 3 by -200") is no option:
// it is hidden from the option parser behind this mark and restored after.
const QChar NegativeMark(0xFDD0);

// An option's value as given: a negative one ("--repeats -1") was marked too.
QString unmarked(QString text)
{
    if (text.startsWith(NegativeMark))
        text.remove(0, 1);
    return text;
}

const quint32 MaxRetries = 10;
const quint32 MaxRepeats = 5;

const char OptionsText[] =
    "Options:\n"
    "  --bus UUID      bus to use (default: the remembered last bus)\n"
    "  --db FILE       device registry, an SQLite file (default: the bus's own registry\n"
    "                  in the user's data folder, shared with the application; :memory:\n"
    "                  for none)\n"
    "  --json          machine-readable output on standard output (see below)\n"
    "  --timeout MS    time a device has to answer one request (default: 500); in\n"
    "                  discovery, how long a round waits for late answers (default: 300)\n"
    "  --retries N     run a device's job again up to N times after a timeout or a bus\n"
    "                  failure, never after a refusal (0..10, default: 2)\n"
    "  --repeats N     send a request that got no answer again up to N times before it\n"
    "                  times out; a device never acts on a repeat twice (0..5, default:\n"
    "                  the setting busRepeats, else 2)\n"
    "  -h, --help      this text; help COMMAND for one command\n"
    "  --version       the tool's version\n";

const char TrailerText[] =
    "DEVICE: a uuid, node:NUMBER (decimal or 0x hexadecimal), group:ADDR (the devices the\n"
    "registry knows in that group), type:KIND (std, motor, dcmotor, lru50, tx50dc, tx30,\n"
    "settingtool; a kind includes the kinds built on it), or all. Most jobs on several devices\n"
    "run through their group, one device after another; --priority N and --abort-on-error\n"
    "apply to every job command.\n"
    "Output: with --json every command prints one JSON document (an array or an object),\n"
    "also on failure: {\"error\": \"...\", \"exitCode\": N}. monitor and watch print JSON Lines,\n"
    "one object per line. Commands on devices print one result per device as it ends and\n"
    "a summary; Ctrl-C takes the devices still waiting off and reports what ended.\n"
    "Exit code: 0 success, 1 a device's job or the bus failed, 2 usage error, 130 interrupted.\n";

} // namespace

VrnConfigCli::VrnConfigCli(QObject* parent) : QObject(parent)
{
    CommandFamily::registerAll(m_registry);
    // Writes, moves and resets of more than one device ask first; --yes answers.
    m_registry.addOption(QCommandLineOption(QStringLiteral("yes")),
                         {QStringLiteral("set"), QStringLiteral("move"), QStringLiteral("reset"), QStringLiteral("group"),
                          QStringLiteral("firmware")});
}

VrnConfigCli::~VrnConfigCli()
{
    if (m_interruptNotifier) {
        std::signal(SIGINT, SIG_DFL);
        std::signal(SIGTERM, SIG_DFL);
    }
}

bool VrnConfigCli::start(const QStringList& given)
{
    QStringList arguments = given;
    static const QRegularExpression negative(QStringLiteral("^-[0-9]"));
    for (int i = 1; i < arguments.size(); ++i)
        if (negative.match(arguments.at(i)).hasMatch())
            arguments[i].prepend(NegativeMark);
    // Known before parsing, so even a usage error comes as a JSON document.
    m_output.setJson(arguments.contains(QStringLiteral("--json")));

    m_parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    const QCommandLineOption bus(QStringLiteral("bus"), QString(), QStringLiteral("UUID"));
    const QCommandLineOption db(QStringLiteral("db"), QString(), QStringLiteral("FILE"));
    const QCommandLineOption jsonOption(QStringLiteral("json"));
    const QCommandLineOption timeout(QStringLiteral("timeout"), QString(), QStringLiteral("MS"));
    const QCommandLineOption retries(QStringLiteral("retries"), QString(), QStringLiteral("N"));
    const QCommandLineOption repeats(QStringLiteral("repeats"), QString(), QStringLiteral("N"));
    const QCommandLineOption help(QStringList{QStringLiteral("h"), QStringLiteral("help")});
    const QCommandLineOption version(QStringLiteral("version"));
    m_parser.addOptions({bus, db, jsonOption, timeout, retries, repeats, help, version});
    m_parser.addOptions(m_registry.options());
    if (!m_parser.parse(arguments)) {
        fail(Usage, m_parser.errorText());
        return false;
    }
    QStringList args;
    for (QString word : m_parser.positionalArguments())
        args << (word.startsWith(NegativeMark) ? word.mid(1) : word);
    if (m_parser.isSet(help) || args.value(0) == QLatin1String("help")) {
        printHelp(m_parser.isSet(help) ? QString() : args.value(1));
        return false;
    }
    if (m_parser.isSet(version)) {
        const QString text = QCoreApplication::applicationVersion();
        if (json())
            m_output.document(QJsonObject{{QStringLiteral("version"), text}});
        else
            m_output.line(QStringLiteral("vrnconfig %1").arg(text));
        finish();
        return false;
    }
    m_busUuid = unmarked(m_parser.value(bus));
    m_dbFile = unmarked(m_parser.value(db));
    if (m_parser.isSet(db) && m_dbFile.isEmpty()) {
        fail(Usage, tr("--db needs a file name"));
        return false;
    }
    quint32 number = 0;
    if (m_parser.isSet(timeout)) {
        if (!parseNumber(unmarked(m_parser.value(timeout)), 3600000, number) || number == 0) {
            fail(Usage, tr("bad --timeout: %1").arg(unmarked(m_parser.value(timeout))));
            return false;
        }
        m_timeout = int(number);
    }
    if (m_parser.isSet(retries)) {
        if (!parseNumber(unmarked(m_parser.value(retries)), MaxRetries, number)) {
            fail(Usage, tr("bad --retries: %1 (0..%2)").arg(unmarked(m_parser.value(retries))).arg(MaxRetries));
            return false;
        }
        m_retries = int(number);
    }
    if (m_parser.isSet(repeats)) {
        if (!parseNumber(unmarked(m_parser.value(repeats)), MaxRepeats, number)) {
            fail(Usage, tr("bad --repeats: %1 (0..%2)").arg(unmarked(m_parser.value(repeats))).arg(MaxRepeats));
            return false;
        }
        m_repeats = int(number);
    }
    if (args.isEmpty()) {
        fail(Usage, tr("no command; see vrnconfig --help"));
        return false;
    }
    const QString name = args.takeFirst();
    QString error;
    const Command* command = m_registry.find(name, args, error);
    if (!command) {
        fail(Usage, error);
        return false;
    }
    // Options of one command are refused elsewhere rather than silently ignored.
    for (const QCommandLineOption& own : m_registry.options()) {
        const QStringList takers = m_registry.takers(own.names().first());
        if (m_parser.isSet(own) && !takers.contains(name)) {
            fail(Usage, tr("--%1 applies to %2 only").arg(own.names().first(), takers.join(QStringLiteral(", "))));
            return false;
        }
    }
    quint32 priority = 0;
    if (m_parser.isSet(QStringLiteral("priority")) && !parseNumber(unmarked(m_parser.value(QStringLiteral("priority"))), 0x7FFFFFFF, priority)) {
        fail(Usage, tr("not a valid --priority: %1 (a whole number from 0)").arg(unmarked(m_parser.value(QStringLiteral("priority")))));
        return false;
    }
    // Changing every device asks first (and needs --yes off a terminal).
    if (name == QLatin1String("set") && args.value(0) == QLatin1String("all")
        && !confirm(tr("Change %1 of every device in the registry").arg(command->subject)))
        return false;
    // Any other selection of more than one device asks when it is resolved.
    static const QStringList manyAsk{QStringLiteral("set"), QStringLiteral("move"), QStringLiteral("reset"),
                                     QStringLiteral("forget"), QStringLiteral("group add"), QStringLiteral("group remove"),
                                     QStringLiteral("firmware update"), QStringLiteral("firmware recover")};
    if ((manyAsk.contains(name) || manyAsk.contains(name + QLatin1Char(' ') + command->subject))
        && !((name == QLatin1String("set") || name == QLatin1String("forget")) && args.contains(QStringLiteral("all"))))
        m_asking = (command->subject.isEmpty() ? name : name + QLatin1Char(' ') + command->subject);
    // A mistyped bus never gets a registry file of its own.
    if (!m_busUuid.isEmpty() && !checkBusUuid(m_busUuid))
        return false;
    if (!openDatabase(m_busUuid.isEmpty() ? BusFactory::instance()->lastBusUUID() : m_busUuid))
        return false;
    // Commands that change the registry are refused on a read-only one
    // before anything is sent; listing and reading go on.
    static const QStringList changing{QStringLiteral("discover"), QStringLiteral("forget"), QStringLiteral("add"),
                                      QStringLiteral("set label"), QStringLiteral("set groups"),
                                      QStringLiteral("group add"), QStringLiteral("group remove"),
                                      QStringLiteral("apply"), QStringLiteral("replace")};
    if ((changing.contains(name) || changing.contains(name + QLatin1Char(' ') + command->subject)) && refuseReadOnly())
        return false;
    watchInterrupts();
    command->run(*this, args);
    return !m_ended;
}

void VrnConfigCli::printHelp(const QString& name)
{
    if (name.isEmpty()) {
        QString text = QStringLiteral("Usage: vrnconfig [options] COMMAND [arguments]\n\n");
        text += QString::fromLatin1(OptionsText);
        QString family;
        for (const Command& c : m_registry.commands()) {
            if (c.family != family) {
                family = c.family;
                text += QStringLiteral("\n%1:\n").arg(family);
            }
            const QStringList help = c.help.split(QLatin1Char('\n'));
            const QString synopsis = c.synopsis();
            text += QStringLiteral("  %1").arg(synopsis.leftJustified(33));
            text += synopsis.size() > 33 ? QStringLiteral("\n%1").arg(QString(), 35) : QString();
            text += help.join(QStringLiteral("\n%1").arg(QString(), 35)) + QLatin1Char('\n');
        }
        text += QLatin1Char('\n') + QString::fromLatin1(TrailerText);
        std::fputs(text.toUtf8().constData(), stdout);
        finish();
        return;
    }
    const QList<const Command*> commands = m_registry.named(name);
    if (commands.isEmpty())
        return fail(Usage, tr("unknown command: %1; see vrnconfig --help").arg(name));
    QString text;
    for (const Command* c : commands)
        text += QStringLiteral("vrnconfig %1\n    %2\n").arg(c->synopsis(), c->help.split(QLatin1Char('\n')).join(QStringLiteral("\n    ")));
    std::fputs(text.toUtf8().constData(), stdout);
    finish();
}

// --- shared steps -----------------------------------------------------------

QString VrnConfigCli::registryFile(const QString& dataFolder, const QString& busUuid)
{
    return ObjectFactory::registryFile(busUuid, dataFolder);
}

// A registry that cannot be used is refused before anything is sent (see
// ObjectFactory::openRegistry): a folder, a file that is no registry, a
// damaged one, one locked by another program.
bool VrnConfigCli::openDatabase(const QString& busUuid)
{
    const QString file = m_dbFile.isEmpty() ? ObjectFactory::registryFile(busUuid) : m_dbFile;
    m_registryCreated = file != QLatin1String(":memory:") && !QFileInfo::exists(file);
    m_registryPath = file;
    QString error;
    if (!ObjectFactory::openRegistry(file, &error)) {
        fail(Failed, error);
        return false;
    }
    // Every write the registry refuses is the command's failure, with the
    // database's reason, however the command goes on.
    connect(ObjectFactory::instance(), &ObjectFactory::writeFailed, this, [this](const QString& why) {
        if (m_registryError.isEmpty())
            m_registryError = why;
    });
    return true;
}

void VrnConfigCli::discardNewRegistry()
{
    // A bus that could not be used leaves no registry behind: only one this
    // run made, and only while it is empty.
    if (!m_registryCreated || ObjectFactory::instance()->nodeAddrs().size() > 0)
        return;
    m_registryCreated = false;
    ObjectFactory::destroy();
    QSqlDatabase::database(QSqlDatabase::defaultConnection, false).close();
    QSqlDatabase::removeDatabase(QSqlDatabase::defaultConnection);
    for (const char* suffix : {"", "-wal", "-shm", "-journal"})
        QFile::remove(m_registryPath + QLatin1String(suffix));
}

bool VrnConfigCli::refuseReadOnly()
{
    if (!ObjectFactory::instance()->isReadOnly())
        return false;
    fail(Failed, tr("the device registry %1 is read-only: nothing was changed").arg(m_registryPath));
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
    if (!checkBusUuid(uuid) || !openBusUuid(uuid))
        return false;
    // A bus given with --bus serves this run only: the remembered one stays.
    if (!m_busUuid.isEmpty() && m_busUuid != remembered)
        Settings::instance()->setValue(QStringLiteral("lastBusUUID"), remembered);
    if (m_timeout > 0)
        buses->bus()->setTimeout(m_timeout);
    if (m_repeats >= 0)
        buses->bus()->setRepeats(m_repeats);
    // Nodes answer a broadcast within a short spread: a round ends once the
    // line has been quiet a little longer than that, not after a fixed window.
    buses->bus()->setBroadcastQuietTime(300);
    return true;
}

namespace {
// The kinds a device selection names, in vrnsim's words and the type keys.
const QList<QPair<QString, VRNObject::Type>>& kindNames()
{
    static const QList<QPair<QString, VRNObject::Type>> names{
        {QStringLiteral("std"), VRNObject::DtsStd},         {QStringLiteral("motor"), VRNObject::DtsMotor},
        {QStringLiteral("dcmotor"), VRNObject::DtsDcMotor}, {QStringLiteral("lru50"), VRNObject::LRU50},
        {QStringLiteral("tx50dc"), VRNObject::TX50DC},      {QStringLiteral("tx30"), VRNObject::TX30},
        {QStringLiteral("settingtool"), VRNObject::SettingTool}};
    return names;
}

} // namespace

bool VrnConfigCli::parseKind(const QString& word, VRNObject::Type& kind)
{
    for (const auto& name : kindNames()) {
        if (word.compare(name.first, Qt::CaseInsensitive) == 0
            || word.compare(VRNObject::typeToString(name.second), Qt::CaseInsensitive) == 0) {
            kind = name.second;
            return true;
        }
    }
    return false;
}

QString VrnConfigCli::kindWords()
{
    QStringList names;
    for (const auto& name : kindNames())
        names << name.first;
    return names.join(QStringLiteral(", "));
}

namespace {
// A kind and every kind whose class is built on it ("motor" holds the DC
// motors too), as the job bindings see them.
QList<VRNObject::Type> kindAndDerived(const QString& word, bool& ok)
{
    VRNObject::Type kind = VRNObject::VRNObj;
    ok = VrnConfigCli::parseKind(word, kind);
    QList<VRNObject::Type> kinds;
    const QMetaObject* base = ok ? VRNObject::typeToMetaObject(kind) : nullptr;
    for (const auto& name : kindNames()) {
        const QMetaObject* meta = VRNObject::typeToMetaObject(name.second);
        if (base && meta && (meta == base || VRNObject::isAncestor(*base, *meta)))
            kinds << name.second;
    }
    return kinds;
}
} // namespace

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
        } else if (word.startsWith(QLatin1String("group:"))) {
            quint32 group = 0;
            if (!parseGroupAddress(word.mid(6), group)) {
                fail(Usage, tr("not a valid group address: %1 (1 to 0xFFFFFE)").arg(word.mid(6)));
                return false;
            }
            found = factory->groupMembers(group);
        } else if (word.startsWith(QLatin1String("type:"))) {
            bool ok = false;
            const QList<VRNObject::Type> kinds = kindAndDerived(word.mid(5), ok);
            if (!ok) {
                fail(Usage, tr("unknown device kind: %1 (one of %2)").arg(word.mid(5), kindWords()));
                return false;
            }
            ObjectSelectionModel selection(factory->database());
            for (VRNObject::Type kind : kinds)
                selection.addItems(ObjectFactory::TypeColumn, int(kind));
            found = selection.toList();
        } else {
            quint32 uuid = 0;
            if (!parseNumber(word, 0xFFFFFFFE, uuid)) {
                fail(Usage, tr("not a valid device: %1 (a uuid, node:NUMBER, group:ADDR, type:KIND or all)").arg(word));
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
    if (uuids.isEmpty()) {
        fail(Usage, tr("no device selected by %1; run 'vrnconfig discover' to fill the registry "
                       "(and 'vrnconfig get groups all' to learn the groups)")
                        .arg(words.join(QLatin1Char(' '))));
        return false;
    }
    // A word such as type:std reaches more devices than it seems to: a
    // change of more than one asks, naming how many and which kinds.
    if (!m_asking.isEmpty() && uuids.size() > 1) {
        QMap<QString, int> kinds;
        for (VRNObject::UUID uuid : qAsConst(uuids))
            if (const QSharedPointer<VRNObject> object = factory->object(uuid))
                ++kinds[kindName(int(object->type()))];
        QStringList parts;
        for (auto it = kinds.cbegin(); it != kinds.cend(); ++it)
            parts << QStringLiteral("%1 %2").arg(it.value()).arg(it.key());
        const QString question = tr("%1 on %2 devices (%3)").arg(m_asking).arg(uuids.size()).arg(parts.join(QStringLiteral(", ")));
        m_asking.clear();
        if (!confirm(question))
            return false;
    }
    return true;
}

bool VrnConfigCli::parseGroupAddress(const QString& text, quint32& group)
{
    return parseNumber(text, 0xFFFFFF, group) && GroupControl::isGroupAddress(group);
}

bool VrnConfigCli::selectDevices(const QString& name, const QStringList& words, QList<VRNObject::UUID>& uuids)
{
    if (words.isEmpty()) {
        fail(Usage, tr("%1 needs at least one DEVICE").arg(name));
        return false;
    }
    return resolveDevices(words, uuids);
}

bool VrnConfigCli::confirm(const QString& question)
{
    if (m_parser.optionNames().contains(QStringLiteral("yes")))
        return true;
    if (!isatty(STDIN_FILENO)) {
        fail(Usage, tr("%1: confirm with --yes").arg(question));
        return false;
    }
    m_output.clearProgress();
    std::fprintf(stderr, "%s? [y/N] ", question.toUtf8().constData());
    std::fflush(stderr);
    const QString answer = QTextStream(stdin).readLine().trimmed().toLower();
    if (answer != QLatin1String("y") && answer != QLatin1String("yes")) {
        fail(Failed, tr("nothing changed"));
        return false;
    }
    return true;
}

void VrnConfigCli::watchInterrupts()
{
    if (interruptPipe[0] < 0 && pipe2(interruptPipe, O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    m_interruptNotifier = new QSocketNotifier(interruptPipe[0], QSocketNotifier::Read, this);
    connect(m_interruptNotifier, &QSocketNotifier::activated, this, [this] {
        char bytes[16];
        while (read(interruptPipe[0], bytes, sizeof bytes) > 0) {
        }
        if (m_ended)
            return;
        if (m_interrupt)
            m_interrupt();
        else
            fail(Interrupted, tr("interrupted"));
    });
    std::signal(SIGINT, onSignal);
    std::signal(SIGTERM, onSignal);
}

void VrnConfigCli::fail(int code, const QString& message)
{
    if (m_ended)
        return;
    m_output.error(code, message);
    finish(code);
}

void VrnConfigCli::finish(int code)
{
    if (m_ended)
        return;
    // Nothing is reported as done that the registry did not store.
    if (code == Ok && !m_registryError.isEmpty()) {
        const QString why = m_registryError;
        m_registryError.clear();
        return fail(Failed, why);
    }
    m_output.flush();
    m_ended = true;
    m_exit = code;
    emit done(code);
}

bool VrnConfigCli::checkBusUuid(const QString& uuid)
{
    QString error;
    if (!BusFactory::isSerialUUID(uuid) && !BusFactory::isMCastUUID(uuid))
        error = tr("not a bus identifier: %1 (serial:NAME or mcast:GROUP:PORT:BIND)").arg(uuid);
    else if (BusFactory::isMCastUUID(uuid))
        checkMCastUuid(uuid, error);
    if (error.isEmpty())
        return true;
    discardNewRegistry();
    fail(Usage, error);
    return false;
}

bool VrnConfigCli::openBusUuid(const QString& uuid)
{
    BusFactory* buses = BusFactory::instance();
    if (buses->openUUID(uuid)) {
        // Which network and which registry: named on a terminal, and in
        // every JSON document.
        const QString registry = m_registryPath == QLatin1String(":memory:") ? tr("none (in memory)") : m_registryPath;
        m_output.setContext(QJsonObject{{QStringLiteral("bus"), uuid}, {QStringLiteral("registry"), m_registryPath}});
        if (!json() && m_output.onTerminal())
            m_output.note(tr("bus %1, registry %2").arg(uuid, registry));
        return true;
    }
    discardNewRegistry();
    QString why = buses->lastError();
    // The serial port's lock is held by another program; the port's own
    // text speaks of a permission error.
    if (BusFactory::isSerialUUID(uuid) && why.contains(QLatin1String("lock"), Qt::CaseInsensitive))
        why = tr("the serial port is used by another program");
    fail(Failed, tr("cannot open %1: %2").arg(uuid, why));
    return false;
}

// --- helpers ----------------------------------------------------------------

bool VrnConfigCli::parseNumber(const QString& text, quint32 max, quint32& value)
{
    bool ok = false;
    const qulonglong v = text.startsWith(QLatin1String("0x"), Qt::CaseInsensitive) ? text.mid(2).toULongLong(&ok, 16)
                                                                                   : text.toULongLong(&ok, 10);
    if (!ok || v > max || text.startsWith(QLatin1Char('+')) || text.startsWith(QLatin1Char('-')))
        return false;
    value = quint32(v);
    return true;
}

QString VrnConfigCli::hex(quint32 value, int width)
{
    return hexText(value, width);
}

QString VrnConfigCli::nodeText(quint32 node)
{
    return hex(node, 6);
}

QString VrnConfigCli::value(const QString& option) const
{
    return unmarked(m_parser.value(option));
}

QString VrnConfigCli::resultLine(quint32 uuid, const QString& node, bool ok, const QString& text)
{
    QString line = QStringLiteral("%1 %2 %3 %4")
                       .arg(uuid, 8)
                       .arg(node, -8)
                       .arg(ok ? QStringLiteral("ok    ") : QStringLiteral("FAILED"), printable(text));
    while (line.endsWith(QLatin1Char(' ')))
        line.chop(1);
    return line;
}

QString VrnConfigCli::kindName(int type)
{
    switch (type) {
    case VRNObject::DtsStd: return tr("standard node");
    case VRNObject::DtsMotor: return tr("motor");
    case VRNObject::DtsDcMotor: return tr("DC motor");
    case VRNObject::LRU50: return QStringLiteral("LRU50");
    case VRNObject::TX50DC: return QStringLiteral("TX50DC");
    case VRNObject::TX30: return QStringLiteral("TX30");
    case VRNObject::SettingTool: return tr("setting tool");
    default: return tr("unknown");
    }
}

bool VrnConfigCli::checkMCastUuid(const QString& uuid, QString& error)
{
    const QStringList parts = uuid.mid(int(qstrlen("mcast:"))).split(QLatin1Char(':'));
    const QString group = parts.value(0), port = parts.value(1), bind = parts.value(2);
    const QHostAddress groupAddress(group);
    bool ipv4 = false;
    groupAddress.toIPv4Address(&ipv4);
    if (!ipv4 || !groupAddress.isMulticast()) {
        error = tr("not an IPv4 multicast group: '%1'").arg(group);
        return false;
    }
    quint32 number = 0;
    if (!parseNumber(port, 65535, number) || number == 0 || port.startsWith(QLatin1String("0x"), Qt::CaseInsensitive)) {
        error = tr("not a port from 1 to 65535: '%1'").arg(port);
        return false;
    }
    const QHostAddress bindAddress(bind);
    bindAddress.toIPv4Address(&ipv4);
    if (!ipv4) {
        error = tr("not a literal IPv4 bind address: '%1'").arg(bind);
        return false;
    }
    return true;
}
