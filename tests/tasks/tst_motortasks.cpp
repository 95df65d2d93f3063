// The motor tasks on simulated motors: the requests each one sends, what it
// writes into the records, its failure texts, and the graphs of the tasks
// that write and read back.
#include "taskfixture.h"

#include "dts.h"
#include "getdirectionjob.h"
#include "getdirectiontask.h"
#include "getendlimitsjob.h"
#include "getendlimitstask.h"
#include "getmotoripsjob.h"
#include "getmotoripstask.h"
#include "getpositionjob.h"
#include "getpositiontask.h"
#include "getrampjob.h"
#include "getramptask.h"
#include "getspeedjob.h"
#include "getspeedtask.h"
#include "jobregistration.h"
#include "motorcontroljob.h"
#include "motorcontroltask.h"
#include "motorctrlmovejob.h"
#include "motorctrlmovetask.h"
#include "motorctrlwinktask.h"
#include "setdirectionjob.h"
#include "setdirectiontask.h"
#include "setendlimitsjob.h"
#include "setendlimitstask.h"
#include "setfactorydefaultjob.h"
#include "setfactorydefaulttask.h"
#include "setmotoripjob.h"
#include "setmotoriptask.h"
#include "setrampjob.h"
#include "setramptask.h"
#include "setspeedjob.h"
#include "setspeedtask.h"
#include "tx30object.h"
#include "vrnobjectworker.h"
#include "workqueue.h"

#include <QtTest>

#include <functional>

using namespace TaskFixture;

namespace {

struct TaskRow
{
    const char* name;
    std::function<Task*(QObject*)> make;
    const char* failedText;
    const char* goneText; // the object is missing when the request is due
};

const char* const NoObject = "Internal error(no VRNObject)";

const QList<TaskRow>& taskRows()
{
    static const QList<TaskRow> rows = {
        {"wink", [](QObject* o) { return new MotorCtrlWinkTask(o); }, "MotorCtrlWinkTask failed",
         "VRNObject has been destroyed"},
        {"control", [](QObject* o) { return new MotorControlTask(MotorControlTask::Stop, 0, o); },
         "MotorControlTask failed", "VRNMotorObject has been destroyed"},
        {"move", [](QObject* o) { return new MotorCtrlMoveTask(1, 10, o); }, "MotorControlTask failed",
         "VRNMotorObject has been destroyed"},
        {"get direction", [](QObject* o) { return new GetDirectionTask(o); }, "GetDirectionTask failed", NoObject},
        {"set direction", [](QObject* o) { return new SetDirectionTask(DTSMotor::DirectionReversed, o); },
         "SetDirectionTask failed", NoObject},
        {"get limits", [](QObject* o) { return new GetEndLimitsTask(o); }, "GetDirectionTask failed", NoObject},
        {"set limits", [](QObject* o) { return new SetEndLimitsTask(1, 1, 50, o); }, "GetMotorIpsTask failed",
         "VRNMotorObject has been destroyed"},
        {"position", [](QObject* o) { return new GetPositionTask(o); }, "GetDirectionTask failed", NoObject},
        {"get speed", [](QObject* o) { return new GetSpeedTask(o); }, "GetDirectionTask failed", NoObject},
        {"set speed", [](QObject* o) { return new SetSpeedTask(10, 12, 7, o); }, "SetLabelTask failed", NoObject},
        {"get ramp", [](QObject* o) { return new GetRampTask(o); }, "GetDirectionTask failed", NoObject},
        {"set ramp", [](QObject* o) { return new SetRampTask(true, 20, true, 30, 1, o); }, "SetRampTask failed",
         NoObject},
        {"factory", [](QObject* o) { return new SetFactoryDefaultTask(DTSMotor::FactoryIPs, o); },
         "SetFactoryDefaultTask failed", "VRNMotorObject has been destroyed"},
        {"get ips", [](QObject* o) { return new GetMotorIpsTask(o, 0); }, "GetMotorIpsTask failed", NoObject},
        {"set ip", [](QObject* o) { return new SetMotorIpTask(DTSMotor::IPSetPulse, 2, 300, o); },
         "GetMotorIpsTask failed", NoObject},
    };
    return rows;
}

QByteArray bytes(std::initializer_list<int> list)
{
    QByteArray out;
    for (int b : list)
        out.append(char(b));
    return out;
}

} // namespace

class tst_MotorTasks : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void bindings();
    void controlCommands_data();
    void controlCommands();
    void taskFailures_data();
    void taskFailures();
    void settingsReadAndWritten();
    void endLimits_data();
    void endLimits();
    void endLimitsUnexpectedReply_data();
    void endLimitsUnexpectedReply();
    void rampGraph_data();
    void rampGraph();
    void factoryDefault_data();
    void factoryDefault();
    void motorIps_data();
    void motorIps();
    void setMotorIp();

private:
    VRNDCMotorObject* motor() const { return static_cast<VRNDCMotorObject*>(m_motor.data()); }
    /// (function, ramps, value) of every soft start/stop request, as "f,r,v".
    QStringList rampRequests() const;

    QScopedPointer<Wire> m_wire;
    SimNode* m_sim = nullptr;
    QSharedPointer<VRNObject> m_motor;
    QScopedPointer<VRNObjectWorker> m_worker;
};

void tst_MotorTasks::init()
{
    m_wire.reset(new Wire);
    m_sim = m_wire->net.addNode(SimNode::DCMotor, 0x123456);
    m_sim->setLimits(100, 1100);
    m_sim->setPosition(600);
    for (int i = 0; i < SimNode::IpSlots; ++i)
        m_sim->setIp(i, i < 4 ? quint16(200 + 200 * i) : quint16(SimNode::Unset16));
    m_motor = attachedObject<VRNDCMotorObject>(*m_wire, m_sim);
    m_worker.reset(new VRNObjectWorker(m_motor));
}

void tst_MotorTasks::cleanup()
{
    m_worker.reset();
    m_motor.reset();
    m_wire.reset();
}

QStringList tst_MotorTasks::rampRequests() const
{
    QStringList out;
    for (const VRNMessage& m : m_wire->sentOf(DTS::SetMotorSoftStartStop)) {
        const QByteArray p = m.payload();
        out.append(QStringLiteral("%1,%2,%3").arg(quint8(p.at(0))).arg(quint8(p.at(1))).arg(quint8(p.at(2))));
    }
    return out;
}

void tst_MotorTasks::bindings()
{
    // Speeds belong to DC motors: a plain motor has no task for them.
    SimNode* plain = m_wire->net.addNode(SimNode::Motor, 0x000300);
    QSharedPointer<VRNObject> motorOnly = attachedObject<VRNMotorObject>(*m_wire, plain);
    VRNObjectWorker plainWorker(motorOnly);
    GetSpeedJob speed;
    QTest::ignoreMessage(QtWarningMsg, "[Worker]: No task for GetSpeedJob on VRNMotorObject");
    QVERIFY(plainWorker.queue()->enqueue(speed, 0));
    QVERIFY(waitEnd(speed));
    QCOMPARE(speed.error(), Job::NoTaskError);

    // A TX30 is a DC-motor model.
    SimNode* simTx30 = m_wire->net.addNode(SimNode::TX30, 0x000400);
    QSharedPointer<VRNObject> tx30 = attachedObject<TX30Object>(*m_wire, simTx30);
    VRNObjectWorker tx30Worker(tx30);
    QVERIFY(tx30Worker.queue()->enqueue(speed, 0));
    QVERIFY(waitEnd(speed));
    QCOMPARE(speed.error(), Job::NoError);
    QVERIFY(qobject_cast<GetSpeedTask*>(speed.task()));
    const DCMotorConfigDataData& read = static_cast<TX30Object*>(tx30.data())->proxyDCMotorConfig().getConstData();
    QCOMPARE(read.upRollingSpeed, simTx30->rollingSpeed().up);
    QCOMPARE(read.slowRollingSpeed, simTx30->rollingSpeed().slow);
}

void tst_MotorTasks::controlCommands_data()
{
    QTest::addColumn<bool>("timed");  // MotorCtrlMoveJob rather than MotorControlJob
    QTest::addColumn<int>("command");
    QTest::addColumn<int>("value");
    QTest::addColumn<QByteArray>("request"); // command byte and payload; empty: nothing is sent

    QTest::newRow("0 down limit") << false << 0 << 9 << bytes({0x03, 0, 0, 0, 0xFF});
    QTest::newRow("1 up limit") << false << 1 << 9 << bytes({0x03, 1, 0, 0, 0xFF});
    QTest::newRow("2 to IP") << false << 2 << 3 << bytes({0x03, 2, 0, 3, 0xFF});
    QTest::newRow("3 to pulses") << false << 3 << 700 << bytes({0x03, 3, 0x02, 0xBC, 0xFF});
    QTest::newRow("4 to percent") << false << 4 << 50 << bytes({0x03, 4, 0, 50, 0xFF});
    QTest::newRow("10 next IP down") << false << 10 << 9 << bytes({0x04, 0, 0, 0, 0xFF});
    QTest::newRow("11 next IP up") << false << 11 << 9 << bytes({0x04, 1, 0, 0, 0xFF});
    QTest::newRow("255 stop") << false << 255 << 9 << bytes({0x02, 0xFF});
    QTest::newRow("7 nothing") << false << 7 << 9 << QByteArray();
    QTest::newRow("timed down") << true << 0 << 20 << bytes({0x05, 0, 20, 2});
    QTest::newRow("timed up") << true << 1 << 20 << bytes({0x05, 1, 20, 2});
    QTest::newRow("timed other stops") << true << 9 << 20 << bytes({0x02, 0xFF});
}

void tst_MotorTasks::controlCommands()
{
    QFETCH(bool, timed);
    QFETCH(int, command);
    QFETCH(int, value);
    QFETCH(QByteArray, request);

    QScopedPointer<Job> job(JobRegistration::create(timed ? QStringLiteral("MotorCtrlMoveJob")
                                                          : QStringLiteral("MotorControlJob")));
    job->setProperty("command", command);
    job->setProperty(timed ? "duration" : "value", value);
    QVERIFY(m_worker->queue()->enqueue(*job, 0));
    if (request.isEmpty()) {
        // Deliberately left running: nothing ends it but an abort.
        QTest::qWait(3 * m_wire->bus->timeout());
        QCOMPARE(job->state(), Job::Running);
        QVERIFY(m_wire->sent.isEmpty());
        job->detach();
        QCOMPARE(job->error(), Job::AbortedError);
        return;
    }
    QVERIFY(waitEnd(*job));
    QCOMPARE(job->error(), Job::NoError);
    QCOMPARE(m_wire->sent.size(), 1);
    const VRNMessage sent = m_wire->sent.first();
    QCOMPARE(QByteArray(1, char(sent.cmd())) + sent.payload(), request);
}

void tst_MotorTasks::taskFailures_data()
{
    QTest::addColumn<int>("row");
    for (int i = 0; i < taskRows().size(); ++i)
        QTest::newRow(taskRows().at(i).name) << i;
}

// Three failures of every task: a call error that is neither timeout nor bus
// failure, an object missing when the request is due, and the object gone
// while its request is out.
void tst_MotorTasks::taskFailures()
{
    QFETCH(int, row);
    const TaskRow& t = taskRows().at(row);
    QString text;

    m_wire->bus->failWrites = true;
    QCOMPARE(runTask(t.make(m_motor.data()), &text), Job::TaskFailedError);
    QCOMPARE(text, QString::fromLatin1(t.failedText));
    m_wire->bus->failWrites = false;

    QCOMPARE(runTask(t.make(nullptr), &text), Job::TaskFailedError);
    QCOMPARE(text, QString::fromLatin1(t.goneText));

    m_worker.reset();
    m_wire->sent.clear();
    connect(m_wire->bus, &Bus::messageSent, this, [this] { m_motor.reset(); });
    QCOMPARE(runTask(t.make(m_motor.data()), &text), Job::TaskFailedError);
    QCOMPARE(text, QStringLiteral("Internal error(no VRNObject)"));
    QCOMPARE(m_wire->sent.size(), 1);
}

void tst_MotorTasks::settingsReadAndWritten()
{
    m_sim->setDirection(DTSMotor::DirectionReversed);
    m_sim->setRollingSpeed({22, 18, 7});
    m_sim->setSoftStartStop({true, 40, false, 60});
    GetDirectionJob direction;
    GetSpeedJob speed;
    GetRampJob ramp;
    GetPositionJob position;
    for (Job* job : QList<Job*>{&direction, &speed, &ramp, &position})
        QCOMPARE(runJob(*m_worker, *job), Job::NoError);

    const DCMotorConfigDataData& proxy = motor()->proxyDCMotorConfig().getConstData();
    QCOMPARE(proxy.rotDirection, qint32(DTSMotor::DirectionReversed));
    QCOMPARE(proxy.upRollingSpeed, quint8(22));
    QCOMPARE(proxy.downRollingSpeed, quint8(18));
    QCOMPARE(proxy.slowRollingSpeed, quint8(7));
    QCOMPARE(proxy.softStartStatus, quint8(1));
    QCOMPARE(proxy.softStartValue, quint8(40));
    QCOMPARE(proxy.softStopStatus, quint8(0));
    QCOMPARE(proxy.softStopValue, quint8(60));
    QVERIFY(motor()->localDCMotorConfig().compareDCMotor(motor()->proxyDCMotorConfig()));
    QCOMPARE(motor()->localMotorConfig().getConstData().rotDirection, proxy.rotDirection);
    QCOMPARE(motor()->proxyRuntime().getConstData().posPulse, m_sim->position());
    QCOMPARE(motor()->proxyRuntime().getConstData().posPCent, quint16(m_sim->positionPercent()));

    // Writes change the device and the local record; the proxy waits for a read.
    SetSpeedJob setSpeed;
    setSpeed.setUpSpeed(10);
    setSpeed.setDownSpeed(12);
    setSpeed.setSlowSpeed(6);
    SetDirectionJob setDirection;
    setDirection.setDirection(DTSMotor::DirectionStandard);
    QCOMPARE(runJob(*m_worker, setSpeed), Job::NoError);
    QCOMPARE(runJob(*m_worker, setDirection), Job::NoError);
    QCOMPARE(m_sim->rollingSpeed().down, quint8(12));
    QCOMPARE(m_sim->direction(), quint8(DTSMotor::DirectionStandard));
    QCOMPARE(motor()->localDCMotorConfig().getConstData().downRollingSpeed, quint8(12));
    QCOMPARE(motor()->localMotorConfig().getConstData().rotDirection, 0);
    QCOMPARE(motor()->proxyDCMotorConfig().getConstData().downRollingSpeed, quint8(18));

    // A speed the device refuses leaves the local record alone.
    setSpeed.setDownSpeed(40);
    QCOMPARE(runJob(*m_worker, setSpeed), Job::TaskFailedError);
    QCOMPARE(setSpeed.errorString(), QStringLiteral("Nack(%1)").arg(DTS::toString(DTS::NackDataOutOfRange)));
    QCOMPARE(motor()->localDCMotorConfig().getConstData().downRollingSpeed, quint8(12));
}

void tst_MotorTasks::endLimits_data()
{
    QTest::addColumn<int>("command");
    QTest::addColumn<int>("limit");
    QTest::addColumn<int>("delta");
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<int>("up");
    QTest::addColumn<int>("down");

    QTest::newRow("up to a value") << 1 << 1 << 150 << bytes({1, 1, 0, 150}) << 150 << 1100;
    QTest::newRow("command 5 sets a value") << 5 << 0 << 900 << bytes({1, 0, 0x03, 0x84}) << 100 << 900;
    QTest::newRow("down at the position") << 0 << 0 << 7 << bytes({0, 0, 0, 7}) << 100 << 600;
    QTest::newRow("up adjusted by -10") << 2 << 1 << 0xFFF6 << bytes({2, 1, 0xFF, 0xF6}) << 90 << 1100;
    QTest::newRow("limit 3 is the down limit") << 1 << 3 << 1000 << bytes({1, 0, 0x03, 0xE8}) << 100 << 1000;
}

void tst_MotorTasks::endLimits()
{
    QFETCH(int, command);
    QFETCH(int, limit);
    QFETCH(int, delta);
    QFETCH(QByteArray, payload);
    QFETCH(int, up);
    QFETCH(int, down);

    SetEndLimitsJob job;
    job.setCommand(command);
    job.setLimit(limit);
    job.setDelta(delta);
    QCOMPARE(runJob(*m_worker, job), Job::NoError);
    QCOMPARE(m_wire->sentOf(DTS::SetMotorLimits).value(0).payload(), payload);
    QCOMPARE(m_wire->sentOf(DTS::GetMotorLimits).size(), 1);
    QCOMPARE(int(m_sim->upLimit()), up);
    QCOMPARE(int(m_sim->downLimit()), down);
    for (const MotorConfigData& record : {motor()->proxyMotorConfig(), motor()->localMotorConfig()}) {
        QCOMPARE(int(record.getConstData().upEndLimit), up);
        QCOMPARE(int(record.getConstData().downEndLimit), down);
    }

    // Read back on its own: the same limits, and the local record is left alone.
    MotorConfigData local = motor()->localMotorConfig();
    local.data().upEndLimit = 5;
    motor()->updateLocalMotorConfig(local);
    GetEndLimitsJob read;
    QCOMPARE(runJob(*m_worker, read), Job::NoError);
    QCOMPARE(int(motor()->proxyMotorConfig().getConstData().upEndLimit), up);
    QCOMPARE(int(motor()->localMotorConfig().getConstData().upEndLimit), 5);
}

void tst_MotorTasks::endLimitsUnexpectedReply_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<QString>("error");
    QTest::newRow("limits that do not parse: byte only") << bytes({0x31, 0, 1}) << QStringLiteral("Unexpected reply(31)");
    QTest::newRow("an intermediate position: whole frame") << bytes({0x35, 2, 0, 1, 5}) << QString();
}

// The write's reply is checked before the read goes out, and the read's reply
// is judged against 0x35, not 0x31.
void tst_MotorTasks::endLimitsUnexpectedReply()
{
    QFETCH(QByteArray, reply);
    QFETCH(QString, error);

    const VRN::Addr node = m_sim->address();
    const QByteArray frame = nodeFrame(quint8(reply.at(0)), node, reply.mid(1));
    m_sim->setSilent(true);
    // The task's own checks: the bus would drop these replies as answering nothing.
    m_wire->bus->acceptAnyFrame = true;
    m_wire->script = {nodeFrame(DTS::Ack, node, bytes({DTS::SetMotorLimits})), frame};
    QString text;
    QCOMPARE(runTask(new SetEndLimitsTask(1, 1, 50, m_motor.data()), &text), Job::TaskFailedError);
    QCOMPARE(text, error.isEmpty() ? QStringLiteral("Unexpected reply(%1)").arg(QString(frame.toHex().toUpper())) : error);
    QVERIFY(!motor()->proxyMotorConfig().isEndLimitsValid());

    // An acknowledgement of nothing in particular is no answer to a read.
    m_wire->script = {nodeFrame(DTS::PostMotorDirection, node, bytes({0}))};
    QCOMPARE(runTask(new SetEndLimitsTask(1, 1, 50, m_motor.data()), &text), Job::TaskFailedError);
    QCOMPARE(text, QStringLiteral("Unexpected reply(32)"));
    QCOMPARE(m_wire->sentOf(DTS::GetMotorLimits).size(), 1);
}

void tst_MotorTasks::rampGraph_data()
{
    QTest::addColumn<int>("ramps");
    QTest::addColumn<bool>("start");
    QTest::addColumn<bool>("stop");
    QTest::addColumn<QStringList>("requests");

    QTest::newRow("both enabled") << 0 << true << false << QStringList{"1,0,0", "2,0,40"};
    QTest::newRow("both disabled") << 0 << false << true << QStringList{"0,0,0"};
    QTest::newRow("each, start and stop on") << 1 << true << true << QStringList{"1,1,0", "2,1,40", "1,2,0", "2,2,60"};
    QTest::newRow("each, start on, stop off") << 1 << true << false << QStringList{"1,1,0", "2,1,40", "0,2,0"};
    QTest::newRow("each, start off, stop on") << 2 << false << true << QStringList{"0,1,0", "1,2,0", "2,2,60"};
    QTest::newRow("each, both off") << 2 << false << false << QStringList{"0,1,0", "0,2,0"};
}

void tst_MotorTasks::rampGraph()
{
    QFETCH(int, ramps);
    QFETCH(bool, start);
    QFETCH(bool, stop);
    QFETCH(QStringList, requests);

    m_sim->setSoftStartStop({!start, 5, !stop, 5});
    SetRampJob job;
    job.setRamps(ramps);
    job.setSoftStartStatus(start);
    job.setSoftStartValue(40);
    job.setSoftStopStatus(stop);
    job.setSoftStopValue(60);
    const DCMotorConfigData before = motor()->localDCMotorConfig();
    QCOMPARE(runJob(*m_worker, job), Job::NoError);
    QCOMPARE(rampRequests(), requests);

    const bool stopOn = ramps == 0 ? start : stop;
    const SimNode::SoftStartStop device = m_sim->softStartStop();
    QCOMPARE(device.startEnabled, start);
    QCOMPARE(device.stopEnabled, stopOn);
    // The device changed; the local record is left as it was.
    QVERIFY(motor()->localDCMotorConfig() == before);

    // A refusal part-way stops the graph there.
    m_wire->sent.clear();
    m_sim->setForcedNack(DTS::NackBusy);
    QCOMPARE(runJob(*m_worker, job), Job::TaskFailedError);
    QCOMPARE(job.errorString(), QStringLiteral("Nack(%1)").arg(DTS::toString(DTS::NackBusy)));
    QCOMPARE(rampRequests().size(), 1);
}

void tst_MotorTasks::factoryDefault_data()
{
    QTest::addColumn<int>("function");
    QTest::newRow("0x15 intermediate positions") << int(DTSMotor::FactoryIPs);
    QTest::newRow("0x11 end limits") << int(DTSMotor::FactoryEndLimits);
    QTest::newRow("0x00 all") << int(DTSMotor::FactoryAll);
}

void tst_MotorTasks::factoryDefault()
{
    QFETCH(int, function);
    for (Job* read : QList<Job*>{new GetDirectionJob(this), new GetEndLimitsJob(this), new GetMotorIpsJob(this)})
        QCOMPARE(runJob(*m_worker, *read), Job::NoError);
    MotorConfigData local = motor()->localMotorConfig();
    local.data().ips = motor()->proxyMotorConfig().getConstData().ips; // not seeded: slots 4.. are unset
    motor()->updateLocalMotorConfig(local);
    const MotorConfigData before = motor()->localMotorConfig();

    SetFactoryDefaultJob job;
    job.setCommand(function);
    QCOMPARE(runJob(*m_worker, job), Job::NoError);
    const MotorConfigDataData& after = motor()->localMotorConfig().getConstData();
    if (function == DTSMotor::FactoryIPs) {
        QCOMPARE(after.ips.size(), 16);
        for (const MotorConfigDataData::MotorIp& ip : after.ips)
            QVERIFY(ip == MotorConfigDataData::MotorIp());
        QCOMPARE(after.upEndLimit, before.getConstData().upEndLimit);
        QCOMPARE(after.rotDirection, before.getConstData().rotDirection);
        QVERIFY(!m_sim->ip(0).isSet());
        QCOMPARE(m_sim->upLimit(), quint16(100));
    } else {
        QVERIFY(after.compareMotor(MotorConfigData().getConstData()));
    }
    QVERIFY(motor()->proxyMotorConfig().compareMotor(before) || function == DTSMotor::FactoryIPs);
}

void tst_MotorTasks::motorIps_data()
{
    QTest::addColumn<int>("silentAt"); // -1: every position answered
    QTest::newRow("all sixteen") << -1;
    QTest::newRow("timeout at 9") << 9;
}

void tst_MotorTasks::motorIps()
{
    QFETCH(int, silentAt);
    for (int i = 0; i < SimNode::IpSlots; ++i)
        m_sim->setIp(i, quint16(100 + 50 * i));
    connect(m_wire->bus, &Bus::messageSent, this, [this, silentAt](const BusMessage& m) {
        const VRNMessage request(m);
        if (request.cmd() == DTS::GetMotorIP && request.payload().at(0) == silentAt)
            m_sim->setSilent(true);
    });
    GetMotorIpsJob job;
    const QList<MotorConfigDataData::MotorIp> ips = [&] { runJob(*m_worker, job); return motor()->proxyMotorConfig().getConstData().ips; }();
    QCOMPARE(ips.size(), silentAt < 0 ? 16 : silentAt);
    for (int i = 0; i < ips.size(); ++i) {
        QCOMPARE(ips.at(i).pulse, m_sim->ip(i).pulse);
        QCOMPARE(ips.at(i).pct, m_sim->ip(i).pct);
    }
    if (silentAt < 0) {
        QCOMPARE(job.error(), Job::NoError);
        QCOMPARE(motor()->localMotorConfig().getConstData().ips, ips);
    } else {
        QCOMPARE(job.errorString(), QStringLiteral("Timeout error"));
        QVERIFY(motor()->localMotorConfig().getConstData().ips.isEmpty());
    }
}

void tst_MotorTasks::setMotorIp()
{
    SetMotorIpJob job;
    job.setIpIndex(5);
    job.setFunction(DTSMotor::IPSetPercent);
    job.setValue(50);
    QCOMPARE(runJob(*m_worker, job), Job::NoError);
    QCOMPARE(m_wire->sentOf(DTS::SetMotorIP).value(0).payload(), bytes({3, 5, 0, 50}));
    QCOMPARE(m_wire->sentOf(DTS::GetMotorIP).value(0).payload(), bytes({5}));
    QCOMPARE(m_sim->ip(5).pulse, quint16(600));
    for (const MotorConfigData& record : {motor()->proxyMotorConfig(), motor()->localMotorConfig()}) {
        const QList<MotorConfigDataData::MotorIp> ips = record.getConstData().ips;
        QCOMPARE(ips.size(), 6);
        QCOMPARE(ips.at(5).pulse, quint16(600));
        QCOMPARE(ips.at(5).pct, quint8(50));
        QVERIFY(ips.at(4) == MotorConfigDataData::MotorIp());
    }

    // A refused write sends no read.
    job.setIpIndex(16);
    QCOMPARE(runJob(*m_worker, job), Job::TaskFailedError);
    QCOMPARE(m_wire->sentOf(DTS::GetMotorIP).size(), 1);
}

QTEST_MAIN(tst_MotorTasks)
#include "tst_motortasks.moc"
