// The firmware family: the package catalogue, the check of devices against
// it, the standard update and the recovery through the bootloader. Updates
// of several devices run one device after another, through the group worker.
#include "command.h"
#include "devicerunner.h"
#include "output.h"
#include "vrnconfigcli.h"

#include "checkfwjob.h"
#include "directupdatefwjob.h"
#include "firmwareloader.h"
#include "busfactory.h"
#include "dts.h"
#include "vrnbus.h"
#include "vrndatawriter.h"
#include "vrnmessage.h"
#include "settings.h"
#include "updatefwjob.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QJsonArray>

namespace {

using Cli = VrnConfigCli;

const QString Package = QStringLiteral("package");
const QString Folder = QStringLiteral("folder");
const QString Keys = QStringLiteral("keys");
const QString Force = QStringLiteral("force");
const QString AllowDowngrade = QStringLiteral("allow-downgrade");

// --folder and --keys are remembered in the settings, as the front end's
// choices are: the library reads "firmwarePath" and "firmwareKeyFile".
bool takeFolderAndKeys(Cli& cli)
{
    for (const auto& [option, key] : {std::pair<QString, const char*>{Folder, "firmwarePath"}, {Keys, "firmwareKeyFile"}}) {
        if (!cli.isSet(option))
            continue;
        const QFileInfo info(cli.value(option));
        if (!info.exists()) {
            cli.fail(Cli::Usage, Cli::tr("--%1: %2 does not exist").arg(option, cli.value(option)));
            return false;
        }
        Settings::instance()->setValue(QLatin1String(key), info.absoluteFilePath());
    }
    return true;
}

// The devices of a firmware command: `what` names the command in the usage
// error. False when the command has ended.
bool devicesOf(Cli& cli, const QStringList& args, const char* what, QList<VRNObject::UUID>& uuids)
{
    if (args.isEmpty()) {
        cli.fail(Cli::Usage, Cli::tr("firmware %1 needs at least one DEVICE").arg(QLatin1String(what)));
        return false;
    }
    return takeFolderAndKeys(cli) && cli.resolveDevices(args, uuids) && cli.openBus();
}

void list(Cli& cli, const QStringList& args)
{
    if (!args.isEmpty())
        return cli.fail(Cli::Usage, Cli::tr("firmware list takes no argument"));
    if (!takeFolderAndKeys(cli))
        return;
    FirmwareLoader loader;
    if (loader.path().isEmpty())
        return cli.fail(Cli::Failed, Cli::tr("no firmware folder: name one with --folder"));
    if (cli.json()) {
        QJsonArray rows;
        for (const FirmwareInfo& info : loader.packages())
            rows.append(QJsonObject{{QStringLiteral("file"), info.path()},
                                    {QStringLiteral("version"), info.version()},
                                    {QStringLiteral("kinds"), QJsonArray::fromStringList(info.kinds())},
                                    {QStringLiteral("size"), info.size()},
                                    {QStringLiteral("verified"), info.isVerified()},
                                    {QStringLiteral("error"), info.error()}});
        cli.output().document(rows);
    } else {
        TextTable table(cli.output(), {{Cli::tr("FILE"), 24}, {Cli::tr("VERSION"), 10}, {Cli::tr("KINDS"), 18},
                                       {Cli::tr("SIZE"), 8, true}, {Cli::tr("STATE"), 0}});
        table.header();
        for (const FirmwareInfo& info : loader.packages())
            table.row({info.fileName(), info.version(), info.kinds().join(QLatin1Char(',')), QString::number(info.size()),
                       info.isVerified() ? Cli::tr("verified") : info.error()});
    }
    cli.finish();
}

void check(Cli& cli, const QStringList& args)
{
    QList<VRNObject::UUID> uuids;
    if (!devicesOf(cli, args, "check", uuids))
        return;
    (new DeviceRunner(cli))->runJobs(uuids, [](VRNStdObject&) { return new CheckFwJob; }, [](DeviceRun& run, QString&) {
        const QVariantMap r = run.jobResult.toMap();
        const QString status = r.value(QStringLiteral("status")).toString();
        for (const char* key : {"status", "version", "available"})
            run.result.insert(QLatin1String(key), r.value(QLatin1String(key)).toString());
        if (status == QLatin1String("updateAvailable"))
            run.line = Cli::tr("update available: %1 -> %2").arg(r.value(QStringLiteral("version")).toString(),
                                                                 r.value(QStringLiteral("available")).toString());
        else if (status == QLatin1String("upToDate"))
            run.line = Cli::tr("up to date: %1").arg(r.value(QStringLiteral("version")).toString());
        else if (status == QLatin1String("deviceNewer"))
            run.line = Cli::tr("newer than every package: %1 (newest %2)")
                           .arg(r.value(QStringLiteral("version")).toString(), r.value(QStringLiteral("available")).toString());
        else
            run.line = Cli::tr("no package fits (device has %1)").arg(r.value(QStringLiteral("version")).toString());
        return true;
    });
}

// "0x000104 [#####.....] 1200/2048 blocks, 1.3 kB/s, 25 s left"
QString progressLine(const QString& node, int done, int total, double bytesPerSecond, int blockSize)
{
    const int width = 20;
    const int filled = total > 0 ? qBound(0, done * width / total, width) : 0;
    QString left = QStringLiteral("?");
    if (bytesPerSecond > 0)
        left = QString::number(qRound((total - done) * blockSize / bytesPerSecond));
    return Cli::tr("%1 [%2%3] %4/%5 blocks, %6 kB/s, %7 s left")
        .arg(node, QString(filled, QLatin1Char('#')), QString(width - filled, QLatin1Char('.')))
        .arg(done).arg(total)
        .arg(bytesPerSecond / 1024.0, 0, 'f', 1)
        .arg(left);
}

// Follows the update frames the bus sends (the standard update's begin and
// blocks, the bootloader's erase and writes) and keeps a progress line for
// the device being updated: the group worker runs the jobs, the wire says
// how far each one is.
void showProgressOf(Cli& cli, QObject* owner)
{
    VRNBus* bus = BusFactory::instance()->bus();
    if (!bus || !cli.output().onTerminal())
        return;
    struct State
    {
        quint32 node = 0;
        int total = 0;
        int blockSize = 16;
        int first = -1;
        QElapsedTimer clock;
    };
    auto state = std::make_shared<State>();
    QObject::connect(bus, &Bus::messageSent, owner, [&cli, state](const BusMessage& frame) {
        const VRNMessage m(frame);
        VRNDataReader in(m.payload());
        int done = -1;
        switch (m.cmd()) {
        case DTS::FwUpdateBegin:
            in.readUint8();
            Q_FALLTHROUGH();
        case DTS::BlErase: {
            const quint32 size = in.readUint32();
            const int blockSize = m.cmd() == DTS::BlErase ? 16 : in.readUint8();
            *state = State();
            state->node = m.dstAddr();
            state->blockSize = qMax(1, blockSize);
            state->total = int((size + quint32(state->blockSize) - 1) / quint32(state->blockSize));
            return;
        }
        case DTS::FwUpdateBlock:
            done = in.readUint16();
            break;
        case DTS::BlWrite:
            done = int(in.readUint24() / quint32(state->blockSize));
            break;
        default:
            return;
        }
        if (m.dstAddr() != state->node || state->total == 0)
            return;
        if (state->first < 0) {
            state->first = done; // a resumed update counts its rate from here
            state->clock.start();
        }
        const double seconds = qMax<qint64>(state->clock.elapsed(), 1) / 1000.0;
        const double rate = (done - state->first) * state->blockSize / seconds;
        cli.output().progress(progressLine(Cli::nodeText(state->node), done, state->total, rate, state->blockSize));
    });
}

// The end of a campaign: what became of each device, with versions and
// times, after the lines each device gave as it ended.
void printReport(Cli& cli, const QList<QJsonObject>& results, bool recovering, qint64 ms)
{
    int counts[4] = {0, 0, 0, 0}; // updated, skipped, failed, recovered
    QStringList lines;
    for (const QJsonObject& r : results) {
        const QString node = QStringLiteral("node:") + r.value(QStringLiteral("node")).toString();
        const QString outcome = r.value(QStringLiteral("outcome")).toString();
        const QString version = r.value(QStringLiteral("version")).toString();
        QString what;
        if (!r.value(QStringLiteral("ok")).toBool()) {
            ++counts[2];
            lines.append(Cli::tr("  failed     %1  %2").arg(node, -16).arg(r.value(QStringLiteral("error")).toString()));
            continue;
        }
        if (outcome == QLatin1String("skipped")) {
            ++counts[1];
            what = Cli::tr("%1 (%2)").arg(version, r.value(QStringLiteral("reason")).toString());
        } else {
            ++counts[recovering ? 3 : 0];
            const QString previous = r.value(QStringLiteral("previous")).toString();
            what = Cli::tr("%1 -> %2 in %3 s")
                       .arg(previous.isEmpty() ? Cli::tr("bootloader") : previous, version)
                       .arg(r.value(QStringLiteral("seconds")).toDouble(), 0, 'f', 1);
        }
        lines.append(QStringLiteral("  %1 %2  %3").arg(outcome, -10).arg(node, -16).arg(what));
    }
    cli.output().line(Cli::tr("report: %1 updated, %2 skipped, %3 failed, %4 recovered in %5 s")
                          .arg(counts[0]).arg(counts[1]).arg(counts[2]).arg(counts[3])
                          .arg(ms / 1000.0, 0, 'f', 1));
    for (const QString& line : lines)
        cli.output().line(line);
}

// Updates the devices one after another through their group worker, then
// reports the campaign.
void updateWith(Cli& cli, const QList<VRNObject::UUID>& uuids, const std::function<FirmwareJob*()>& make, bool recovering)
{
    auto runner = new DeviceRunner(cli);
    showProgressOf(cli, runner);
    const QString package = cli.isSet(Package) ? QFileInfo(cli.value(Package)).absoluteFilePath() : QString();
    const bool force = cli.isSet(Force);
    const bool allowDowngrade = cli.isSet(AllowDowngrade);
    auto clock = std::make_shared<QElapsedTimer>();
    clock->start();
    if (!cli.json()) {
        QObject::connect(runner, &DeviceRunner::finished, runner, [&cli, runner, recovering, clock] {
            printReport(cli, runner->results(), recovering, clock->elapsed());
        });
    }
    runner->runJobs(uuids, [make, package, force, allowDowngrade](VRNStdObject&) {
        FirmwareJob* job = make();
        job->setPackage(package);
        job->setForce(force);
        job->setAllowDowngrade(allowDowngrade);
        return job;
    }, [recovering](DeviceRun& run, QString&) {
        const QVariantMap r = run.jobResult.toMap();
        for (const char* key : {"version", "package", "previous", "reason"})
            run.result.insert(QLatin1String(key), r.value(QLatin1String(key)).toString());
        if (r.value(QStringLiteral("skipped")).toBool()) {
            run.result.insert(QStringLiteral("outcome"), QStringLiteral("skipped"));
            run.line = Cli::tr("skipped: %1").arg(r.value(QStringLiteral("reason")).toString());
            return true;
        }
        for (const char* key : {"blocks", "retries"})
            run.result.insert(QLatin1String(key), r.value(QLatin1String(key)).toInt());
        run.result.insert(QStringLiteral("seconds"), r.value(QStringLiteral("ms")).toLongLong() / 1000.0);
        run.result.insert(QStringLiteral("outcome"), recovering ? QStringLiteral("recovered") : QStringLiteral("updated"));
        run.line = Cli::tr("now %1 (%2 blocks, %3 retries)")
                       .arg(r.value(QStringLiteral("version")).toString())
                       .arg(r.value(QStringLiteral("blocks")).toInt())
                       .arg(r.value(QStringLiteral("retries")).toInt());
        return true;
    });
}

void update(Cli& cli, const QStringList& args)
{
    QList<VRNObject::UUID> uuids;
    if (!devicesOf(cli, args, "update", uuids))
        return;
    updateWith(cli, uuids, [] { return new UpdateFwJob; }, false);
}

void recover(Cli& cli, const QStringList& args)
{
    QList<VRNObject::UUID> uuids;
    if (!devicesOf(cli, args, "recover", uuids))
        return;
    updateWith(cli, uuids, [] { return new DirectUpdateFwJob; }, true);
}

void addFirmwareCommands(CommandRegistry& r)
{
    const QString name = QStringLiteral("firmware");
    r.add({name, QStringLiteral("list"), QString(), Cli::tr("list the firmware packages of the folder (--folder DIR, --keys FILE)"), list});
    r.add({name, QStringLiteral("check"), QStringLiteral("DEVICE..."),
           Cli::tr("compare the devices' firmware with the newest package that fits"), check});
    r.add({name, QStringLiteral("update"), QStringLiteral("DEVICE..."),
           Cli::tr("update the firmware, one device after another (--package FILE: this package; --force: also "
                   "devices that run its version; --allow-downgrade: also an older one)"), update});
    r.add({name, QStringLiteral("recover"), QStringLiteral("DEVICE..."),
           Cli::tr("update devices stuck in their bootloader (--package FILE: this package)"), recover});
    r.addOption(QCommandLineOption(Package, QString(), QStringLiteral("FILE")), {name});
    r.addOption(QCommandLineOption(Folder, QString(), QStringLiteral("DIR")), {name});
    r.addOption(QCommandLineOption(Keys, QString(), QStringLiteral("FILE")), {name});
    r.addOption(QCommandLineOption(Force), {name});
    r.addOption(QCommandLineOption(AllowDowngrade), {name});
}

const CommandFamily family(60, "Firmware", addFirmwareCommands);

} // namespace
