// Every request builder of the node proxies, byte by byte on a loopback wire.
#include "dtsgroupproxy.h"
#include "dtsmotorproxy.h"
#include "vrnloopbackbus.h"
#include "vrnmessage.h"

#include <QSignalSpy>
#include <QtTest>
#include <functional>

using Request = std::function<BusPendingCall(DTSMotorProxy&)>;
Q_DECLARE_METATYPE(Request)

namespace {

const VRN::Addr MotorAddr = VRN::makeAddr(VRN::NodeMotor, 0x123456);

struct RequestRow
{
    QByteArray name;
    Request send;
    quint8 cmd;
    QByteArray payload;
};

QByteArray hex(const char* text) { return QByteArray::fromHex(text); }
QByteArray bytes(std::initializer_list<quint8> values)
{
    QByteArray out;
    for (quint8 v : values)
        out.append(char(v));
    return out;
}

// One row per request and argument combination worth telling apart.
QVector<RequestRow> requestRows()
{
    using P = DTSMotorProxy;
    QVector<RequestRow> rows;
    auto add = [&](const QByteArray& name, Request send, quint8 cmd, const QByteArray& payload = QByteArray()) {
        rows.append({name, std::move(send), cmd, payload});
    };
    auto plain = [&](const char* name, BusPendingCall (P::*get)(), quint8 cmd) {
        add(name, [get](P& p) { return (p.*get)(); }, cmd);
    };

    plain("getNodeLabel", &P::getNodeLabel, 0x45);
    for (const QByteArray& label : {QByteArray(), QByteArray("Kitchen"), QByteArray(16, 'x')})
        add("setNodeLabel " + QByteArray::number(label.size()),
            [label](P& p) { return p.setNodeLabel(label); }, 0x55, label);
    plain("getNodeAppVersion", &P::getNodeAppVersion, 0x74);
    for (quint8 index : {0, 15})
        add("getGroupAddr " + QByteArray::number(index), [index](P& p) { return p.getGroupAddr(index); },
            0x41, bytes({index}));
    add("setGroupAddr empty", [](P& p) { return p.setGroupAddr(0, 0); }, 0x52, hex("00000000"));
    add("setGroupAddr 15", [](P& p) { return p.setGroupAddr(15, 0xABCDEF); }, 0x52, hex("0FABCDEF"));
    add("setGroupAddr number only", [](P& p) { return p.setGroupAddr(3, 0x01ABCDEF); }, 0x52, hex("03ABCDEF"));
    plain("getNetworkConfig", &P::getNetworkConfig, 0x42);
    plain("getNetworkStat", &P::getNetworkStat, 0x48);
    plain("getNetworkErrorStat", &P::getNetworkErrorStat, 0x49);
    for (quint8 counters = 0; counters <= 2; ++counters)
        for (quint8 value : {0, 7})
            add("setNetworkStat " + QByteArray::number(counters) + "," + QByteArray::number(value),
                [=](P& p) { return p.setNetworkStat(counters, value); }, 0x59, bytes({counters, value}));
    plain("getNodeSerialNumber", &P::getNodeSerialNumber, 0x4C);
    add("setNodeDiscovery mark", [](P& p) { return p.setNodeDiscovery(true); }, 0x53, hex("01"));
    add("setNodeDiscovery clear", [](P& p) { return p.setNodeDiscovery(false); }, 0x53, hex("00"));
    plain("clearDiscovery", &P::clearDiscovery, 0x50);

    plain("ctrlWink", &P::ctrlWink, 0x06);
    for (quint8 f = DTSMotor::MoveToDownLimit; f <= DTSMotor::MoveToPercent; ++f)
        add("ctrlMoveTo " + QByteArray::number(f),
            [f](P& p) { return p.ctrlMoveTo(DTSMotor::MoveToFunction(f), 0x1234, 0xFF); }, 0x03,
            bytes({f, 0x12, 0x34, 0xFF}));
    for (quint8 f = DTSMotor::MoveOfNextIPDown; f <= DTSMotor::MoveOfPulsesUp; ++f)
        add("ctrlMoveOf " + QByteArray::number(f),
            [f](P& p) { return p.ctrlMoveOf(DTSMotor::MoveOfFunction(f), 0xBEEF, 0x00); }, 0x04,
            bytes({f, 0xBE, 0xEF, 0x00}));
    for (quint8 dir = DTSMotor::MoveDown; dir <= DTSMotor::MoveUp; ++dir)
        for (quint8 speed = DTSMotor::SpeedUp; speed <= DTSMotor::SpeedSlow; ++speed)
            add("ctrlMove " + QByteArray::number(dir) + "," + QByteArray::number(speed),
                [=](P& p) { return p.ctrlMove(DTSMotor::MoveFunction(dir), 100, DTSMotor::SpeedType(speed)); },
                0x05, bytes({dir, 100, speed}));
    add("ctrlStop", [](P& p) { return p.ctrlStop(0xFF); }, 0x02, hex("FF"));

    plain("getMotorDirection", &P::getMotorDirection, 0x22);
    for (quint8 dir : {DTSMotor::DirectionStandard, DTSMotor::DirectionReversed})
        add("setMotorDirection " + QByteArray::number(dir),
            [dir](P& p) { return p.setMotorDirection(DTSMotor::TurnDirection(dir)); }, 0x12, bytes({dir}));
    plain("getMotorLimits", &P::getMotorLimits, 0x21);
    for (quint8 f = DTSMotor::LimitAtCurrent; f <= DTSMotor::LimitAdjust; ++f)
        for (quint8 limit = DTSMotor::LimitDown; limit <= DTSMotor::LimitUp; ++limit)
            add("setMotorLimits " + QByteArray::number(f) + "," + QByteArray::number(limit),
                [=](P& p) {
                    return p.setMotorLimits(DTSMotor::LimitFunction(f), DTSMotor::Limit(limit), quint16(-10));
                },
                0x11, bytes({f, limit, 0xFF, 0xF6}));
    plain("getMotorPosition", &P::getMotorPosition, 0x0C);
    plain("getMotorRollingSpeed", &P::getMotorRollingSpeed, 0x13);
    add("setMotorRollingSpeed", [](P& p) { return p.setMotorRollingSpeed(6, 28, 12); }, 0x14, bytes({6, 28, 12}));
    plain("getMotorSoftStartStop", &P::getMotorSoftStartStop, 0x19);
    for (quint8 f = DTSMotor::SoftDisable; f <= DTSMotor::SoftSetValue; ++f)
        for (quint8 ramps = DTSMotor::RampsBoth; ramps <= DTSMotor::RampStop; ++ramps)
            add("setMotorSoftStartStop " + QByteArray::number(f) + "," + QByteArray::number(ramps),
                [=](P& p) {
                    return p.setMotorSoftStartStop(DTSMotor::SoftStartStopFunction(f),
                                                   DTSMotor::SoftStartStopRamps(ramps), 40);
                },
                0x1A, bytes({f, ramps, 40}));
    for (quint8 f : {0x00, 0x01, 0x02, 0x11, 0x12, 0x13, 0x14, 0x15})
        add("setFactoryDefault " + QByteArray::number(f, 16),
            [f](P& p) { return p.setFactoryDefault(DTSMotor::FactoryDefFunction(f)); }, 0x1F, bytes({f}));
    for (quint8 index : {0, 15})
        add("getMotorIP " + QByteArray::number(index), [index](P& p) { return p.getMotorIP(index); }, 0x25,
            bytes({index}));
    for (quint8 f = DTSMotor::IPDelete; f <= DTSMotor::IPSetPercent; ++f)
        add("setMotorIP " + QByteArray::number(f),
            [f](P& p) { return p.setMotorIP(DTSMotor::IPFunction(f), 7, 0x0102); }, 0x15, bytes({f, 7, 1, 2}));

    plain("diagGetTotalMoveCount", &P::diagGetTotalMoveCount, 0x26);
    plain("diagGetTotalRevCount", &P::diagGetTotalRevCount, 0x27);
    plain("diagGetThermalCount", &P::diagGetThermalCount, 0x28);
    plain("diagGetObstacleCount", &P::diagGetObstacleCount, 0x2A);
    plain("diagGetPowerCount", &P::diagGetPowerCount, 0x2B);
    plain("diagGetResetCount", &P::diagGetResetCount, 0x2C);
    plain("diagGetEncoderErrors", &P::diagGetEncoderErrors, 0x2D);
    return rows;
}

} // namespace

class tst_DTSProxyRequests : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void unicastFrame_data();
    void unicastFrame();
    void pinnedFrames_data();
    void pinnedFrames();
    void pinnedSequenceFrames();
    void groupFrame_data();
    void groupFrame();
    void withoutBus();
    void oversizedLabel();
    void reattachAndReaddress();

private:
    QByteArray sendOne(const std::function<BusPendingCall()>& send);

    QScopedPointer<VRNLoopbackBus> m_bus;
    QScopedPointer<DTSMotorProxy> m_motor;
};

void tst_DTSProxyRequests::init()
{
    m_bus.reset(new VRNLoopbackBus);
    m_bus->setTimeout(20);
    m_bus->setBroadcastWindow(20);
    QVERIFY(m_bus->open());
    m_motor.reset(new DTSMotorProxy(MotorAddr, m_bus.data()));
}

void tst_DTSProxyRequests::cleanup()
{
    m_motor.reset();
    m_bus.reset();
}

// The one frame written for the request `send` makes.
QByteArray tst_DTSProxyRequests::sendOne(const std::function<BusPendingCall()>& send)
{
    QSignalSpy spy(m_bus.data(), &VRNLoopbackBus::transmitted);
    send();
    if (!spy.wait(200) || spy.count() != 1)
        return QByteArray();
    // The frame as the proxy built it: the bus numbers requests to one node.
    VRNMessage sent{BusMessage(spy.at(0).at(0).toByteArray())};
    if (sent.dstType() == VRN::AddrNode) {
        if (sent.seq() == 0)
            return QByteArray();
        sent.setSeq(0);
        sent.prepare();
    }
    return sent.data();
}

void tst_DTSProxyRequests::unicastFrame_data()
{
    QTest::addColumn<Request>("send");
    QTest::addColumn<int>("cmd");
    QTest::addColumn<QByteArray>("payload");
    for (const RequestRow& row : requestRows())
        QTest::newRow(row.name.constData()) << row.send << int(row.cmd) << row.payload;
}

void tst_DTSProxyRequests::unicastFrame()
{
    QFETCH(Request, send);
    QFETCH(int, cmd);
    QFETCH(QByteArray, payload);

    const QByteArray frame = sendOne([&] { return send(*m_motor); });
    QVERIFY(!frame.isEmpty());
    // command, acknowledgement flag with the length, tool 0:000001, node 123456
    const QByteArray header = bytes({quint8(cmd), quint8(0x80 | (11 + payload.size())), 0, 0, 0, 1})
        + hex("123456");
    QCOMPARE(frame.left(frame.size() - 2).toHex(), (header + payload).toHex());
    QVERIFY(VRNMessage(BusMessage(frame)).isValid());
}

void tst_DTSProxyRequests::pinnedFrames_data()
{
    QTest::addColumn<Request>("send");
    QTest::addColumn<QByteArray>("frame");
    // The worked frames of PROTOCOL.md.
    QTest::newRow("label") << Request([](DTSMotorProxy& p) { return p.getNodeLabel(); })
                           << hex("458B00000001123456B39C");
    QTest::newRow("group slot") << Request([](DTSMotorProxy& p) { return p.setGroupAddr(3, 0x000123); })
                                << hex("528F00000001123456030001230AD1");
    QTest::newRow("reset all statistics") << Request([](DTSMotorProxy& p) { return p.setNetworkStat(2, 0); })
                                          << hex("598D000000011234560200BA42");
    QTest::newRow("stop every motor") << Request([](DTSMotorProxy& p) {
        return DTSGroupProxy(VRN::BroadcastNumber, p.bus()).stopAll();
    }) << hex("010E00000001FFFFFFFFFFFFFB48");
}

void tst_DTSProxyRequests::pinnedFrames()
{
    QFETCH(Request, send);
    QFETCH(QByteArray, frame);
    QCOMPARE(sendOne([&] { return send(*m_motor); }).toHex(' '), frame.toHex(' '));
}

void tst_DTSProxyRequests::pinnedSequenceFrames()
{
    // The sequence number in the high nibble of byte 2, request and reply (PROTOCOL.md).
    VRNMessage move(DTS::CtrlMoveOf, VRN::ToolAddr, 0x123456, VRN::AddrNode, hex("030064FF"));
    move.setAck(true);
    move.setSeq(3);
    QVERIFY(move.prepare());
    QCOMPARE(move.data().toHex(' '), hex("048F300000011234560300 64FFC8B7").toHex(' '));
    VRNMessage ack(DTS::Ack, VRN::makeAddr(VRN::NodeMotor, 0x123456), 1, VRN::AddrNode, hex("04"));
    ack.setSeq(3);
    QVERIFY(ack.prepare());
    QCOMPARE(ack.data().toHex(' '), hex("7F0C3112345600000104 09A1").toHex(' '));
    const VRNMessage decoded{BusMessage(ack.data())};
    QVERIFY(decoded.isValid());
    QCOMPARE(int(decoded.seq()), 3);
    QCOMPARE(decoded.srcAddr(), VRN::makeAddr(VRN::NodeMotor, 0x123456));
}

void tst_DTSProxyRequests::groupFrame_data()
{
    using Send = std::function<BusPendingCall(DTSGroupProxy&)>;
    QTest::addColumn<QVariant>("send");
    QTest::addColumn<QByteArray>("frame");
    auto row = [](const char* name, Send send, const char* frame) {
        QTest::newRow(name) << QVariant::fromValue(Request([send](DTSMotorProxy& m) {
            DTSGroupProxy group(0x000123, m.bus());
            return send(group);
        })) << hex(frame);
    };
    // group flag, no acknowledgement flag, group number as destination
    row("moveTo", [](DTSGroupProxy& g) { return g.moveTo(DTSMotor::MoveToPercent, 50, 0xFF); },
        "034F00000001000123040032FF7AE9");
    row("moveOf", [](DTSGroupProxy& g) { return g.moveOf(DTSMotor::MoveOfPulsesUp, 0x0102, 0xFF); },
        "044F00000001000123030102FFD369");
    row("stop", [](DTSGroupProxy& g) { return g.stop(0xFF); }, "024C00000001000123FF055E");
}

void tst_DTSProxyRequests::groupFrame()
{
    QFETCH(QVariant, send);
    QFETCH(QByteArray, frame);
    const QByteArray sent = sendOne([&] { return send.value<Request>()(*m_motor); });
    const VRNMessage msg{BusMessage(sent)};
    QVERIFY(msg.isValid());
    QCOMPARE(quint8(sent.at(1)) & 0xC0, 0x40);
    QCOMPARE(msg.dstType(), VRN::AddrGroup);
    QCOMPARE(msg.dstAddr(), 0x000123u);
    QCOMPARE(sent.toHex(' '), frame.toHex(' '));
}

void tst_DTSProxyRequests::withoutBus()
{
    DTSMotorProxy detached(MotorAddr);
    QSignalSpy spy(m_bus.data(), &VRNLoopbackBus::transmitted);
    for (const RequestRow& row : requestRows()) {
        const BusPendingCall call = row.send(detached);
        QVERIFY2(call.isFinished(), row.name.constData());
        QVERIFY2(call.error() == BusPendingCall::BusNotAvailableError, row.name.constData());
    }
    DTSGroupProxy group(0x000123);
    QCOMPARE(group.stop(0xFF).error(), BusPendingCall::BusNotAvailableError);
    QCOMPARE(spy.count(), 0);
}

void tst_DTSProxyRequests::oversizedLabel()
{
    QSignalSpy spy(m_bus.data(), &VRNLoopbackBus::transmitted);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^\\[VRNNode\\]: SET_NODE_LABEL"));
    const BusPendingCall call = m_motor->setNodeLabel(QByteArray(17, 'x'));
    QVERIFY(call.isFinished());
    QCOMPARE(call.error(), BusPendingCall::OtherError);
    QTest::qWait(5);
    QCOMPARE(spy.count(), 0);
}

void tst_DTSProxyRequests::reattachAndReaddress()
{
    DTSMotorProxy node;
    QCOMPARE(node.ctrlWink().error(), BusPendingCall::BusNotAvailableError);

    node.attach(m_bus.data());
    node.setAddress(VRN::makeAddr(VRN::NodeDCMotor, 0xABCDEF));
    const VRNMessage sent{BusMessage(sendOne([&] { return node.ctrlWink(); }))};
    QVERIFY(sent.isValid());
    QCOMPARE(sent.dstAddr(), 0xABCDEFu);
    QCOMPARE(sent.dstType(), VRN::AddrNode);
    QVERIFY(sent.ack());

    node.attach(nullptr);
    QCOMPARE(node.ctrlWink().error(), BusPendingCall::BusNotAvailableError);

    // A bus destroyed under a proxy (its pending calls end: tst_bus): later calls fail at once.
    m_bus.reset();
    QCOMPARE(m_motor->ctrlWink().error(), BusPendingCall::BusNotAvailableError);
}

QTEST_MAIN(tst_DTSProxyRequests)
#include "tst_dtsproxyrequests.moc"
