// A simulated node driven with raw request frames: every command of every
// kind, refusals, addressing, discovery and deaf mode, motor behaviour, and
// the replies no task reads parsed by a node proxy.
#include "dts.h"
#include "dtsstdproxy.h"
#include "simclock.h"
#include "simnode.h"
#include "vrndatawriter.h"
#include "vrnmessage.h"

#include <QtTest>

namespace {

constexpr quint32 NodeNumber = 0x00ABCD;
constexpr VRN::Addr KeypadAddr = (VRN::Addr(VRN::NodeKeypad) << 24) | 0x000777u;

QByteArray bytes(std::initializer_list<int> values)
{
    QByteArray out;
    for (int v : values)
        out.append(char(v));
    return out;
}

VRNMessage request(quint8 cmd, const QByteArray& payload = QByteArray(), quint32 dst = NodeNumber,
                   VRN::AddrType type = VRN::AddrNode, VRN::Addr src = VRN::ToolAddr)
{
    VRNMessage m(cmd, src, dst, type, payload);
    m.setAck(type == VRN::AddrNode);
    m.prepare();
    return m;
}

// A payload in range for every request code; the table test below checks
// that it covers the whole command table.
QHash<quint8, QByteArray> validPayloads()
{
    using namespace DTS;
    return {
        {CtrlStop, bytes({0xFF})}, {CtrlMoveTo, bytes({1, 0, 0, 0xFF})},
        {CtrlMoveOf, bytes({3, 0, 0x10, 0xFF})}, {CtrlMove, bytes({0, 5, 0})},
        {CtrlWink, {}}, {GetMotorPosition, {}}, {SetMotorLimits, bytes({1, 0, 0x20, 0})},
        {SetMotorDirection, bytes({1})}, {GetMotorRollingSpeed, {}},
        {SetMotorRollingSpeed, bytes({10, 12, 6})}, {SetMotorIP, bytes({0, 3, 0, 0})},
        {GetMotorSoftStartStop, {}}, {SetMotorSoftStartStop, bytes({2, 0, 50})},
        {SetFactoryDefault, bytes({0x12})}, {GetMotorLimits, {}}, {GetMotorDirection, {}},
        {GetMotorIP, bytes({5})}, {DiagGetTotalMoveCount, {}}, {DiagGetTotalRevCount, {}},
        {DiagGetThermalCount, {}}, {DiagGetObstacleCount, {}}, {DiagGetPowerCount, {}},
        {DiagGetResetCount, {}}, {DiagGetEncoderErrors, {}}, {GetNodeAddr, {}},
        {GetGroupAddr, bytes({3})}, {GetNetworkConfig, {}}, {GetNodeLabel, {}},
        {GetNetworkStat, {}}, {GetNetworkErrorStat, {}}, {GetNodeSerialNumber, {}},
        {ClearDiscovery, {}}, {SetGroupAddr, bytes({2, 0x0F, 0, 1})}, {SetNodeDiscovery, bytes({0})},
        {SetNodeLabel, QByteArray("abc")}, {SetDeafMode, bytes({0xFF, 0xFF, 0xFF, 0, 0, 0})},
        {SetNetworkStat, bytes({2, 0})}, {GetNodeAppVersion, {}},
    };
}

} // namespace

class tst_SimNode : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void everyCommand_data();
    void everyCommand();
    void refusals_data();
    void refusals();
    void addressing();
    void discoveryMark();
    void deafMode();
    void forcedNack();
    void repeatAnsweredWithoutActing();
    void motorMoves();
    void moveTakesItsTime_data();
    void moveTakesItsTime();
    void stopObstacleAndWink();
    void limitsAndPositions();
    void factoryDefault();
    void statistics();
    void lifeCounters_data();
    void lifeCounters();
    void proxyReadsWhatTheNodeHolds();

private:
    // The one frame `node` answers, decoded; invalid when it stays quiet.
    VRNMessage answer(SimNode& node, const VRNMessage& rq);
    VRNMessage ask(const VRNMessage& rq) { return answer(*m_motor, rq); }
    void verifyNack(const VRNMessage& reply, quint8 status, quint8 cmd);

    QScopedPointer<SimNode> m_motor;
};

void tst_SimNode::init()
{
    m_motor.reset(new SimNode(SimNode::DCMotor, NodeNumber));
    m_motor->ownClock()->setScale(0);  // time passes only when a test moves it on
    m_motor->setLimits(100, 1100);
    m_motor->setPosition(100);
}

VRNMessage tst_SimNode::answer(SimNode& node, const VRNMessage& rq)
{
    const QList<QByteArray> out = node.handle(rq);
    if (out.size() > 1)
        qWarning("more than one answer");
    return out.isEmpty() ? VRNMessage() : VRNMessage(BusMessage(out.first()));
}

void tst_SimNode::verifyNack(const VRNMessage& reply, quint8 status, quint8 cmd)
{
    QVERIFY(reply.isValid());
    QCOMPARE(reply.cmd(), quint8(DTS::Nack));
    QCOMPARE(reply.payload(), bytes({status, cmd}));
}

void tst_SimNode::everyCommand_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("cmd");
    const QHash<quint8, QByteArray> payloads = validPayloads();
    const QMetaEnum kinds = QMetaEnum::fromType<SimNode::Kind>();
    for (auto it = DTS::cmds().cbegin(); it != DTS::cmds().cend(); ++it) {
        // The firmware requests only make sense in their order; the firmware tests run them.
        // A request that is never answered (stop every motor) has a test of its own.
        const bool firmware = (it->cmd() >= DTS::FwUpdateBegin && it->cmd() <= DTS::FwUpdateEnd)
            || (it->cmd() >= DTS::BlEnter && it->cmd() <= DTS::BlExit);
        if (!it->isRequest() || firmware || it->reply() == 0)
            continue;
        if (!payloads.contains(it->cmd()))
            QFAIL(qPrintable(QStringLiteral("no test payload for %1").arg(it->name())));
        for (int k = 0; k < kinds.keyCount(); ++k) {
            QTest::addRow("%s %s", kinds.key(k), qPrintable(it->name()))
                << kinds.value(k) << int(it->cmd());
        }
    }
}

// Every kind answers every request it knows with the reply of the table, from
// its own address to the tool, with a payload size the table allows; requests
// it does not know get NACK 0x10.
void tst_SimNode::everyCommand()
{
    QFETCH(int, kind);
    QFETCH(int, cmd);
    const auto k = SimNode::Kind(kind);
    SimNode node(k, NodeNumber);
    node.setLimits(100, 1100);
    node.setPosition(600);
    const VRNCmdInfo info = DTS::cmdInfo(quint8(cmd));
    const VRNMessage reply = answer(node, request(quint8(cmd), validPayloads().value(quint8(cmd))));
    QVERIFY(reply.isValid());
    QCOMPARE(reply.srcAddr(), VRN::makeAddr(SimNode::defaultNodeType(k), NodeNumber));
    QCOMPARE(reply.dstAddr(), VRN::getNumber(VRN::ToolAddr));
    QCOMPARE(reply.dstType(), VRN::AddrNode);
    const bool motorCmd = cmd < DTS::GetNodeAddr;
    const bool dcCmd = cmd == DTS::GetMotorRollingSpeed || cmd == DTS::SetMotorRollingSpeed
        || cmd == DTS::GetMotorSoftStartStop || cmd == DTS::SetMotorSoftStartStop;
    if ((motorCmd && !SimNode::hasMotor(k)) || (dcCmd && !SimNode::isDC(k))) {
        verifyNack(reply, DTS::NackUnknownMessage, quint8(cmd));
        return;
    }
    QCOMPARE(reply.cmd(), info.reply());
    QVERIFY2(DTS::cmdInfo(reply.cmd()).acceptsPayloadSize(reply.payload().size()),
             qPrintable(reply.data().toHex()));
    if (reply.cmd() == DTS::Ack)
        QCOMPARE(reply.payload(), bytes({cmd}));
}

void tst_SimNode::refusals_data()
{
    QTest::addColumn<int>("cmd");
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<int>("status");
    using namespace DTS;
    const int range = NackDataOutOfRange;
    QTest::newRow("unknown code") << 0x07 << QByteArray() << int(NackUnknownMessage);
    QTest::newRow("label too long") << int(SetNodeLabel) << QByteArray(17, 'x') << int(NackMessageLength);
    QTest::newRow("group index missing") << int(GetGroupAddr) << QByteArray() << int(NackMessageLength);
    QTest::newRow("wink with payload") << int(CtrlWink) << bytes({0}) << int(NackMessageLength);
    QTest::newRow("get group 16") << int(GetGroupAddr) << bytes({16}) << range;
    QTest::newRow("set group 16") << int(SetGroupAddr) << bytes({16, 0, 0, 1}) << range;
    QTest::newRow("group broadcast number") << int(SetGroupAddr) << bytes({0, 0xFF, 0xFF, 0xFF}) << range;
    QTest::newRow("discovery mark 2") << int(SetNodeDiscovery) << bytes({2}) << range;
    QTest::newRow("network counters 3") << int(SetNetworkStat) << bytes({3, 0}) << range;
    QTest::newRow("deaf mode 5") << int(SetDeafMode) << bytes({0xFF, 0xFF, 0xFF, 0, 10, 5}) << range;
    QTest::newRow("move-to function 5") << int(CtrlMoveTo) << bytes({5, 0, 0, 0xFF}) << range;
    QTest::newRow("move-to 101 %") << int(CtrlMoveTo) << bytes({4, 0, 101, 0xFF}) << range;
    QTest::newRow("move-to IP 16") << int(CtrlMoveTo) << bytes({2, 0, 16, 0xFF}) << range;
    QTest::newRow("move-to beyond limit") << int(CtrlMoveTo) << bytes({3, 0x04, 0x4D, 0xFF}) << range;
    QTest::newRow("move-to unset IP") << int(CtrlMoveTo) << bytes({2, 0, 7, 0xFF}) << int(NackIpNotDefined);
    QTest::newRow("move-of function 4") << int(CtrlMoveOf) << bytes({4, 0, 0, 0xFF}) << range;
    QTest::newRow("move-of no IP below") << int(CtrlMoveOf) << bytes({1, 0, 0, 0xFF}) << int(NackIpNotDefined);
    QTest::newRow("move direction 2") << int(CtrlMove) << bytes({2, 1, 0}) << range;
    QTest::newRow("move speed 3") << int(CtrlMove) << bytes({0, 1, 3}) << range;
    QTest::newRow("limits function 3") << int(SetMotorLimits) << bytes({3, 0, 0, 0}) << range;
    QTest::newRow("limit 2") << int(SetMotorLimits) << bytes({1, 2, 0, 0}) << range;
    QTest::newRow("limit value unset") << int(SetMotorLimits) << bytes({1, 0, 0xFF, 0xFF}) << range;
    QTest::newRow("limit adjust below 0") << int(SetMotorLimits) << bytes({2, 1, 0xFF, 0x00}) << range;
    QTest::newRow("direction 2") << int(SetMotorDirection) << bytes({2}) << range;
    QTest::newRow("speed 5") << int(SetMotorRollingSpeed) << bytes({5, 10, 10}) << range;
    QTest::newRow("speed 29") << int(SetMotorRollingSpeed) << bytes({10, 10, 29}) << range;
    QTest::newRow("IP function 4") << int(SetMotorIP) << bytes({4, 0, 0, 0}) << range;
    QTest::newRow("IP index 16") << int(SetMotorIP) << bytes({2, 16, 0, 200}) << range;
    QTest::newRow("IP 101 %") << int(SetMotorIP) << bytes({3, 0, 0, 101}) << range;
    QTest::newRow("IP beyond limit") << int(SetMotorIP) << bytes({2, 0, 0x10, 0}) << range;
    QTest::newRow("get IP 16") << int(GetMotorIP) << bytes({16}) << range;
    QTest::newRow("ramp function 3") << int(SetMotorSoftStartStop) << bytes({3, 0, 0}) << range;
    QTest::newRow("ramps 3") << int(SetMotorSoftStartStop) << bytes({0, 3, 0}) << range;
    QTest::newRow("ramp value 101") << int(SetMotorSoftStartStop) << bytes({2, 0, 101}) << range;
    QTest::newRow("factory function 3") << int(SetFactoryDefault) << bytes({3}) << range;
    const QByteArray id(8, '\x01');
    QTest::newRow("update for a motor") << int(FwUpdateBegin) << bytes({1, 0, 0, 1, 0, 16, 2, 0, 0, 0, 0}) + id
                                        << int(NackWrongKind);
    QTest::newRow("update block size 17") << int(FwUpdateBegin) << bytes({9, 0, 0, 1, 0, 17, 2, 0, 0, 0, 0}) + id << range;
    QTest::newRow("block before begin") << int(FwUpdateBlock) << bytes({0, 0, 0xAA, 0, 0}) << int(NackNotUpdating);
    QTest::newRow("end before begin") << int(FwUpdateEnd) << QByteArray(16, '\0') << int(NackNotUpdating);
    QTest::newRow("bootloader erase in application") << int(BlErase) << QByteArray(9, '\1') << int(NackUnknownMessage);
}

// A refused request changes nothing; the NACK names the status and the command.
void tst_SimNode::refusals()
{
    QFETCH(int, cmd);
    QFETCH(QByteArray, payload);
    QFETCH(int, status);
    const quint16 up = m_motor->upLimit();
    const quint16 position = m_motor->position();
    const auto speed = m_motor->rollingSpeed();
    verifyNack(ask(request(quint8(cmd), payload)), quint8(status), quint8(cmd));
    QCOMPARE(m_motor->upLimit(), up);
    QCOMPARE(m_motor->position(), position);
    QCOMPARE(m_motor->rollingSpeed().up, speed.up);
    QCOMPARE(m_motor->groups().count(0u), int(SimNode::GroupSlots));
}

// Nodes answer their own number, broadcasts and their groups; never with an
// ACK or NACK to a broadcast or group; replies of other nodes are ignored.
void tst_SimNode::addressing()
{
    m_motor->setGroup(4, 0x0F0003);
    QVERIFY(!ask(request(DTS::GetNodeLabel, {}, NodeNumber + 1)).isValid());
    QVERIFY(!ask(request(DTS::GetNodeLabel, {}, 0x0F0004, VRN::AddrGroup)).isValid());
    QVERIFY(!ask(request(DTS::GetNodeLabel, {}, 0, VRN::AddrGroup)).isValid());

    const VRNMessage viaGroup = ask(request(DTS::GetNodeLabel, {}, 0x0F0003, VRN::AddrGroup));
    QCOMPARE(viaGroup.cmd(), quint8(DTS::PostNodeLabel));
    QCOMPARE(ask(request(DTS::GetNodeAddr, {}, 0, VRN::AddrBroadcast)).cmd(), quint8(DTS::PostNodeAddr));

    QVERIFY(!ask(request(DTS::SetNodeLabel, "group", 0x0F0003, VRN::AddrGroup)).isValid());
    QCOMPARE(m_motor->label(), QByteArray("group"));
    QVERIFY(!ask(request(DTS::SetNodeLabel, "all", 0, VRN::AddrBroadcast)).isValid());
    QCOMPARE(m_motor->label(), QByteArray("all"));
    QVERIFY(!ask(request(DTS::SetNodeDiscovery, bytes({9}), 0, VRN::AddrBroadcast)).isValid());
    QVERIFY(!ask(request(0x01, {}, 0, VRN::AddrBroadcast)).isValid());

    QVERIFY(!ask(request(DTS::Ack, bytes({DTS::CtrlWink}))).isValid());
    QVERIFY(!ask(request(DTS::PostNodeLabel, "x")).isValid());
}

// The discovery mark silences 0x40 (broadcast and unicast) until cleared,
// and the broadcast clear gets no acknowledgement.
void tst_SimNode::discoveryMark()
{
    const VRNMessage who = request(DTS::GetNodeAddr, {}, 0, VRN::AddrBroadcast);
    const VRNMessage found = ask(who);
    QCOMPARE(found.cmd(), quint8(DTS::PostNodeAddr));
    QCOMPARE(found.srcAddr(), m_motor->address());
    QVERIFY(found.payload().isEmpty());

    QCOMPARE(ask(request(DTS::SetNodeDiscovery, bytes({1}))).cmd(), quint8(DTS::Ack));
    QVERIFY(m_motor->discoveryMark());
    QVERIFY(!ask(who).isValid());
    QVERIFY(!ask(request(DTS::GetNodeAddr)).isValid());
    QCOMPARE(ask(request(DTS::GetNodeLabel)).cmd(), quint8(DTS::PostNodeLabel));

    QVERIFY(!ask(request(DTS::ClearDiscovery, {}, 0, VRN::AddrBroadcast)).isValid());
    QVERIFY(!m_motor->discoveryMark());
    QCOMPARE(ask(who).cmd(), quint8(DTS::PostNodeAddr));

    m_motor->setDiscoveryMark(true);
    QCOMPARE(ask(request(DTS::ClearDiscovery)).cmd(), quint8(DTS::Ack));
    QCOMPARE(ask(request(DTS::SetNodeDiscovery, bytes({0}))).cmd(), quint8(DTS::Ack));
    QCOMPARE(ask(who).cmd(), quint8(DTS::PostNodeAddr));
}

// A deaf node ignores other devices but still answers configuration tools;
// the deaf time runs out, a request for another node number leaves it alone.
void tst_SimNode::deafMode()
{
    const VRNMessage fromKeypad = request(DTS::CtrlMoveTo, bytes({0, 0, 0, 0xFF}), NodeNumber,
                                          VRN::AddrNode, KeypadAddr);
    QCOMPARE(ask(fromKeypad).cmd(), quint8(DTS::Ack));

    QVERIFY(!ask(request(DTS::SetDeafMode, bytes({0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}), 0,
                         VRN::AddrBroadcast)).isValid());
    QVERIFY(m_motor->isDeaf());
    QVERIFY(!ask(fromKeypad).isValid());
    QCOMPARE(ask(request(DTS::GetNodeAddr, {}, 0, VRN::AddrBroadcast)).cmd(), quint8(DTS::PostNodeAddr));
    const VRNMessage fromSettingTool = request(DTS::GetNodeLabel, {}, NodeNumber, VRN::AddrNode,
                                               VRN::makeAddr(VRN::NodeSettingTool, 5));
    QCOMPARE(ask(fromSettingTool).cmd(), quint8(DTS::PostNodeLabel));

    // Duration 0 ends it.
    QCOMPARE(ask(request(DTS::SetDeafMode, bytes({0xFF, 0xFF, 0xFF, 0, 0, 0xFF}))).cmd(), quint8(DTS::Ack));
    QVERIFY(!m_motor->isDeaf());

    // Aimed at another node: acknowledged by the addressee only, no effect here.
    QCOMPARE(ask(request(DTS::SetDeafMode, bytes({0x00, 0x00, 0x42, 0xFF, 0xFF, 0xFF}))).cmd(),
             quint8(DTS::Ack));
    QVERIFY(!m_motor->isDeaf());

    // 2 x 10 ms.
    QCOMPARE(ask(request(DTS::SetDeafMode, bytes({0x00, 0xAB, 0xCD, 0, 2, 0xFF}))).cmd(), quint8(DTS::Ack));
    QVERIFY(!ask(fromKeypad).isValid());
    QTRY_VERIFY_WITH_TIMEOUT(!m_motor->isDeaf(), 500);
    QCOMPARE(ask(fromKeypad).cmd(), quint8(DTS::Ack));
}

// (A silent node is every timeout of the task and discovery tests.)
void tst_SimNode::forcedNack()
{
    m_motor->setForcedNack(DTS::NackBusy, 2);
    verifyNack(ask(request(DTS::GetNodeLabel)), DTS::NackBusy, DTS::GetNodeLabel);
    // Broadcasts are not refused and do not use up the forced answers.
    QCOMPARE(ask(request(DTS::GetNodeAddr, {}, 0, VRN::AddrBroadcast)).cmd(), quint8(DTS::PostNodeAddr));
    verifyNack(ask(request(DTS::SetNodeLabel, "x")), DTS::NackBusy, DTS::SetNodeLabel);
    QVERIFY(m_motor->label() != "x");
    QCOMPARE(ask(request(DTS::GetNodeLabel)).cmd(), quint8(DTS::PostNodeLabel));
    QCOMPARE(m_motor->forcedNack(), quint8(0));

    m_motor->setForcedNack(DTS::NackNodeLocked, -1);
    for (int i = 0; i < 3; ++i)
        verifyNack(ask(request(DTS::CtrlWink)), DTS::NackNodeLocked, DTS::CtrlWink);
    m_motor->setForcedNack(0);
    QCOMPARE(ask(request(DTS::CtrlWink)).cmd(), quint8(DTS::Ack));
}

// A request sent again with its sequence number gets the first answer and is
// not carried out twice; a new number, another tool or a long pause is a new request.
void tst_SimNode::repeatAnsweredWithoutActing()
{
    const auto arrive = [this] { m_motor->ownClock()->advance(60 * 1000000); };
    auto numbered = [](VRNMessage m, quint8 seq, VRN::Addr src = VRN::ToolAddr) {
        m.setSrcAddr(src);
        m.setSeq(seq);
        m.prepare();
        return m;
    };
    m_motor->setPosition(100);
    const VRNMessage moveBy = numbered(request(DTS::CtrlMoveOf, bytes({2, 0, 50, 0xFF})), 5);
    const VRNMessage first = ask(moveBy);
    QCOMPARE(first.cmd(), quint8(DTS::Ack));
    QCOMPARE(int(first.seq()), 5);
    m_motor->ownClock()->advance(2 * 1000000);  // within the repeat window
    QCOMPARE(ask(moveBy).data(), first.data());
    QCOMPARE(ask(moveBy).data(), first.data());
    arrive();
    QCOMPARE(m_motor->position(), quint16(150));
    QCOMPARE(m_motor->repeatsAnswered(), quint64(2));

    QCOMPARE(ask(numbered(request(DTS::CtrlMoveOf, bytes({2, 0, 50, 0xFF})), 6)).cmd(), quint8(DTS::Ack));
    arrive();
    QCOMPARE(m_motor->position(), quint16(200));
    // Another tool with the same number: its own request.
    QCOMPARE(ask(numbered(request(DTS::CtrlMoveOf, bytes({2, 0, 50, 0xFF})), 6, VRN::makeAddr(VRN::NodeTool, 0xFE0042))).cmd(),
             quint8(DTS::Ack));
    arrive();
    QCOMPARE(m_motor->position(), quint16(250));
    // Long after, the same frame again is a new request; without a number, always.
    m_motor->ownClock()->advance(qint64(SimNode::RepeatWindowMs) * 1000 + 1);
    QCOMPARE(ask(numbered(request(DTS::CtrlMoveOf, bytes({2, 0, 50, 0xFF})), 6)).cmd(), quint8(DTS::Ack));
    arrive();
    for (int i = 0; i < 2; ++i) {
        QCOMPARE(ask(request(DTS::CtrlMoveOf, bytes({2, 0, 50, 0xFF}))).cmd(), quint8(DTS::Ack));
        arrive();
    }
    QCOMPARE(m_motor->position(), quint16(400));
    QCOMPARE(m_motor->repeatsAnswered(), quint64(2));
}

// Moves land on their target once their time has passed and count in the
// life counters; the position report gives pulses, percent and the IP the
// motor stands on.
void tst_SimNode::motorMoves()
{
    const auto arrive = [this] { m_motor->ownClock()->advance(60 * 1000000); };
    const quint32 movesBefore = m_motor->diagnostics().totalMoveCount;
    QCOMPARE(ask(request(DTS::CtrlMoveTo, bytes({4, 0, 50, 0xFF}))).cmd(), quint8(DTS::Ack));
    arrive();
    QCOMPARE(m_motor->position(), quint16(600));
    QCOMPARE(ask(request(DTS::GetMotorPosition)).payload(), bytes({0x02, 0x58, 50, 0xFF, 0xFF}));

    QCOMPARE(ask(request(DTS::SetMotorIP, bytes({3, 2, 0, 25}))).cmd(), quint8(DTS::Ack));
    QCOMPARE(ask(request(DTS::SetMotorIP, bytes({2, 9, 0x03, 0x20}))).cmd(), quint8(DTS::Ack));
    QCOMPARE(ask(request(DTS::GetMotorIP, bytes({9}))).payload(), bytes({9, 0x03, 0x20, 70}));
    QCOMPARE(ask(request(DTS::GetMotorIP, bytes({0}))).payload(), bytes({0, 0xFF, 0xFF, 0xFF}));

    // Down is towards the down limit (more pulses here).
    QCOMPARE(ask(request(DTS::CtrlMoveOf, bytes({0, 0, 0, 0xFF}))).cmd(), quint8(DTS::Ack));
    arrive();
    QCOMPARE(m_motor->position(), quint16(800));
    QCOMPARE(ask(request(DTS::GetMotorPosition)).payload().at(4), char(9));
    QCOMPARE(ask(request(DTS::CtrlMoveOf, bytes({1, 0, 0, 0xFF}))).cmd(), quint8(DTS::Ack));
    arrive();
    QCOMPARE(m_motor->position(), quint16(350));
    QCOMPARE(ask(request(DTS::CtrlMoveTo, bytes({2, 0, 9, 0xFF}))).cmd(), quint8(DTS::Ack));
    arrive();
    QCOMPARE(m_motor->position(), quint16(800));

    QCOMPARE(ask(request(DTS::CtrlMoveOf, bytes({2, 0x27, 0x10, 0xFF}))).cmd(), quint8(DTS::Ack));
    arrive();
    QCOMPARE(m_motor->position(), quint16(1100));  // stops at the limit
    QCOMPARE(ask(request(DTS::CtrlMove, bytes({1, 3, 2}))).cmd(), quint8(DTS::Ack));
    arrive();
    QCOMPARE(m_motor->position(), quint16(1088));  // 30 ms at the slow speed 8: 400 pulses a second
    QCOMPARE(ask(request(DTS::CtrlMoveTo, bytes({1, 0, 0, 0xFF}))).cmd(), quint8(DTS::Ack));
    arrive();
    QCOMPARE(m_motor->position(), quint16(100));
    QCOMPARE(m_motor->diagnostics().totalMoveCount, movesBefore + 7);

    // Reversed limits: percent still runs from the up limit to the down limit.
    m_motor->setLimits(1000, 0);
    QCOMPARE(ask(request(DTS::CtrlMoveTo, bytes({4, 0, 25, 0xFF}))).cmd(), quint8(DTS::Ack));
    arrive();
    QCOMPARE(m_motor->position(), quint16(750));
    QCOMPARE(ask(request(DTS::CtrlMove, bytes({0, 5, 0}))).cmd(), quint8(DTS::Ack));
    arrive();
    QCOMPARE(m_motor->position(), quint16(700));
}

void tst_SimNode::moveTakesItsTime_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<bool>("ramps");
    QTest::addColumn<int>("durationMs");
    QTest::addColumn<int>("at150ms"); // pulses from the start

    QTest::newRow("motor, 1000 pulses a second") << int(SimNode::Motor) << false << 1000 << 150;
    QTest::newRow("DC motor at speed 20") << int(SimNode::DCMotor) << false << 1000 << 150;
    // Soft start and stop of 0.3 s each: v t^2 / 2Ta = 1000 * 0.0225 / 0.6.
    QTest::newRow("DC motor with ramps") << int(SimNode::DCMotor) << true << 1300 << 38;
}

// A move runs in the node's time: the position report follows it, and the
// move ends (and counts its revolutions) when its time has passed.
void tst_SimNode::moveTakesItsTime()
{
    QFETCH(int, kind);
    QFETCH(bool, ramps);
    QFETCH(int, durationMs);
    QFETCH(int, at150ms);

    SimNode node(SimNode::Kind(kind), NodeNumber);
    SimClock* clock = node.ownClock();
    clock->setScale(0);
    node.setLimits(100, 1100);
    node.setPosition(100);
    node.setSoftStartStop({ramps, 30, ramps, 30});
    const quint32 revs = node.diagnostics().totalRevCount;
    QCOMPARE(answer(node, request(DTS::CtrlMoveTo, bytes({0, 0, 0, 0xFF}))).cmd(), quint8(DTS::Ack));
    QVERIFY(node.isMoving());
    QCOMPARE(node.moveTarget(), quint16(1100));

    clock->advance(150000);
    QCOMPARE(int(node.position()), 100 + at150ms);
    const QByteArray report = answer(node, request(DTS::GetMotorPosition)).payload();
    QCOMPARE(VRNDataReader(report).readUint16(), quint16(100 + at150ms));
    clock->advance((durationMs - 200) * 1000);
    QVERIFY(node.position() < 1100);
    clock->advance(49000);
    QVERIFY(node.isMoving());
    clock->advance(1000);
    QVERIFY(!node.isMoving());
    QCOMPARE(node.position(), quint16(1100));
    QCOMPARE(node.diagnostics().totalRevCount, revs + 10);
}

void tst_SimNode::stopObstacleAndWink()
{
    SimClock* clock = m_motor->ownClock();
    m_motor->setSoftStartStop({false, 0, false, 0});
    QCOMPARE(ask(request(DTS::CtrlMoveTo, bytes({0, 0, 0, 0xFF}))).cmd(), quint8(DTS::Ack));
    clock->advance(400000);
    QCOMPARE(ask(request(DTS::CtrlStop, bytes({0xFF}))).cmd(), quint8(DTS::Ack));
    clock->advance(400000);
    QCOMPARE(m_motor->position(), quint16(500));
    QVERIFY(!m_motor->isMoving());

    // The obstacle at 800 ends the next move there, early, and is counted.
    const SimNode::Diagnostics before = m_motor->diagnostics();
    m_motor->setObstacle(800);
    QCOMPARE(ask(request(DTS::CtrlMoveTo, bytes({0, 0, 0, 0xFF}))).cmd(), quint8(DTS::Ack));
    QCOMPARE(m_motor->moveTarget(), quint16(800));
    clock->advance(300000);
    QVERIFY(!m_motor->isMoving());
    QCOMPARE(m_motor->position(), quint16(800));
    const SimNode::Diagnostics after = m_motor->diagnostics();
    QCOMPARE(after.obstacleCount, quint16(before.obstacleCount + 1));
    QCOMPARE(after.postObstacleMove, quint16(0));
    QCOMPARE(after.totalMoveCount, before.totalMoveCount + 1);

    QVERIFY(!m_motor->isWinking());
    QCOMPARE(ask(request(DTS::CtrlWink)).cmd(), quint8(DTS::Ack));
    QVERIFY(m_motor->isWinking());
    clock->advance(2000000);
    QVERIFY(!m_motor->isWinking());
    QCOMPARE(m_motor->winkCount(), 1u);
}

// (A limit set at the position: tst_motortasks' end limit table.)
void tst_SimNode::limitsAndPositions()
{
    // Without limits a motor refuses moves and positions that need them.
    m_motor->setLimits(SimNode::Unset16, SimNode::Unset16);
    verifyNack(ask(request(DTS::CtrlMoveTo, bytes({4, 0, 10, 0xFF}))), DTS::NackEndLimitsNotSet, DTS::CtrlMoveTo);
    verifyNack(ask(request(DTS::CtrlMove, bytes({0, 1, 0}))), DTS::NackEndLimitsNotSet, DTS::CtrlMove);
    verifyNack(ask(request(DTS::SetMotorIP, bytes({1, 0, 0, 0}))), DTS::NackEndLimitsNotSet, DTS::SetMotorIP);
    verifyNack(ask(request(DTS::SetMotorLimits, bytes({2, 0, 0, 5}))), DTS::NackEndLimitsNotSet,
               DTS::SetMotorLimits);
    QCOMPARE(ask(request(DTS::GetMotorPosition)).payload().at(2), char(0xFF));
    QCOMPARE(ask(request(DTS::SetMotorIP, bytes({0, 0, 0, 0}))).cmd(), quint8(DTS::Ack));
}

void tst_SimNode::factoryDefault()
{
    m_motor->setGroup(0, 0x0F0001);
    m_motor->setLabel("Hall");
    m_motor->setIp(3, 700);
    m_motor->setDirection(1);
    m_motor->setRollingSpeed({7, 7, 7});

    QCOMPARE(ask(request(DTS::SetFactoryDefault, bytes({0x15}))).cmd(), quint8(DTS::Ack));
    QVERIFY(!m_motor->ip(3).isSet());
    QCOMPARE(m_motor->label(), QByteArray("Hall"));
    QVERIFY(m_motor->limitsSet());

    QCOMPARE(ask(request(DTS::SetFactoryDefault, bytes({0x00}))).cmd(), quint8(DTS::Ack));
    QCOMPARE(m_motor->group(0), 0u);
    QCOMPARE(m_motor->label(), QByteArray());
    QVERIFY(!m_motor->limitsSet());
    QCOMPARE(m_motor->direction(), quint8(0));
    QVERIFY(m_motor->rollingSpeed().up != 7);
}

// Network counters follow the traffic (their reset: tst_diagtasks, per request value).
void tst_SimNode::statistics()
{
    SimNode node(SimNode::Std, NodeNumber);
    answer(node, request(DTS::GetNodeLabel));
    answer(node, request(DTS::GetNodeLabel, {}, 0x4242));
    answer(node, request(0x07));
    answer(node, request(DTS::GetGroupAddr));
    node.countInvalidFrame();
    const VRNMessage stat = answer(node, request(DTS::GetNetworkStat));
    // Three answers sent before this one; five valid frames seen (this one
    // too), four of them addressed to the node.
    QCOMPARE(stat.payload().mid(1, 12), bytes({0, 0, 0, 3, 0, 0, 0, 5, 0, 0, 0, 4}));
    const VRNMessage errors = answer(node, request(DTS::GetNetworkErrorStat));
    QCOMPARE(errors.payload(), bytes({0, 0, 0, 0, 0, 0, 0, 1, 0, 1, 0, 0, 0, 0, 0, 1, 0, 0}));
}

void tst_SimNode::lifeCounters_data()
{
    QTest::addColumn<int>("moves");
    QTest::addColumn<int>("gapMs");        // simulated time between move starts
    QTest::addColumn<int>("encoderEvery");
    QTest::addColumn<int>("thermal");
    QTest::addColumn<int>("postThermal");
    QTest::addColumn<int>("encoder");
    QTest::addColumn<int>("powerCycles");
    QTest::addColumn<int>("restarts");

    QTest::newRow("nine quick moves") << 9 << 100 << 0 << 0 << 9 << 0 << 0 << 0;
    QTest::newRow("ten quick moves trip") << 10 << 100 << 0 << 1 << 0 << 0 << 0 << 0;
    QTest::newRow("twenty-three quick moves") << 23 << 100 << 0 << 2 << 3 << 0 << 0 << 0;
    QTest::newRow("ten slow moves") << 10 << 7000 << 0 << 0 << 10 << 0 << 0 << 0;
    QTest::newRow("encoder every 4th") << 9 << 7000 << 4 << 0 << 9 << 2 << 0 << 0;
    QTest::newRow("power and restarts") << 2 << 7000 << 0 << 0 << 2 << 0 << 3 << 2;
}

void tst_SimNode::lifeCounters()
{
    QFETCH(int, moves);
    QFETCH(int, gapMs);
    QFETCH(int, encoderEvery);
    QFETCH(int, thermal);
    QFETCH(int, postThermal);
    QFETCH(int, encoder);
    QFETCH(int, powerCycles);
    QFETCH(int, restarts);

    m_motor->setDiagnostics({});
    m_motor->setEncoderFault(encoderEvery);
    for (int i = 0; i < moves; ++i) {
        const quint8 limit = i % 2 ? 1 : 0;  // down, up, down...
        QCOMPARE(ask(request(DTS::CtrlMoveTo, bytes({limit, 0, 0, 0xFF}))).cmd(), quint8(DTS::Ack));
        m_motor->ownClock()->advance(qint64(gapMs) * 1000);
    }
    for (int i = 0; i < powerCycles; ++i)
        m_motor->powerCycle();
    for (int i = 0; i < restarts; ++i)
        m_motor->restart();

    // What the motor tells is what it counted.
    const SimNode::Diagnostics c = m_motor->diagnostics();
    QCOMPARE(int(c.totalMoveCount), moves);
    QCOMPARE(int(c.thermalCount), thermal);
    QCOMPARE(int(c.postThermalMove), postThermal);
    QCOMPARE(int(c.encoderErrCount), encoder);
    QCOMPARE(int(c.powerCount), powerCycles);
    QCOMPARE(int(c.resetCount), restarts);
    QCOMPARE(ask(request(DTS::DiagGetThermalCount)).payload(),
             bytes({0, thermal, 0, postThermal}));
}

// What the node holds reaches a proxy's parser whole, for the replies no
// task reads (the others meet the simulated nodes in tests/tasks).
void tst_SimNode::proxyReadsWhatTheNodeHolds()
{
    const DTSStdProxy proxy(m_motor->address());
    const auto read = [this](quint8 cmd) { return BusMessage(ask(request(cmd)).data()); };

    QCOMPARE(ask(request(DTS::SetNodeLabel, QByteArray())).cmd(), quint8(DTS::Ack));
    QByteArray label;
    QVERIFY(proxy.getNodeLabelReply(read(DTS::GetNodeLabel), label));
    QVERIFY(label.isEmpty() && !label.isNull()); // a nameless node is not an unknown label

    m_motor->setNetworkConfig({1, 2, 3, 4});
    DTSStdProxy::NetworkConfig config;
    QVERIFY(proxy.getNetworkConfigReply(read(DTS::GetNetworkConfig), config));
    QCOMPARE(QVector<int>({config.brPriority, config.lpPriority, config.maxRetry, config.slotCount}),
             QVector<int>({1, 2, 3, 4}));

    m_motor->setSerialNumber("SN-000123456");
    QByteArray serial;
    QVERIFY(proxy.getNodeSerialNumberReply(read(DTS::GetNodeSerialNumber), serial));
    QCOMPARE(serial, QByteArray("SN-000123456"));

    m_motor->setNetworkStat({2, 100000, 0xFFFFFFF0, 70000, 513, 9, 1});
    DTSStdProxy::NetworkStat s;
    QVERIFY(proxy.getNetworkStatReply(read(DTS::GetNetworkStat), s));
    // The node counts the request before it answers.
    QCOMPARE(QVector<quint32>({s.maxRetryCount, s.frameSent, s.frameSeen, s.frameReceived, s.busyCount, s.maxSlot,
                               s.supervisionFailure}),
             QVector<quint32>({2, 100000, 0xFFFFFFF1, 70001, 513, 9, 1}));

    m_motor->setNetworkErrorStat({1, 2, 3, 4, 5, 6, 7, 8, 65535});
    DTSStdProxy::NetworkErrorStat e;
    QVERIFY(proxy.getNetworkErrorStatReply(read(DTS::GetNetworkErrorStat), e));
    QCOMPARE(QVector<int>({e.txFailures, e.collisions, e.rxDataError, e.unknownMessage, e.msgLengthError, e.rxFifoFull,
                           e.txFifoFull, e.crcError, e.bundleSizeError}),
             QVector<int>({1, 2, 3, 4, 5, 6, 7, 8, 65535}));
}

QTEST_MAIN(tst_SimNode)
#include "tst_simnode.moc"
