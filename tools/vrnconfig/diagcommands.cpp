// The diagnostics family of vrnconfig: a motor's life counters, a node's
// network statistics and their reset, through the device runner.
#include "command.h"
#include "devicerunner.h"
#include "vrnconfigcli.h"

#include "getmotordiagnosticjob.h"
#include "getnetworkstatsjob.h"
#include "setnetworkstatsjob.h"
#include "vrnmotorobject.h"

#include <QJsonObject>

namespace {

using Cli = VrnConfigCli;

/// One counter: its JSON key and how people read it; a counter without a
/// label counts the moves since the event before it.
struct Counter
{
    const char* key;
    const char* label;
    qint64 value;
};

void put(DeviceRun& run, const char* group, const QList<Counter>& counters)
{
    QJsonObject json;
    QStringList words;
    for (const Counter& c : counters) {
        json.insert(QLatin1String(c.key), c.value);
        if (c.label)
            words << QStringLiteral("%1 %2").arg(QLatin1String(c.label)).arg(c.value);
        else if (!words.isEmpty())
            words.last() += QStringLiteral(" (%1 moves since)").arg(c.value);
    }
    run.result.insert(QLatin1String(group), json);
    if (!run.line.isEmpty())
        run.line += QStringLiteral("; ");
    run.line += words.join(QStringLiteral(", "));
}

void putDiagnostics(DeviceRun& run)
{
    const MotorDiagnostic& d = run.device->proxyRuntime().getConstData().motorDiagnostic;
    put(run, "diagnostics",
        {{"moves", "moves", d.totalMoveCount},
         {"revolutions", "revolutions", d.totalRevCount},
         {"thermal", "thermal", d.thermalCount},
         {"movesSinceThermal", nullptr, d.postThermalMove},
         {"obstacles", "obstacles", d.obstacleCount},
         {"movesSinceObstacle", nullptr, d.postObstacleMove},
         {"powerCuts", "power cuts", d.powerCount},
         {"resets", "resets", d.resetCount},
         {"encoderErrors", "encoder errors", d.encoderErrCount}});
}

void putTraffic(DeviceRun& run)
{
    const DTSStdProxy::NetworkStat& s = run.device->proxyRuntime().getConstData().networkStat;
    put(run, "traffic",
        {{"sent", "sent", s.frameSent},
         {"seen", "seen", s.frameSeen},
         {"received", "received", s.frameReceived},
         {"maxRetries", "max retries", s.maxRetryCount},
         {"busy", "busy", s.busyCount},
         {"maxSlot", "max slot", s.maxSlot},
         {"supervisionFailures", "supervision failures", s.supervisionFailure}});
}

void putErrors(DeviceRun& run)
{
    const DTSStdProxy::NetworkErrorStat& e = run.device->proxyRuntime().getConstData().networkErrorStat;
    put(run, "errors",
        {{"txFailures", "tx failures", e.txFailures},
         {"collisions", "collisions", e.collisions},
         {"rxDataErrors", "rx data errors", e.rxDataError},
         {"unknownMessages", "unknown", e.unknownMessage},
         {"lengthErrors", "length errors", e.msgLengthError},
         {"rxFifoFull", "rx fifo full", e.rxFifoFull},
         {"txFifoFull", "tx fifo full", e.txFifoFull},
         {"crcErrors", "crc errors", e.crcError},
         {"bundleSizeErrors", "bundle size errors", e.bundleSizeError}});
}

bool devicesFor(Cli& cli, const QString& command, const QStringList& args, QList<VRNObject::UUID>& uuids)
{
    if (args.isEmpty()) {
        cli.fail(Cli::Usage, Cli::tr("%1 needs at least one DEVICE").arg(command));
        return false;
    }
    return cli.resolveDevices(args, uuids) && cli.openBus();
}

void getDiag(Cli& cli, const QStringList& args)
{
    QList<VRNObject::UUID> uuids;
    if (!devicesFor(cli, QStringLiteral("get diag"), args, uuids))
        return;
    (new DeviceRunner(cli))->runJobs(
        uuids,
        [](VRNStdObject& o) -> QmlJob* { return qobject_cast<VRNMotorObject*>(&o) ? new GetMotorDiagnosticJob : nullptr; },
        [](DeviceRun& run, QString&) {
            putDiagnostics(run);
            return true;
        },
        Cli::tr("not a motor"));
}

void getStats(Cli& cli, const QStringList& args)
{
    QList<VRNObject::UUID> uuids;
    if (!devicesFor(cli, QStringLiteral("get stats"), args, uuids))
        return;
    (new DeviceRunner(cli))->runJobs(uuids, [](VRNStdObject&) { return new GetNetworkStatsJob; },
                                     [](DeviceRun& run, QString&) {
                                         putTraffic(run);
                                         putErrors(run);
                                         return true;
                                     });
}

void resetStats(Cli& cli, const QStringList& args)
{
    const bool network = cli.isSet(QStringLiteral("network"));
    const bool errors = cli.isSet(QStringLiteral("errors"));
    const bool all = cli.isSet(QStringLiteral("all"));
    if (int(network) + int(errors) + int(all) > 1)
        return cli.fail(Cli::Usage, Cli::tr("reset stats takes one of --network, --errors, --all"));
    const int stats = network ? SetNetworkStatsJob::Network : errors ? SetNetworkStatsJob::Errors : SetNetworkStatsJob::All;
    QList<VRNObject::UUID> uuids;
    if (!devicesFor(cli, QStringLiteral("reset stats"), args, uuids))
        return;
    (new DeviceRunner(cli))->runJobs(
        uuids,
        [stats](VRNStdObject&) {
            auto* job = new SetNetworkStatsJob;
            job->setStats(stats);
            return job;
        },
        [stats](DeviceRun& run, QString&) {
            // What was reset, as the device counts it now.
            if (stats != SetNetworkStatsJob::Errors)
                putTraffic(run);
            if (stats != SetNetworkStatsJob::Network)
                putErrors(run);
            return true;
        });
}

void addDiagCommands(CommandRegistry& r)
{
    r.add({QStringLiteral("get"), QStringLiteral("diag"), QStringLiteral("DEVICE..."),
           Cli::tr("a motor's life counters: moves, revolutions, thermal trips, obstacles, power cuts, resets, encoder errors"),
           getDiag});
    r.add({QStringLiteral("get"), QStringLiteral("stats"), QStringLiteral("DEVICE..."),
           Cli::tr("network statistics: frames sent, seen, received, and errors"), getStats});
    r.add({QStringLiteral("reset"), QStringLiteral("stats"), QStringLiteral("DEVICE... [--network|--errors|--all]"),
           Cli::tr("clear the traffic counters, the error counters, or both (the default)"), resetStats});
    for (const char* name : {"network", "errors", "all"})
        r.addOption(QCommandLineOption(QLatin1String(name)), {QStringLiteral("reset")});
}

const CommandFamily family(50, "Diagnostics", addDiagCommands);

} // namespace
