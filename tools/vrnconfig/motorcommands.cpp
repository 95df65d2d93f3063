// The motor commands of vrnconfig: wink, move, get and set of the motor
// settings, factory defaults and watching a move. Each runs the library's
// motor jobs on the device's worker; values are checked before anything is
// sent.
#include "command.h"
#include "devicerunner.h"
#include "vrnconfigcli.h"

#include "getdirectionjob.h"
#include "getendlimitsjob.h"
#include "getmotoripsjob.h"
#include "getpositionjob.h"
#include "getrampjob.h"
#include "getspeedjob.h"
#include "motorcontroljob.h"
#include "motorcontroltask.h"
#include "objectfactory.h"
#include "setdirectionjob.h"
#include "setendlimitsjob.h"
#include "setfactorydefaultjob.h"
#include "setmotoripjob.h"
#include "setrampjob.h"
#include "setspeedjob.h"
#include "visualfeedbackjob.h"
#include "vrndcmotorobject.h"
#include "vrnobjectworker.h"
#include "workqueue.h"

#include <QJsonArray>
#include <QTimer>

namespace {

using Cli = VrnConfigCli;
using OldReader = std::function<void(VRNStdObject&, QJsonObject&, QString&)>;

// A reader of the values a motor job left on its device.
DeviceRunner::ValueReader reader(OldReader read)
{
    return [read](DeviceRun& run, QString&) {
        read(*run.device, run.result, run.line);
        return true;
    };
}

constexpr int MinSpeed = 6;
constexpr int MaxSpeed = 28;
constexpr int MaxRamp = 100;
constexpr int MaxIpIndex = 15;
constexpr int MaxPulse = 0xFFFF;
constexpr quint8 UnsetPct = 0xFF;
// watch: how often the position is read, and how many equal reads in a row mean "stopped".
constexpr int WatchIntervalMs = 100;
constexpr int WatchStableReads = 3;

using Make = std::function<QmlJob*()>;

// A job for motors only (or DC motors only): none for other devices.
DeviceRunner::JobFactory forMotor(Make make, bool dcOnly = false)
{
    return [make, dcOnly](VRNStdObject& o) -> QmlJob* {
        const bool fits = dcOnly ? qobject_cast<VRNDCMotorObject*>(&o) != nullptr
                                 : qobject_cast<VRNMotorObject*>(&o) != nullptr;
        return fits ? make() : nullptr;
    };
}

QString notA(bool dcOnly)
{
    return dcOnly ? QStringLiteral("not a DC motor") : QStringLiteral("not a motor");
}

// A whole number in [min, max], decimal or 0x hexadecimal, with an optional sign.
bool readInt(const QString& word, qint64 min, qint64 max, qint64& value)
{
    QString text = word;
    const bool negative = text.startsWith(QLatin1Char('-'));
    if (negative || text.startsWith(QLatin1Char('+')))
        text = text.mid(1);
    bool ok = false;
    const qlonglong v = text.startsWith(QLatin1String("0x"), Qt::CaseInsensitive) ? text.mid(2).toLongLong(&ok, 16)
                                                                                   : text.toLongLong(&ok, 10);
    if (!ok || text.isEmpty() || !text.at(0).isLetterOrNumber())
        return false;
    value = negative ? -v : v;
    return value >= min && value <= max;
}

QJsonValue percentJson(quint16 pct)
{
    return pct == UnsetPct ? QJsonValue() : QJsonValue(int(pct));
}

QString percentText(quint16 pct)
{
    return pct == UnsetPct ? QStringLiteral("limits not set") : QStringLiteral("%1 %").arg(pct);
}

QString positionText(quint16 pulses, quint16 pct)
{
    return QStringLiteral("%1 pulses, %2").arg(pulses).arg(percentText(pct));
}

void readPosition(VRNStdObject& o, QJsonObject& json, QString& line)
{
    const RuntimeDataData& r = o.proxyRuntime().getConstData();
    line = positionText(r.posPulse, r.posPCent);
    json.insert(QStringLiteral("position"), QJsonObject{{QStringLiteral("pulses"), int(r.posPulse)},
                                                        {QStringLiteral("percent"), percentJson(r.posPCent)}});
}

void readLimits(VRNStdObject& o, QJsonObject& json, QString& line)
{
    const MotorConfigDataData& m = static_cast<VRNMotorObject&>(o).proxyMotorConfig().getConstData();
    line = QStringLiteral("up %1, down %2").arg(m.upEndLimit).arg(m.downEndLimit);
    json.insert(QStringLiteral("limits"), QJsonObject{{QStringLiteral("up"), int(m.upEndLimit)},
                                                      {QStringLiteral("down"), int(m.downEndLimit)}});
}

void readIps(const QList<MotorConfigDataData::MotorIp>& ips, int only, QJsonObject& json, QString& line)
{
    QJsonArray array;
    QStringList words;
    for (int i = 0; i < ips.size(); ++i) {
        if (only >= 0 && i != only)
            continue;
        const auto& ip = ips.at(i);
        const bool set = ip.pulse != MotorConfigDataData::MotorIp::UnsetPulse;
        array.append(QJsonObject{{QStringLiteral("index"), i},
                                 {QStringLiteral("pulses"), set ? QJsonValue(int(ip.pulse)) : QJsonValue()},
                                 {QStringLiteral("percent"), set ? percentJson(ip.pct) : QJsonValue()}});
        if (set)
            words << QStringLiteral("%1=%2 (%3)").arg(i).arg(ip.pulse).arg(percentText(ip.pct));
        else if (only >= 0)
            words << QStringLiteral("%1 not set").arg(i);
    }
    line = words.isEmpty() ? QStringLiteral("none set") : words.join(QStringLiteral(", "));
    json.insert(QStringLiteral("ips"), array);
}

QString onOff(quint8 status, quint8 value)
{
    return status ? QStringLiteral("on %1").arg(value) : QStringLiteral("off (%1)").arg(value);
}

void move(Cli& cli, const QStringList& args)
{
    static const QStringList verbs{QStringLiteral("up"), QStringLiteral("down"), QStringLiteral("stop"),
                                   QStringLiteral("to"), QStringLiteral("to-pulse"), QStringLiteral("to-ip"),
                                   QStringLiteral("by")};
    int at = 0;
    while (at < args.size() && !verbs.contains(args.at(at)))
        ++at;
    if (at == 0 || at == args.size())
        return cli.fail(Cli::Usage, Cli::tr("move needs DEVICE... and up, down, stop, to PERCENT, to-pulse N, to-ip INDEX or by PULSES"));
    const QString verb = args.at(at);
    const bool needsValue = at < args.size() && verb != QLatin1String("up") && verb != QLatin1String("down")
        && verb != QLatin1String("stop");
    if (args.size() != at + 1 + int(needsValue))
        return cli.fail(Cli::Usage, needsValue ? Cli::tr("move %1 takes one value").arg(verb) : Cli::tr("move %1 takes no value").arg(verb));
    qint64 value = 0;
    int command = MotorControlTask::Stop;
    if (verb == QLatin1String("up")) {
        command = MotorControlTask::ToUpLimit;
    } else if (verb == QLatin1String("down")) {
        command = MotorControlTask::ToDownLimit;
    } else if (verb == QLatin1String("to")) {
        if (!readInt(args.last(), 0, 100, value))
            return cli.fail(Cli::Usage, Cli::tr("move to takes a percent from 0 to 100: %1").arg(args.last()));
        command = MotorControlTask::ToPercent;
    } else if (verb == QLatin1String("to-pulse")) {
        if (!readInt(args.last(), 0, MaxPulse, value))
            return cli.fail(Cli::Usage, Cli::tr("move to-pulse takes pulses from 0 to %1: %2").arg(MaxPulse).arg(args.last()));
        command = MotorControlTask::ToPulse;
    } else if (verb == QLatin1String("to-ip")) {
        if (!readInt(args.last(), 0, MaxIpIndex, value))
            return cli.fail(Cli::Usage, Cli::tr("move to-ip takes an index from 0 to %1: %2").arg(MaxIpIndex).arg(args.last()));
        command = MotorControlTask::ToIP;
    } else if (verb == QLatin1String("by")) {
        if (!readInt(args.last(), -MaxPulse, MaxPulse, value))
            return cli.fail(Cli::Usage, Cli::tr("move by takes pulses from -%1 to %1: %2").arg(MaxPulse).arg(args.last()));
    }
    QList<VRNObject::UUID> uuids;
    if (!cli.resolveDevices(args.mid(0, at), uuids) || !cli.openBus())
        return;
    if (verb != QLatin1String("by")) {
        const int v = int(value);
        (new DeviceRunner(cli))->runJobs(uuids, forMotor([command, v] {
            auto job = new MotorControlJob;
            job->setCommand(command);
            job->setValue(v);
            return job;
        }), [verb](DeviceRun& run, QString&) {
            run.line = verb == QLatin1String("stop") ? QStringLiteral("stopped") : QStringLiteral("moving");
            run.result.insert(QStringLiteral("move"), verb);
            return true;
        }, notA(false));
        return;
    }
    // A relative move is the position read, then a move to the pulse that far from it.
    (new DeviceRunner(cli))->run(uuids, [value](DeviceRun& run) {
        if (!qobject_cast<VRNMotorObject*>(run.device))
            return run.fail(notA(false));
        run.start(new GetPositionJob, [&run, value](Job::Error error) {
            if (error != Job::NoError)
                return run.fail(run.jobError());
            const qint64 target = qint64(run.device->proxyRuntime().getConstData().posPulse) + value;
            if (target < 0 || target > MaxPulse)
                return run.fail(Cli::tr("%1 pulses is outside 0..%2").arg(target).arg(MaxPulse));
            auto move = new MotorControlJob;
            move->setCommand(MotorControlTask::ToPulse);
            move->setValue(int(target));
            run.start(move, [&run, target](Job::Error error) {
                if (error != Job::NoError)
                    return run.fail(run.jobError());
                run.result.insert(QStringLiteral("move"), QStringLiteral("by"));
                run.result.insert(QStringLiteral("target"), int(target));
                run.line = Cli::tr("moving to %1 pulses").arg(target);
                run.succeed();
            });
        });
    });
}

bool getMotor(Cli& cli, const QString& what, const QList<VRNObject::UUID>& uuids)
{
    std::function<QmlJob*()> make;
    OldReader read;
    bool dcOnly = false;
    if (what == QLatin1String("position")) {
        make = [] { return new GetPositionJob; };
        read = readPosition;
    } else if (what == QLatin1String("direction")) {
        make = [] { return new GetDirectionJob; };
        read = [](VRNStdObject& o, QJsonObject& json, QString& line) {
            const qint32 d = static_cast<VRNMotorObject&>(o).proxyMotorConfig().getConstData().rotDirection;
            line = d == DTSMotor::DirectionReversed ? QStringLiteral("reversed") : QStringLiteral("standard");
            json.insert(QStringLiteral("direction"), line);
        };
    } else if (what == QLatin1String("limits")) {
        make = [] { return new GetEndLimitsJob; };
        read = readLimits;
    } else if (what == QLatin1String("speed")) {
        dcOnly = true;
        make = [] { return new GetSpeedJob; };
        read = [](VRNStdObject& o, QJsonObject& json, QString& line) {
            const DCMotorConfigDataData& d = static_cast<VRNDCMotorObject&>(o).proxyDCMotorConfig().getConstData();
            line = QStringLiteral("up %1, down %2, slow %3").arg(d.upRollingSpeed).arg(d.downRollingSpeed).arg(d.slowRollingSpeed);
            json.insert(QStringLiteral("speed"), QJsonObject{{QStringLiteral("up"), d.upRollingSpeed},
                                                             {QStringLiteral("down"), d.downRollingSpeed},
                                                             {QStringLiteral("slow"), d.slowRollingSpeed}});
        };
    } else if (what == QLatin1String("ramp")) {
        dcOnly = true;
        make = [] { return new GetRampJob; };
        read = [](VRNStdObject& o, QJsonObject& json, QString& line) {
            const DCMotorConfigDataData& d = static_cast<VRNDCMotorObject&>(o).proxyDCMotorConfig().getConstData();
            line = QStringLiteral("start %1, stop %2").arg(onOff(d.softStartStatus, d.softStartValue),
                                                           onOff(d.softStopStatus, d.softStopValue));
            json.insert(QStringLiteral("ramp"),
                        QJsonObject{{QStringLiteral("start"), QJsonObject{{QStringLiteral("on"), d.softStartStatus != 0},
                                                                          {QStringLiteral("value"), d.softStartValue}}},
                                    {QStringLiteral("stop"), QJsonObject{{QStringLiteral("on"), d.softStopStatus != 0},
                                                                         {QStringLiteral("value"), d.softStopValue}}}});
        };
    } else if (what == QLatin1String("ips")) {
        make = [] { return new GetMotorIpsJob; };
        read = [](VRNStdObject& o, QJsonObject& json, QString& line) {
            readIps(static_cast<VRNMotorObject&>(o).proxyMotorConfig().getConstData().ips, -1, json, line);
        };
    } else {
        return false;
    }
    if (cli.openBus())
        (new DeviceRunner(cli))->runJobs(uuids, forMotor(make, dcOnly), reader(read), notA(dcOnly));
    return true;
}

bool setMotor(Cli& cli, const QString& what, const QList<VRNObject::UUID>& uuids, const QStringList& values)
{
    std::function<QmlJob*()> make;
    OldReader read;
    bool dcOnly = false;
    qint64 a = 0, b = 0, c = 0;
    if (what == QLatin1String("direction")) {
        const int direction = values.value(0) == QLatin1String("reversed") ? DTSMotor::DirectionReversed
                            : values.value(0) == QLatin1String("standard") ? DTSMotor::DirectionStandard : -1;
        if (values.size() != 1 || direction < 0)
            return cli.fail(Cli::Usage, Cli::tr("set direction takes standard or reversed")), true;
        make = [direction] {
            auto job = new SetDirectionJob;
            job->setDirection(direction);
            return job;
        };
        read = [values](VRNStdObject&, QJsonObject& json, QString& line) {
            line = values.first();
            json.insert(QStringLiteral("direction"), line);
        };
    } else if (what == QLatin1String("limits")) {
        const QString which = values.value(0);
        if ((which != QLatin1String("up") && which != QLatin1String("down")) || values.size() < 2)
            return cli.fail(Cli::Usage, Cli::tr("set limits takes up|down and here, PULSES or adjust DELTA")), true;
        int command = DTSMotor::LimitSetValue;
        if (values.at(1) == QLatin1String("here") && values.size() == 2) {
            command = DTSMotor::LimitAtCurrent;
        } else if (values.at(1) == QLatin1String("adjust") && values.size() == 3) {
            if (!readInt(values.at(2), -0x8000, 0x7FFF, a))
                return cli.fail(Cli::Usage, Cli::tr("adjust takes a delta from -32768 to 32767: %1").arg(values.at(2))), true;
            command = DTSMotor::LimitAdjust;
        } else if (values.size() != 2 || !readInt(values.at(1), 0, MaxPulse - 1, a)) {
            return cli.fail(Cli::Usage, Cli::tr("a limit is here, pulses from 0 to %1, or adjust DELTA: %2")
                                   .arg(MaxPulse - 1).arg(values.mid(1).join(QLatin1Char(' ')))), true;
        }
        const int limit = which == QLatin1String("up") ? DTSMotor::LimitUp : DTSMotor::LimitDown;
        const int delta = int(quint16(qint16(a)));
        make = [command, limit, delta] {
            auto job = new SetEndLimitsJob;
            job->setCommand(command);
            job->setLimit(limit);
            job->setDelta(delta);
            // An adjustment whose acknowledgement was lost has been made: another would add to it.
            if (command == DTSMotor::LimitAdjust)
                job->setProperty(DeviceRunner::RunOnce, true);
            return job;
        };
        read = readLimits;
    } else if (what == QLatin1String("speed")) {
        dcOnly = true;
        if (values.size() != 3)
            return cli.fail(Cli::Usage, Cli::tr("set speed takes UP DOWN SLOW")), true;
        qint64* speeds[] = {&a, &b, &c};
        for (int i = 0; i < 3; ++i) {
            if (!readInt(values.at(i), MinSpeed, MaxSpeed, *speeds[i]))
                return cli.fail(Cli::Usage, Cli::tr("a rolling speed is %1 to %2: %3").arg(MinSpeed).arg(MaxSpeed).arg(values.at(i))), true;
        }
        make = [a, b, c] {
            auto job = new SetSpeedJob;
            job->setUpSpeed(int(a));
            job->setDownSpeed(int(b));
            job->setSlowSpeed(int(c));
            return job;
        };
        read = [a, b, c](VRNStdObject&, QJsonObject& json, QString& line) {
            line = QStringLiteral("up %1, down %2, slow %3").arg(a).arg(b).arg(c);
            json.insert(QStringLiteral("speed"), QJsonObject{{QStringLiteral("up"), int(a)}, {QStringLiteral("down"), int(b)},
                                                             {QStringLiteral("slow"), int(c)}});
        };
    } else if (what == QLatin1String("ramp")) {
        dcOnly = true;
        if (values.size() != 2)
            return cli.fail(Cli::Usage, Cli::tr("set ramp takes START STOP, each off or 0..100")), true;
        qint64 ramp[2] = {0, 0};
        bool on[2] = {false, false};
        for (int i = 0; i < 2; ++i) {
            on[i] = values.at(i) != QLatin1String("off");
            if (on[i] && !readInt(values.at(i), 0, MaxRamp, ramp[i]))
                return cli.fail(Cli::Usage, Cli::tr("a ramp is off or 0 to %1: %2").arg(MaxRamp).arg(values.at(i))), true;
        }
        make = [on, ramp] {
            auto job = new SetRampJob;
            job->setRamps(DTSMotor::RampStart); // start and stop, each its own
            job->setSoftStartStatus(on[0]);
            job->setSoftStartValue(int(ramp[0]));
            job->setSoftStopStatus(on[1]);
            job->setSoftStopValue(int(ramp[1]));
            return job;
        };
        read = [values](VRNStdObject&, QJsonObject& json, QString& line) {
            line = QStringLiteral("start %1, stop %2").arg(values.at(0), values.at(1));
            json.insert(QStringLiteral("ramp"), QJsonObject{{QStringLiteral("start"), values.at(0)},
                                                            {QStringLiteral("stop"), values.at(1)}});
        };
    } else if (what == QLatin1String("ip")) {
        if (values.size() != 2)
            return cli.fail(Cli::Usage, Cli::tr("set ip takes INDEX and here, delete, PULSES or PERCENT%")), true;
        if (!readInt(values.at(0), 0, MaxIpIndex, a))
            return cli.fail(Cli::Usage, Cli::tr("an intermediate position index is 0 to %1: %2").arg(MaxIpIndex).arg(values.at(0))), true;
        const QString where = values.at(1);
        int function = DTSMotor::IPSetPulse;
        if (where == QLatin1String("here")) {
            function = DTSMotor::IPAtCurrent;
        } else if (where == QLatin1String("delete")) {
            function = DTSMotor::IPDelete;
        } else if (where.endsWith(QLatin1Char('%'))) {
            function = DTSMotor::IPSetPercent;
            if (!readInt(where.chopped(1), 0, 100, b))
                return cli.fail(Cli::Usage, Cli::tr("a percent is 0 to 100: %1").arg(where)), true;
        } else if (!readInt(where, 0, MaxPulse - 1, b)) {
            return cli.fail(Cli::Usage, Cli::tr("a position is here, delete, pulses from 0 to %1 or a percent: %2")
                                   .arg(MaxPulse - 1).arg(where)), true;
        }
        const int index = int(a);
        const int value = int(b);
        make = [function, index, value] {
            auto job = new SetMotorIpJob;
            job->setIpIndex(index);
            job->setFunction(function);
            job->setValue(value);
            return job;
        };
        read = [index](VRNStdObject& o, QJsonObject& json, QString& line) {
            readIps(static_cast<VRNMotorObject&>(o).proxyMotorConfig().getConstData().ips, index, json, line);
        };
    } else {
        return false;
    }
    if (cli.openBus())
        (new DeviceRunner(cli))->runJobs(uuids, forMotor(make, dcOnly), reader(read), notA(dcOnly));
    return true;
}

void factoryDefault(Cli& cli, const QStringList& args)
{
    QList<VRNObject::UUID> uuids;
    if (!cli.selectDevices(QStringLiteral("factory-default"), args, uuids))
        return;
    const bool ipsOnly = cli.isSet(QStringLiteral("ips-only"));
    const QString what = ipsOnly ? Cli::tr("the intermediate positions") : Cli::tr("every setting");
    if (!cli.confirm(Cli::tr("Restore %1 of %2 device(s) to factory values").arg(what).arg(uuids.size())) || !cli.openBus())
        return;
    const int function = ipsOnly ? DTSMotor::FactoryIPs : DTSMotor::FactoryAll;
    (new DeviceRunner(cli))->runJobs(uuids, forMotor([function] {
        auto job = new SetFactoryDefaultJob;
        job->setCommand(function);
        return job;
    }), [ipsOnly](DeviceRun& run, QString&) {
        run.line = ipsOnly ? QStringLiteral("intermediate positions cleared") : QStringLiteral("factory settings restored");
        run.result.insert(QStringLiteral("restored"), ipsOnly ? QStringLiteral("ips") : QStringLiteral("all"));
        return true;
    }, notA(false));
}

// Reads the position again and again; prints it when it changed (a JSON
// line with --json), and ends once it stayed the same for a few reads (the
// motor stands) or a read failed.
void watchPosition(Cli& cli, QSharedPointer<VRNObject> object, QSharedPointer<VRNObjectWorker> worker)
{
    auto job = new GetPositionJob(&cli);
    auto last = std::make_shared<int>(-1);
    auto stable = std::make_shared<int>(0);
    QObject::connect(job, &Job::finished, &cli, [=, &cli](Job::Error error) {
        if (cli.ended())
            return;
        if (error != Job::NoError)
            return cli.fail(Cli::Failed, Cli::tr("device %1: %2").arg(object->uuid()).arg(job->errorString()));
        const RuntimeDataData& r = object->proxyRuntime().getConstData();
        const int now = r.posPulse;
        if (now != *last) {
            *stable = 0;
            *last = now;
            if (cli.json())
                cli.output().jsonLine(QJsonObject{{QStringLiteral("uuid"), qint64(object->uuid())}, {QStringLiteral("pulses"), now},
                                                  {QStringLiteral("percent"), percentJson(r.posPCent)}});
            else
                cli.output().line(positionText(r.posPulse, r.posPCent));
        } else if (++*stable >= WatchStableReads) {
            return cli.finish();
        }
        QTimer::singleShot(WatchIntervalMs, &cli, [=, &cli] {
            if (!cli.ended())
                worker->queue()->enqueue(*job, 0);
        });
    });
    if (!worker || !worker->queue()->enqueue(*job, 0))
        cli.fail(Cli::Failed, Cli::tr("cannot queue the job"));
}

void watch(Cli& cli, const QStringList& args)
{
    cli.output().setStream(true);
    QList<VRNObject::UUID> uuids;
    if (args.size() != 1)
        return cli.fail(Cli::Usage, Cli::tr("watch position takes one DEVICE"));
    if (!cli.resolveDevices(args, uuids))
        return;
    if (uuids.size() != 1)
        return cli.fail(Cli::Usage, Cli::tr("watch follows one device, %1 given").arg(uuids.size()));
    ObjectFactory* factory = ObjectFactory::instance();
    QSharedPointer<VRNObject> object = factory->object(uuids.first());
    if (!qobject_cast<VRNMotorObject*>(object.data()))
        return cli.fail(Cli::Failed, Cli::tr("device %1: not a motor").arg(uuids.first()));
    if (cli.openBus())
        watchPosition(cli, object, factory->objectWorker(uuids.first()));
}

// get/set of one motor setting, on the devices named first.
Command getter(const char* what, const QString& help)
{
    const QString subject = QString::fromLatin1(what);
    return {QStringLiteral("get"), subject, QStringLiteral("DEVICE..."), help, [subject](Cli& cli, const QStringList& args) {
        QList<VRNObject::UUID> uuids;
        if (cli.selectDevices(QStringLiteral("get ") + subject, args, uuids))
            getMotor(cli, subject, uuids);
    }};
}

Command setter(const char* what, const QString& arguments, const QString& help)
{
    const QString subject = QString::fromLatin1(what);
    return {QStringLiteral("set"), subject, QStringLiteral("DEVICE ") + arguments, help, [subject](Cli& cli, const QStringList& args) {
        QList<VRNObject::UUID> uuids;
        if (args.size() < 2)
            return cli.fail(Cli::Usage, Cli::tr("set %1 needs a DEVICE and values; see vrnconfig help set").arg(subject));
        if (cli.resolveDevices(args.mid(0, 1), uuids))
            setMotor(cli, subject, uuids, args.mid(1));
    }};
}

void addMotorCommands(CommandRegistry& r)
{
    r.add({QStringLiteral("wink"), {}, QStringLiteral("DEVICE..."), Cli::tr("make motors show themselves"),
           DeviceRunner::onEach(QStringLiteral("wink"), forMotor([] { return new VisualFeedbackJob; }), [](DeviceRun& run, QString&) {
               run.line = QStringLiteral("winked");
               return true;
           }, notA(false))});
    r.add({QStringLiteral("move"), {}, QStringLiteral("DEVICE... up|down|stop|to PERCENT|to-pulse N|to-ip INDEX|by PULSES"),
           Cli::tr("move motors"), move});
    r.add(getter("position", Cli::tr("pulses and percent")));
    r.add(getter("direction", Cli::tr("standard or reversed")));
    r.add(getter("limits", Cli::tr("the up and down end limits")));
    r.add(getter("speed", Cli::tr("rolling speeds (DC motors)")));
    r.add(getter("ramp", Cli::tr("soft start and stop (DC motors)")));
    r.add(getter("ips", Cli::tr("the intermediate positions")));
    r.add(setter("direction", QStringLiteral("standard|reversed"), Cli::tr("the rotation direction")));
    r.add(setter("limits", QStringLiteral("up|down here|PULSES|adjust DELTA"), Cli::tr("an end limit")));
    r.add(setter("speed", QStringLiteral("UP DOWN SLOW"), Cli::tr("rolling speeds 6..28 (DC motors)")));
    r.add(setter("ramp", QStringLiteral("START STOP"), Cli::tr("soft start and stop: off or 0..100 (DC motors)")));
    r.add(setter("ip", QStringLiteral("INDEX here|delete|PULSES|PERCENT%"), Cli::tr("intermediate position 0..15")));
    r.add({QStringLiteral("factory-default"), {}, QStringLiteral("DEVICE... [--ips-only] [--yes]"),
           Cli::tr("restore factory settings (asks first on a terminal)"), factoryDefault});
    r.add({QStringLiteral("watch"), QStringLiteral("position"), QStringLiteral("DEVICE"),
           Cli::tr("the position as it changes, until the motor stops (JSON Lines with --json)"), watch});
    r.addOption(QCommandLineOption(QStringLiteral("ips-only")), {QStringLiteral("factory-default")});
    r.addOption(QCommandLineOption(QStringLiteral("yes")), {QStringLiteral("factory-default")});
}

const CommandFamily family(40, "Motors", addMotorCommands);

} // namespace
