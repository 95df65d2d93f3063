// Proxies and simulated nodes agree on the reply layouts, exchanged on the
// loopback wire. The node's own rules (moves, refusals, counters) are
// tst_simnode's; request bytes and parsers are pinned in tst_dtsproxyrequests
// and tst_dtsproxyreplies.
#include "dtsgroupproxy.h"
#include "dtsmotorproxy.h"
#include "simclock.h"
#include "simnetwork.h"
#include "vrnloopbackbus.h"
#include "vrnmessage.h"

#include <QtTest>

class tst_DTSProxySim : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void nodeProperties();
    void groupSlots();
    void networkCounters();
    void motorSettings();
    void intermediatePositions();
    void groupMovement();
    void diagnostics();

private:
    // Waits for `call` and returns its reply; an empty message on any error.
    BusMessage reply(const BusPendingCall& call);
    bool acked(const BusPendingCall& call) { return m_motor->isAck(reply(call)); }

    QScopedPointer<VRNLoopbackBus> m_bus;
    QScopedPointer<SimNetwork> m_net;
    SimNode* m_simMotor = nullptr;
    SimNode* m_simStd = nullptr;
    QScopedPointer<DTSMotorProxy> m_motor;
    QScopedPointer<DTSStdProxy> m_std;
};

void tst_DTSProxySim::init()
{
    m_bus.reset(new VRNLoopbackBus);
    m_bus->setTimeout(200);
    m_bus->setBroadcastWindow(30);
    QVERIFY(m_bus->open());
    m_net.reset(new SimNetwork(7));
    m_net->setReplyWindow(10);
    QVERIFY(m_net->attach(m_bus.data()));
    m_simMotor = m_net->addNode(SimNode::DCMotor, 0x123456);
    m_simStd = m_net->addNode(SimNode::Std, 0x000200);
    QVERIFY(m_simMotor && m_simStd);
    m_motor.reset(new DTSMotorProxy(m_simMotor->address(), m_bus.data()));
    m_std.reset(new DTSStdProxy(m_simStd->address(), m_bus.data()));
}

void tst_DTSProxySim::cleanup()
{
    m_motor.reset();
    m_std.reset();
    m_net.reset();
    m_bus.reset();
}

BusMessage tst_DTSProxySim::reply(const BusPendingCall& call)
{
    if (!QTest::qWaitFor([&] { return call.isFinished(); }, 1000) || call.error() != BusPendingCall::NoError) {
        qWarning() << "call failed:" << call.error() << call.errorString();
        return BusMessage();
    }
    return call.reply();
}

void tst_DTSProxySim::nodeProperties()
{
    QVERIFY(m_std->isAck(reply(m_std->setNodeLabel("Kitchen"))));
    QCOMPARE(m_simStd->label(), QByteArray("Kitchen"));
    QByteArray label;
    QVERIFY(m_std->getNodeLabelReply(reply(m_std->getNodeLabel()), label));
    QCOMPARE(label, QByteArray("Kitchen"));

    QVERIFY(m_std->isAck(reply(m_std->setNodeLabel(QByteArray()))));
    QVERIFY(m_std->getNodeLabelReply(reply(m_std->getNodeLabel()), label));
    QVERIFY(label.isEmpty() && !label.isNull()); // a nameless node is not an unknown label

    m_simStd->setAppVersion({3, 4, 5, 678});
    DTSStdProxy::AppVersion version;
    QVERIFY(m_std->getNodeAppVersionReply(reply(m_std->getNodeAppVersion()), version));
    QCOMPARE(version.toString(), QStringLiteral("3.4.5.678"));

    m_simStd->setNetworkConfig({1, 2, 3, 4});
    DTSStdProxy::NetworkConfig config;
    QVERIFY(m_std->getNetworkConfigReply(reply(m_std->getNetworkConfig()), config));
    QCOMPARE(QVector<int>({config.brPriority, config.lpPriority, config.maxRetry, config.slotCount}),
             QVector<int>({1, 2, 3, 4}));

    m_simStd->setSerialNumber("SN-000123456");
    QByteArray serial;
    QVERIFY(m_std->getNodeSerialNumberReply(reply(m_std->getNodeSerialNumber()), serial));
    QCOMPARE(serial, QByteArray("SN-000123456"));
}

void tst_DTSProxySim::groupSlots()
{
    QVERIFY(m_std->isAck(reply(m_std->setGroupAddr(0, 0x000ABC))));
    QVERIFY(m_std->isAck(reply(m_std->setGroupAddr(15, 0xFEDCBA))));
    QCOMPARE(m_simStd->group(15), 0xFEDCBAu);
    for (unsigned char slot = 0; slot < DTSStdProxy::GroupSlotCount; ++slot) {
        unsigned char index = 0xFF;
        unsigned int group = 0xFFFFFFFF;
        QVERIFY(m_std->getGroupAddrReply(reply(m_std->getGroupAddr(slot)), index, group));
        QCOMPARE(index, slot);
        QCOMPARE(group, slot == 0 ? 0x000ABCu : slot == 15 ? 0xFEDCBAu : 0u);
    }
    const BusMessage refused = reply(m_std->getGroupAddr(16));
    QCOMPARE(int(DTS::getNackReply(VRNMessage(refused))), int(DTS::NackDataOutOfRange));
    QVERIFY(!m_std->isAck(refused));
}

void tst_DTSProxySim::networkCounters()
{
    const SimNode::NetworkStat traffic{2, 100000, 0xFFFFFFF0, 70000, 513, 9, 1};
    m_simStd->setNetworkStat(traffic);
    DTSStdProxy::NetworkStat stat;
    QVERIFY(m_std->getNetworkStatReply(reply(m_std->getNetworkStat()), stat));
    // The node counts the request before it answers.
    QCOMPARE(QVector<quint32>({stat.maxRetryCount, stat.frameSent, stat.frameSeen, stat.frameReceived,
                               stat.busyCount, stat.maxSlot, stat.supervisionFailure}),
             QVector<quint32>({2, 100000, 0xFFFFFFF1, 70001, 513, 9, 1}));

    SimNode::NetworkErrorStat errors{1, 2, 3, 4, 5, 6, 7, 8, 65535};
    m_simStd->setNetworkErrorStat(errors);
    DTSStdProxy::NetworkErrorStat errorStat;
    QVERIFY(m_std->getNetworkErrorStatReply(reply(m_std->getNetworkErrorStat()), errorStat));
    QCOMPARE(errorStat.txFailures, quint16(1));
    QCOMPARE(errorStat.msgLengthError, quint16(5));
    QCOMPARE(errorStat.bundleSizeError, quint16(65535));
}

void tst_DTSProxySim::motorSettings()
{
    DTSMotor::TurnDirection direction = DTSMotor::DirectionStandard;
    QVERIFY(acked(m_motor->setMotorDirection(DTSMotor::DirectionReversed)));
    QVERIFY(m_motor->getMotorDirectionReply(reply(m_motor->getMotorDirection()), direction));
    QCOMPARE(direction, DTSMotor::DirectionReversed);
    QVERIFY(acked(m_motor->setFactoryDefault(DTSMotor::FactoryDirection)));
    QVERIFY(m_motor->getMotorDirectionReply(reply(m_motor->getMotorDirection()), direction));
    QCOMPARE(direction, DTSMotor::DirectionStandard);

    QVERIFY(acked(m_motor->setMotorLimits(DTSMotor::LimitSetValue, DTSMotor::LimitUp, 100)));
    QVERIFY(acked(m_motor->setMotorLimits(DTSMotor::LimitSetValue, DTSMotor::LimitDown, 5000)));
    QVERIFY(acked(m_motor->setMotorLimits(DTSMotor::LimitAdjust, DTSMotor::LimitDown, quint16(-10))));
    unsigned short up = 0, down = 0;
    QVERIFY(m_motor->getMotorLimitsReply(reply(m_motor->getMotorLimits()), up, down));
    QCOMPARE(up, quint16(100));
    QCOMPARE(down, quint16(4990));

    QVERIFY(acked(m_motor->setMotorRollingSpeed(10, 12, 7)));
    unsigned char upSpeed = 0, downSpeed = 0, slowSpeed = 0;
    QVERIFY(m_motor->getMotorRollingSpeedReply(reply(m_motor->getMotorRollingSpeed()), upSpeed, downSpeed,
                                               slowSpeed));
    QCOMPARE(QVector<int>({upSpeed, downSpeed, slowSpeed}), QVector<int>({10, 12, 7}));

    QVERIFY(acked(m_motor->setMotorSoftStartStop(DTSMotor::SoftDisable, DTSMotor::RampsBoth, 0)));
    QVERIFY(acked(m_motor->setMotorSoftStartStop(DTSMotor::SoftEnable, DTSMotor::RampStop, 0)));
    QVERIFY(acked(m_motor->setMotorSoftStartStop(DTSMotor::SoftSetValue, DTSMotor::RampStart, 40)));
    bool startOn = true, stopOn = false;
    unsigned char start = 0, stop = 0;
    QVERIFY(m_motor->getMotorSoftStartStopReply(reply(m_motor->getMotorSoftStartStop()), startOn, start, stopOn,
                                                stop));
    QVERIFY(!startOn);
    QVERIFY(stopOn);
    QCOMPARE(start, quint8(40));
    QCOMPARE(stop, m_simMotor->softStartStop().stopValue);
}

void tst_DTSProxySim::intermediatePositions()
{
    m_simMotor->setLimits(0, 1000);
    QVERIFY(acked(m_motor->setMotorIP(DTSMotor::IPSetPulse, 3, 250)));
    QVERIFY(acked(m_motor->setMotorIP(DTSMotor::IPSetPercent, 4, 60)));
    QVERIFY(acked(m_motor->setMotorIP(DTSMotor::IPDelete, 5, 0)));
    struct Expected { unsigned char index; unsigned short pulse; unsigned char pct; };
    for (const Expected& e : {Expected{3, 250, 25}, Expected{4, 600, 60}, Expected{5, 0xFFFF, 0xFF}}) {
        unsigned char index = 0xEE, pct = 0xEE;
        unsigned short pulse = 0xEEEE;
        QVERIFY(m_motor->getMotorIPReply(reply(m_motor->getMotorIP(e.index)), index, pulse, pct));
        QCOMPARE(index, e.index);
        QCOMPARE(pulse, e.pulse);
        QCOMPARE(pct, e.pct);
    }
}

void tst_DTSProxySim::groupMovement()
{
    SimNode* second = m_net->addNode(SimNode::Motor, 0x000301);
    SimNode* outsider = m_net->addNode(SimNode::Motor, 0x000302);
    for (SimNode* n : {m_simMotor, second, outsider}) {
        n->setLimits(0, 1000);
        n->setPosition(0);
    }
    m_simMotor->setGroup(2, 0x00AB01);
    second->setGroup(15, 0x00AB01);
    outsider->setGroup(0, 0x00AB02);

    DTSGroupProxy group(0x00AB01, m_bus.data());
    BusPendingCall call = group.moveTo(DTSMotor::MoveToPercent, 100, 0xFF);
    QVERIFY(QTest::qWaitFor([&] { return call.isFinished(); }, 1000));
    QCOMPARE(call.error(), BusPendingCall::NoError);
    QVERIFY(call.replies().isEmpty());
    m_net->clock()->advance(60 * 1000000);
    QCOMPARE(m_simMotor->position(), quint16(1000));
    QCOMPARE(second->position(), quint16(1000));
    QCOMPARE(outsider->position(), quint16(0));
    unsigned short pulse = 0;
    unsigned char pct = 0, tilt = 0, ip = 0;
    QVERIFY(m_motor->getMotorPositionReply(reply(m_motor->getMotorPosition()), pulse, pct, tilt, ip));
    QCOMPARE(QVector<int>({pulse, pct, tilt, ip}), QVector<int>({1000, 100, 0xFF, 0xFF}));

    call = group.moveOf(DTSMotor::MoveOfPulsesUp, 300, 0xFF);
    QVERIFY(QTest::qWaitFor([&] { return call.isFinished(); }, 1000));
    m_net->clock()->advance(60 * 1000000);
    QCOMPARE(second->position(), quint16(700));
}

void tst_DTSProxySim::diagnostics()
{
    const SimNode::Diagnostics d{0x01020304, 0xFFFFFFFE, 3, 40, 5, 60, 7, 8, 9};
    m_simMotor->setDiagnostics(d);

    unsigned int total = 0;
    unsigned short count = 0, post = 0;
    QVERIFY(m_motor->diagGetTotalMoveCountReply(reply(m_motor->diagGetTotalMoveCount()), total));
    QCOMPARE(total, d.totalMoveCount);
    QVERIFY(m_motor->diagGetTotalRevCountReply(reply(m_motor->diagGetTotalRevCount()), total));
    QCOMPARE(total, d.totalRevCount);
    QVERIFY(m_motor->diagGetThermalCountReply(reply(m_motor->diagGetThermalCount()), count, post));
    QCOMPARE(QVector<int>({count, post}), QVector<int>({3, 40}));
    QVERIFY(m_motor->diagGetObstacleCountReply(reply(m_motor->diagGetObstacleCount()), count, post));
    QCOMPARE(QVector<int>({count, post}), QVector<int>({5, 60}));
    QVERIFY(m_motor->diagGetPowerCountReply(reply(m_motor->diagGetPowerCount()), count));
    QCOMPARE(count, d.powerCount);
    QVERIFY(m_motor->diagGetResetCountReply(reply(m_motor->diagGetResetCount()), count));
    QCOMPARE(count, d.resetCount);
    QVERIFY(m_motor->diagGetEncoderErrorsReply(reply(m_motor->diagGetEncoderErrors()), count));
    QCOMPARE(count, d.encoderErrCount);
}

QTEST_MAIN(tst_DTSProxySim)
#include "tst_dtsproxysim.moc"
