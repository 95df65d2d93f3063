// The documents family: a network's configuration saved, compared, put back,
// given to a replacement device, and the commissioning report; and the log
// of every write. The work is NetworkConfiguration's (src/documents); this
// file checks what the user gave, asks, and prints.
#include "command.h"
#include "vrnconfigcli.h"

#include "busfactory.h"
#include "changelog.h"
#include "commissioningreport.h"
#include "devicebackups.h"
#include "networkconfiguration.h"
#include "objectfactory.h"
#include "objectquerymodel.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QFile>
#include <QGuiApplication>
#include <QJsonArray>
#include <QJsonDocument>

#include <cstdio>
#include <memory>

namespace {

using Cli = VrnConfigCli;
using Config = NetworkConfiguration;

QString valueText(const QJsonValue& v)
{
    return v.isUndefined() ? QStringLiteral("-") : ChangeLog::text(v);
}

QJsonObject differenceJson(const Config::Difference& d)
{
    return {{QStringLiteral("uuid"), qint64(d.uuid)}, {QStringLiteral("node"), qint64(d.node)},
            {QStringLiteral("field"), d.field}, {QStringLiteral("document"), d.document},
            {QStringLiteral("device"), d.device}};
}

QJsonObject resultJson(const Config::DeviceResult& r)
{
    QJsonObject o{{QStringLiteral("uuid"), qint64(r.uuid)}, {QStringLiteral("node"), qint64(r.node)},
                  {QStringLiteral("ok"), r.ok}};
    if (!r.ok)
        o.insert(QStringLiteral("error"), r.error);
    if (!r.fields.isEmpty())
        o.insert(QStringLiteral("fields"), QJsonArray::fromStringList(r.fields));
    return o;
}

QJsonArray differencesJson(const QList<Config::Difference>& differences)
{
    QJsonArray list;
    for (const auto& d : differences)
        list << differenceJson(d);
    return list;
}

QJsonArray resultsJson(const QList<Config::DeviceResult>& results)
{
    QJsonArray list;
    for (const auto& r : results)
        list << resultJson(r);
    return list;
}

QString resultLine(const Config::DeviceResult& r)
{
    return Cli::resultLine(r.uuid, Cli::nodeText(r.node), r.ok, r.ok ? QString() : r.error);
}

int failures(const QList<Config::DeviceResult>& results)
{
    return int(std::count_if(results.begin(), results.end(), [](const auto& r) { return !r.ok; }));
}

// One line a device, then on a terminal the count, as other commands on
// devices end.
void printResults(Cli& cli, const QList<Config::DeviceResult>& results)
{
    for (const auto& r : results)
        cli.output().line(resultLine(r));
    if (results.size() > 1 && cli.output().onTerminal())
        cli.output().note(Cli::tr("%1 device(s): %2 ok").arg(results.size()).arg(results.size() - failures(results)));
}

// Progress on a terminal while devices are read or written.
Config* makeConfig(Cli& cli)
{
    auto config = new Config(&cli);
    config->setBus(BusFactory::instance()->lastBusUUID());
    config->setToolVersion(QCoreApplication::applicationVersion());
    config->setRetries(cli.retries());
    QObject::connect(config, &Config::progress, &cli, [&cli](int done, int total) {
        cli.output().progress(Cli::tr("%1/%2 jobs").arg(done).arg(total));
    });
    return config;
}

void printDifferences(Cli& cli, const QList<Config::Difference>& differences)
{
    TextTable table(cli.output(), {{QStringLiteral("UUID"), 6, true}, {QStringLiteral("NODE"), 9},
                                   {QStringLiteral("FIELD"), 14}, {QStringLiteral("DOCUMENT"), 22},
                                   {QStringLiteral("DEVICE"), 0}});
    table.header();
    for (const auto& d : differences)
        table.row({QString::number(d.uuid), Cli::nodeText(d.node), d.field, valueText(d.document), valueText(d.device)});
}

// A document the tool may act on: valid, of this bus (unless --other-bus),
// its devices of the kinds the registry knows them as. Checked before the
// bus carries a single frame; false when refused (the run has ended).
bool loadDocument(Cli& cli, const QString& file, NetworkDocument& document, QList<quint32>& matched)
{
    QString error;
    if (!NetworkDocument::load(file, document, error)) {
        cli.fail(Cli::Usage, error);
        return false;
    }
    const QString bus = BusFactory::instance()->lastBusUUID();
    if (document.bus != bus && !cli.isSet(QStringLiteral("other-bus"))) {
        cli.fail(Cli::Usage, Cli::tr("%1: /bus: the document is of the bus %2, not of %3; --other-bus takes it all the same")
                                 .arg(file, document.bus, bus));
        return false;
    }
    if (!Config::matchDevices(document, matched, error)) {
        cli.fail(Cli::Usage, QStringLiteral("%1: %2").arg(file, error));
        return false;
    }
    return true;
}

// The registry's devices among `words`, or every device of the document.
bool chosenDevices(Cli& cli, const QStringList& words, QList<quint32>& uuids)
{
    if (words.isEmpty())
        return true;
    QList<VRNObject::UUID> found;
    if (!cli.resolveDevices(words, found))
        return false;
    for (VRNObject::UUID u : found)
        uuids << u;
    return true;
}

void backup(Cli& cli, const QStringList& args)
{
    QList<VRNObject::UUID> found;
    if (!cli.resolveDevices(args.isEmpty() ? QStringList{QStringLiteral("all")} : args, found) || !cli.openBus())
        return;
    const QString file = cli.value(QStringLiteral("output"));
    Config* config = makeConfig(cli);
    QObject::connect(config, &Config::finished, &cli, [&cli, config, file] {
        const NetworkDocument document = config->document();
        DeviceBackups::store(document);
        const auto results = config->results();
        if (file.isEmpty()) {
            cli.output().write(document.toJson());
        } else {
            QString error;
            if (!document.save(file, error))
                return cli.fail(Cli::Failed, error);
            printResults(cli, results);
        }
        const int failed = failures(results);
        if (failed)
            return cli.fail(Cli::Failed, Cli::tr("%1 of %2 device(s) not read completely: their unread fields are "
                                                 "marked as such").arg(failed).arg(results.size()));
        cli.finish();
    });
    QList<quint32> uuids;
    for (VRNObject::UUID u : found)
        uuids << u;
    config->backup(uuids);
}

// Compares and then calls `then` with the differences (and the devices that
// could not be read reported).
void compareThen(Cli& cli, const QString& file, const QStringList& words,
                 std::function<void(Config*, const QList<Config::Difference>&)> then)
{
    if (!cli.openBus())
        return;
    NetworkDocument document;
    QList<quint32> matched, uuids;
    if (!loadDocument(cli, file, document, matched) || !chosenDevices(cli, words, uuids))
        return;
    QStringList missing;
    for (int i = 0; i < document.devices.size(); ++i) {
        if (!matched.at(i))
            missing << Cli::nodeText(document.devices.at(i).value(QStringLiteral("node")).toVariant().toUInt());
    }
    Config* config = makeConfig(cli);
    // Once: an apply that follows ends with `finished` too.
    auto once = std::make_shared<QMetaObject::Connection>();
    *once = QObject::connect(config, &Config::finished, &cli, [&cli, config, then, missing, once] {
        QObject::disconnect(*once);
        cli.output().clearProgress();
        for (const auto& r : config->results()) {
            if (!r.ok)
                cli.output().note(resultLine(r));
        }
        if (!missing.isEmpty())
            cli.output().note(Cli::tr("not in the registry (run discover): %1").arg(missing.join(QLatin1Char(' '))));
        then(config, config->differences());
    }, Qt::QueuedConnection);
    config->compare(document, uuids);
}

void diff(Cli& cli, const QStringList& args)
{
    if (args.isEmpty())
        return cli.fail(Cli::Usage, Cli::tr("diff takes a FILE"));
    compareThen(cli, args.first(), args.mid(1), [&cli](Config* config, const QList<Config::Difference>& differences) {
        if (cli.json()) {
            cli.output().document(QJsonObject{{QStringLiteral("differences"), differencesJson(differences)},
                                              {QStringLiteral("results"), resultsJson(config->results())}});
        } else if (!differences.isEmpty()) {
            printDifferences(cli, differences);
        }
        const int failed = failures(config->results());
        if (failed)
            return cli.fail(Cli::Failed, Cli::tr("%1 device(s) could not be read").arg(failed));
        cli.finish(differences.isEmpty() ? Cli::Ok : Cli::Failed);
    });
}

// `unread`: devices the compare before could not read (already reported).
void printApplied(Cli& cli, Config* config, int unread = 0)
{
    const auto results = config->results();
    if (cli.json()) {
        cli.output().document(QJsonObject{{QStringLiteral("results"), resultsJson(results)}});
    } else {
        printResults(cli, results);
    }
    const int failed = failures(results) + unread;
    if (failed)
        return cli.fail(Cli::Failed, Cli::tr("%1 of %2 device(s) not done; run it again to finish")
                                         .arg(failed).arg(results.size() + unread));
    cli.finish();
}

void apply(Cli& cli, const QStringList& args)
{
    if (args.isEmpty())
        return cli.fail(Cli::Usage, Cli::tr("apply takes a FILE"));
    const bool dryRun = cli.isSet(QStringLiteral("dry-run"));
    compareThen(cli, args.first(), args.mid(1), [&cli, dryRun](Config* config, const QList<Config::Difference>& differences) {
        // Devices that could not be read are reported (above) and left for
        // the next run; the others are written.
        const int unread = failures(config->results());
        if (differences.isEmpty()) {
            if (unread)
                return cli.fail(Cli::Failed, Cli::tr("%1 device(s) could not be read; run it again to finish").arg(unread));
            cli.output().note(Cli::tr("the devices already hold the document's settings"));
            return cli.finish();
        }
        QSet<quint32> devices;
        for (const auto& d : differences)
            devices << d.uuid;
        if (dryRun) {
            if (cli.json()) {
                cli.output().document(QJsonObject{{QStringLiteral("wouldWrite"), differencesJson(differences)}});
            } else {
                printDifferences(cli, differences);
            }
            return cli.finish();
        }
        if (!cli.confirm(Cli::tr("Write %1 field(s) on %2 device(s)").arg(differences.size()).arg(devices.size())))
            return;
        QObject::connect(config, &Config::finished, &cli, [&cli, config, unread] { printApplied(cli, config, unread); });
        config->apply(differences);
    });
}

// OLD's entry: from the document (by node or serial number) or from the
// registry's last backup of that device.
bool oldEntry(Cli& cli, const QString& old, QJsonObject& entry)
{
    const QString from = cli.value(QStringLiteral("from"));
    QString error;
    if (!from.isEmpty()) {
        NetworkDocument document;
        QList<quint32> matched;
        if (!NetworkDocument::load(from, document, error)) {
            cli.fail(Cli::Usage, error);
            return false;
        }
        if (document.bus != BusFactory::instance()->lastBusUUID() && !cli.isSet(QStringLiteral("other-bus"))) {
            cli.fail(Cli::Usage, Cli::tr("%1: /bus: the document is of the bus %2; --other-bus takes it all the same")
                                     .arg(from, document.bus));
            return false;
        }
        QString text = old;
        if (text.startsWith(QLatin1String("node:")))
            text = text.mid(5);
        quint32 node = 0;
        int index = Cli::parseNumber(text, 0xFFFFFF, node) ? document.indexOfNode(node) : -1;
        if (index < 0 && !old.startsWith(QLatin1String("node:")))
            index = document.indexOfSerial(old.toUtf8());
        if (index < 0) {
            cli.fail(Cli::Usage, Cli::tr("%1 describes no device %2 (a node number or a serial number)").arg(from, old));
            return false;
        }
        entry = document.devices.at(index);
        return true;
    }
    const quint32 uuid = Config::findDevice(old);
    entry = uuid ? DeviceBackups::last(uuid) : QJsonObject();
    if (entry.isEmpty()) {
        cli.fail(Cli::Usage, Cli::tr("the registry has no backup of %1: give the document with --from FILE").arg(old));
        return false;
    }
    // What the registry kept passes the same checks as a file.
    NetworkDocument wrapped;
    wrapped.bus = QStringLiteral("registry");
    wrapped.time = QStringLiteral("-");
    wrapped.devices << entry;
    if (!NetworkDocument::fromJson(wrapped.toJson(), wrapped, error)) {
        cli.fail(Cli::Failed, Cli::tr("the registry's backup of %1 is damaged: %2").arg(old, error));
        return false;
    }
    return true;
}

void replace(Cli& cli, const QStringList& args)
{
    if (args.size() != 2)
        return cli.fail(Cli::Usage, Cli::tr("replace takes OLD and NEW, each a node number or a serial number"));
    QJsonObject entry;
    if (!oldEntry(cli, args.at(0), entry))
        return;
    const quint32 target = Config::findDevice(args.at(1));
    if (!target)
        return cli.fail(Cli::Usage, Cli::tr("unknown device: %1 (a node number or a serial number of the registry)").arg(args.at(1)));
    const QSharedPointer<VRNObject> object = ObjectFactory::instance()->object(target);
    const QString kind = entry.value(QStringLiteral("kind")).toString();
    if (!object || NetworkDocument::kindKey(object->type()) != kind)
        return cli.fail(Cli::Usage, Cli::tr("/kind: %1 is a %2, %3 is a %4: a device is replaced by one of its kind")
                                        .arg(args.at(0), kind, args.at(1),
                                             object ? NetworkDocument::kindKey(object->type()) : QStringLiteral("?")));
    const quint32 oldNode = entry.value(QStringLiteral("node")).toVariant().toUInt();
    const quint32 oldUuid = Config::findDevice(QStringLiteral("node:%1").arg(oldNode));
    if (!cli.confirm(Cli::tr("Give %1 the settings of %2").arg(args.at(1), args.at(0))) || !cli.openBus())
        return;
    Config* config = makeConfig(cli);
    QObject::connect(config, &Config::finished, &cli, [&cli, config, oldUuid, target] {
        const auto results = config->results();
        if (results.isEmpty() || failures(results))
            return printApplied(cli, config);
        // The registry knows the new device in the old one's place.
        QString error;
        if (oldUuid && oldUuid != target && !Config::takeOver(oldUuid, target, error))
            return cli.fail(Cli::Failed, error);
        printApplied(cli, config);
    });
    config->replace(entry, target);
}

void report(Cli& cli, const QStringList& args)
{
    if (!args.isEmpty())
        return cli.fail(Cli::Usage, Cli::tr("report takes no argument besides --pdf, --html and --from"));
    const QString pdf = cli.value(QStringLiteral("pdf")), html = cli.value(QStringLiteral("html"));
    if (pdf.isEmpty() && html.isEmpty())
        return cli.fail(Cli::Usage, Cli::tr("report needs --pdf FILE or --html FILE"));
    if (!pdf.isEmpty() && !qobject_cast<QGuiApplication*>(QCoreApplication::instance()))
        return cli.fail(Cli::Failed, Cli::tr("the PDF report needs the GUI libraries"));
    auto write = [&cli, pdf, html](const NetworkDocument& document) {
        CommissioningReport report(document);
        QString error;
        if ((!pdf.isEmpty() && !report.writePdf(pdf, error)) || (!html.isEmpty() && !report.writeHtml(html, error)))
            return cli.fail(Cli::Failed, error);
        cli.finish();
    };
    const QString from = cli.value(QStringLiteral("from"));
    if (!from.isEmpty()) {
        NetworkDocument document;
        QString error;
        if (!NetworkDocument::load(from, document, error))
            return cli.fail(Cli::Usage, error);
        return write(document);
    }
    QList<VRNObject::UUID> found;
    if (!cli.resolveDevices({QStringLiteral("all")}, found) || !cli.openBus())
        return;
    Config* config = makeConfig(cli);
    QObject::connect(config, &Config::finished, &cli, [config, write] { write(config->document()); });
    QList<quint32> uuids;
    for (VRNObject::UUID u : found)
        uuids << u;
    config->backup(uuids);
}

void log(Cli& cli, const QStringList& args)
{
    QList<quint32> uuids;
    if (!chosenDevices(cli, args, uuids))
        return;
    QDateTime since;
    if (cli.isSet(QStringLiteral("since"))) {
        since = QDateTime::fromString(cli.value(QStringLiteral("since")), Qt::ISODate);
        if (!since.isValid())
            return cli.fail(Cli::Usage, Cli::tr("--since takes a time such as 2026-05-04T10:00:00Z: %1")
                                            .arg(cli.value(QStringLiteral("since"))));
    }
    const QList<ChangeLog::Entry> entries = ChangeLog::entries(uuids, since);
    if (cli.json()) {
        QJsonArray list;
        for (const auto& e : entries)
            list << e.toJson();
        cli.output().document(list);
        return cli.finish();
    }
    TextTable table(cli.output(), {{QStringLiteral("TIME"), 24}, {QStringLiteral("TOOL"), 14},
                                   {QStringLiteral("UUID"), 6, true}, {QStringLiteral("NODE"), 9},
                                   {QStringLiteral("FIELD"), 14}, {QStringLiteral("OLD"), 18},
                                   {QStringLiteral("NEW"), 18}, {QStringLiteral("OUTCOME"), 0}});
    table.header();
    for (const auto& e : entries)
        table.row({e.time.toString(Qt::ISODateWithMs), e.tool, QString::number(e.uuid), Cli::nodeText(e.node), e.field,
                   e.oldValue, e.newValue, e.outcome});
    cli.finish();
}

void addDocumentCommands(CommandRegistry& r)
{
    r.add({QStringLiteral("backup"), {}, QStringLiteral("[DEVICE...] [--output FILE]"),
           Cli::tr("save every setting of the devices (default all) as a document (default standard output)"), backup});
    r.add({QStringLiteral("diff"), {}, QStringLiteral("FILE [DEVICE...]"),
           Cli::tr("where the devices differ from the document; exit 0 when nowhere, 1 otherwise"), diff});
    r.add({QStringLiteral("apply"), {}, QStringLiteral("FILE [DEVICE...] [--dry-run] [--yes]"),
           Cli::tr("write the document's settings where the devices differ (asks first);\n"
                   "--dry-run reads and shows, writes nothing"), apply});
    r.add({QStringLiteral("replace"), {}, QStringLiteral("OLD NEW [--from FILE] [--yes]"),
           Cli::tr("give NEW the settings of OLD (from FILE or the registry's last backup);\n"
                   "OLD, NEW: node number or serial number. The registry then knows NEW in OLD's place"), replace});
    r.add({QStringLiteral("report"), {}, QStringLiteral("[--pdf FILE] [--html FILE] [--from FILE]"),
           Cli::tr("the commissioning report of every device (or of a document)"), report});
    r.add({QStringLiteral("log"), {}, QStringLiteral("[DEVICE...] [--since TIME]"),
           Cli::tr("every write made to the devices by either tool"), log});
    r.addOption(QCommandLineOption(QStringLiteral("output"), QString(), QStringLiteral("FILE")), {QStringLiteral("backup")});
    r.addOption(QCommandLineOption(QStringLiteral("dry-run")), {QStringLiteral("apply")});
    r.addOption(QCommandLineOption(QStringLiteral("other-bus")),
                {QStringLiteral("diff"), QStringLiteral("apply"), QStringLiteral("replace")});
    r.addOption(QCommandLineOption(QStringLiteral("from"), QString(), QStringLiteral("FILE")),
                {QStringLiteral("replace"), QStringLiteral("report")});
    r.addOption(QCommandLineOption(QStringLiteral("pdf"), QString(), QStringLiteral("FILE")), {QStringLiteral("report")});
    r.addOption(QCommandLineOption(QStringLiteral("html"), QString(), QStringLiteral("FILE")), {QStringLiteral("report")});
    r.addOption(QCommandLineOption(QStringLiteral("since"), QString(), QStringLiteral("TIME")), {QStringLiteral("log")});
    r.addOption(QCommandLineOption(QStringLiteral("yes")), {QStringLiteral("apply"), QStringLiteral("replace")});
}

const CommandFamily family(60, "Documents", addDocumentCommands);

} // namespace
