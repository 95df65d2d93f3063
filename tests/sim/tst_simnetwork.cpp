// The virtual network: device lists, seeding, duplicates, answer timing and
// faults, line time, the frame cutter of the pty link, and what it attaches to.
// A node's own answers (discovery marks, deaf mode, broadcast writes) are
// tst_simnode's; a whole discovery round on the network is tst_busdiscovertask's.
#include "dts.h"
#include "vrnframecutter.h"
#include "simnetwork.h"
#include "vrnmessage.h"

#include <QtTest>

namespace {

QByteArray frame(quint8 cmd, quint32 dst, VRN::AddrType type = VRN::AddrNode,
                 const QByteArray& payload = QByteArray())
{
    VRNMessage m(cmd, VRN::ToolAddr, dst, type, payload);
    m.setAck(type == VRN::AddrNode);
    m.prepare();
    return m.data();
}

QByteArray broadcast(quint8 cmd) { return frame(cmd, VRN::BroadcastNumber, VRN::AddrBroadcast); }

} // namespace

class tst_SimNetwork : public QObject
{
    Q_OBJECT

private slots:
    void deviceLists_data();
    void deviceLists();
    void sameSeedSameNetwork();
    void duplicates();
    void broadcastAnswersSpread();
    void faultStatistics();
    void lineTime();
    void silentNodes();
    void stopAllOneFrame();
    void attachRefusesOtherObjects();
    void splitter_data();
    void splitter();
};

void tst_SimNetwork::deviceLists_data()
{
    QTest::addColumn<QString>("list");
    QTest::addColumn<int>("count");  // -1: refused
    QTest::newRow("all kinds") << "std:2,motor:3,dcmotor:1,lru50:1,tx50dc:1,tx30:1,settingtool:1" << 10;
    QTest::newRow("spaces, case, zero") << " Motor:2 , std:0," << 2;
    QTest::newRow("empty") << "" << 0;
    QTest::newRow("unknown kind") << "std:1,blind:2" << -1;
    QTest::newRow("no count") << "motor" << -1;
    QTest::newRow("negative") << "motor:-1" << -1;
    QTest::newRow("not a number") << "motor:x" << -1;
    QTest::newRow("extra field") << "motor:1:2" << -1;
    QTest::newRow("too many") << "std:600000,motor:600000" << -1;
}

// A refused list adds nothing, not even its valid first part.
void tst_SimNetwork::deviceLists()
{
    QFETCH(QString, list);
    QFETCH(int, count);
    SimNetwork net(1);
    QString error;
    QCOMPARE(net.addDevices(list, &error), count >= 0);
    QCOMPARE(error.isEmpty(), count >= 0);
    QCOMPARE(net.nodes().size(), qMax(count, 0));
}

// Same seed, same network; node numbers are unique and never the tool's.
void tst_SimNetwork::sameSeedSameNetwork()
{
    auto describe = [](quint32 seed) {
        SimNetwork net(seed);
        net.addDevices(QStringLiteral("std:4,motor:5,dcmotor:3"));
        QStringList out;
        for (const SimNode* n : net.nodes()) {
            out << QStringLiteral("%1 %2 %3 %4 %5 %6")
                       .arg(n->address(), 0, 16).arg(QString::fromUtf8(n->label()))
                       .arg(QString::fromLatin1(n->serialNumber())).arg(n->group(0))
                       .arg(n->downLimit()).arg(n->ip(0).pulse);
        }
        return out;
    };
    const QStringList first = describe(5);
    QCOMPARE(describe(5), first);
    QVERIFY(describe(6) != first);

    SimNetwork net(5);
    net.addDevices(QStringLiteral("std:3,motor:8"));
    QSet<quint32> numbers;
    QSet<int> stdTypes;
    for (const SimNode* n : net.nodes()) {
        numbers.insert(n->number());
        QVERIFY(n->number() != VRN::getNumber(VRN::ToolAddr));
        if (n->kind() == SimNode::Std)
            stdTypes.insert(n->nodeType());
        else
            QVERIFY(n->limitsSet());
    }
    QCOMPARE(numbers.size(), 11);
    QCOMPARE(stdTypes, (QSet<int>{VRN::NodeKeypad, VRN::NodeSensor, VRN::NodeInterface}));
    QCOMPARE(net.nodes().at(4)->label(), QByteArray("Motor 2"));
    QVERIFY(!net.addNode(SimNode::Motor, VRN::getNumber(VRN::ToolAddr)));
    QVERIFY(!net.addNode(SimNode::Motor, VRN::BroadcastNumber));
}

// Duplicates share a number with a node already present, and a request to
// that number gets one answer from each of them.
void tst_SimNetwork::duplicates()
{
    SimNetwork net(3);
    net.addDevices(QStringLiteral("motor:4"));
    QCOMPARE(net.addDuplicates(3), 3);
    QHash<quint32, int> uses;
    for (const SimNode* n : net.nodes())
        ++uses[n->number()];
    int shared = 0;
    for (int u : qAsConst(uses))
        shared += u - 1;
    QCOMPARE(shared, 3);
    QCOMPARE(uses.size() + shared, 7);

    const quint32 twin = std::max_element(uses.begin(), uses.end()).key();
    QSignalSpy out(&net, &SimNetwork::frameOut);
    net.frameIn(frame(DTS::GetNodeLabel, twin));
    QTRY_COMPARE_WITH_TIMEOUT(out.count(), uses.value(twin), 500);
    // node() and the first answer both belong to the node added first.
    const SimNode* first = *std::find_if(net.nodes().cbegin(), net.nodes().cend(),
                                         [twin](const SimNode* n) { return n->number() == twin; });
    QCOMPARE(net.node(twin), first);
    QCOMPARE(VRNMessage(BusMessage(out.first().first().toByteArray())).payload(), first->label());
    QCOMPARE(SimNetwork(1).addDuplicates(2), 0);
}

// Answers never leave from within frameIn(); broadcast answers arrive within
// the reply window, one from each node.
void tst_SimNetwork::broadcastAnswersSpread()
{
    SimNetwork net(11);
    net.setReplyWindow(20);
    net.addDevices(QStringLiteral("std:5,motor:10,dcmotor:5"));
    QSignalSpy out(&net, &SimNetwork::frameOut);
    net.frameIn(broadcast(DTS::GetNodeAddr));
    QCOMPARE(out.count(), 0);
    QVERIFY(net.isBusy());
    QTRY_COMPARE_WITH_TIMEOUT(out.count(), 20, 1000);
    QSet<VRN::Addr> sources;
    for (const QList<QVariant>& args : qAsConst(out)) {
        const VRNMessage m{BusMessage(args.first().toByteArray())};
        QVERIFY(m.isValid());
        QCOMPARE(m.cmd(), quint8(DTS::PostNodeAddr));
        sources.insert(m.srcAddr());
    }
    QCOMPARE(sources.size(), 20);
    QVERIFY(!net.isBusy());
}


// Loss and damage follow the seed: the same run gives the same counts, the
// counts add up, and every damaged frame fails its checksum.
void tst_SimNetwork::faultStatistics()
{
    struct Run { quint64 in, out, lost, corrupted; int bad; };
    auto run = [](quint32 seed) {
        SimNetwork net(seed);
        net.addDevices(QStringLiteral("motor:4"));
        net.setLoss(0.2);
        net.setCorrupt(0.25);
        QSignalSpy out(&net, &SimNetwork::frameOut);
        const quint32 number = net.nodes().first()->number();
        for (int i = 0; i < 400; ++i)
            net.frameIn(frame(DTS::GetNodeLabel, number));
        const bool drained = QTest::qWaitFor([&net] { return !net.isBusy(); }, 1000);
        int bad = drained ? 0 : -1;
        for (const QList<QVariant>& args : qAsConst(out))
            bad += VRNMessage(BusMessage(args.first().toByteArray())).isValid() ? 0 : 1;
        return Run{net.framesIn(), net.framesOut(), net.framesLost(), net.framesCorrupted(), bad};
    };
    const Run a = run(9);
    QCOMPARE(a.in, quint64(400));
    // 400 requests: lost on the way in, lost on the way out, or answered.
    QCOMPARE(a.out + a.lost, quint64(400));
    QVERIFY(a.lost > 80 && a.lost < 220);  // ~0.2 + 0.8 * 0.2 of 400
    QCOMPARE(quint64(a.bad), a.corrupted);
    QVERIFY(a.corrupted > 30 && a.corrupted < 130);
    const Run b = run(9);
    QCOMPARE(b.lost, a.lost);
    QCOMPARE(b.corrupted, a.corrupted);
}

// 11 bits per byte on the wire, in and out.
void tst_SimNetwork::lineTime()
{
    SimNetwork net(1);
    SimNode* node = net.addNode(SimNode::Std);
    node->setLabel("12345");
    QSignalSpy out(&net, &SimNetwork::frameOut);
    net.frameIn(frame(DTS::GetNodeLabel, node->number()));
    QTRY_COMPARE_WITH_TIMEOUT(out.count(), 1, 500);
    QCOMPARE(net.bytesIn(), quint64(11));
    QCOMPARE(net.bytesOut(), quint64(16));
    QCOMPARE(net.lineTimeUs(9600), qint64(27 * 11 * 1000000LL / 9600));
    QCOMPARE(net.lineTimeUs(), qint64(27 * 11 * 1000000LL / 4800));
    net.setBaud(19200);
    QCOMPARE(net.lineTimeUs(), qint64(27 * 11 * 1000000LL / 19200));

    // On a timed line the answers of a broadcast still all arrive, in turn.
    net.addDevices(QStringLiteral("motor:5"));
    out.clear();
    net.frameIn(broadcast(DTS::GetNodeAddr));
    QTRY_COMPARE_WITH_TIMEOUT(out.count(), 6, 1000);
    net.resetCounters();
    QCOMPARE(net.lineTimeUs(), qint64(0));
}

void tst_SimNetwork::silentNodes()
{
    SimNetwork net(4);
    net.setReplyWindow(5);
    net.addDevices(QStringLiteral("motor:6"));
    QCOMPARE(net.setSilentCount(2), 2);
    QCOMPARE(net.setSilentCount(10), 4);
    net.nodes().at(2)->setSilent(false);
    QSignalSpy out(&net, &SimNetwork::frameOut);
    net.frameIn(broadcast(DTS::GetNodeAddr));
    QTRY_COMPARE_WITH_TIMEOUT(out.count(), 1, 500);
    QCOMPARE(VRNMessage(BusMessage(out.first().first().toByteArray())).srcAddr(),
             net.nodes().at(2)->address());
}

// 60 motors moving: one CTRL_STOP_ALL to a group stops its members only,
// one to every motor stops the rest; nobody answers either.
void tst_SimNetwork::stopAllOneFrame()
{
    SimNetwork net(5);
    net.setReplyWindow(5);
    net.addDevices(QStringLiteral("motor:60,std:2"));
    QList<SimNode*> motors;
    for (SimNode* n : net.nodes()) {
        if (!SimNode::hasMotor(n->kind()))
            continue;
        n->setLimits(60000, 0);
        n->setPosition(10);
        n->setGroup(15, motors.size() % 2 ? 0x0F0100 : 0);
        net.frameIn(frame(DTS::CtrlMoveTo, n->number(), VRN::AddrNode, QByteArray::fromHex("01EA60FF")));
        motors.append(n);
    }
    QCOMPARE(motors.size(), 60);
    QVERIFY(QTest::qWaitFor([&net] { return !net.isBusy(); }, 1000));
    QSignalSpy out(&net, &SimNetwork::frameOut);
    const quint64 before = net.framesIn();
    net.frameIn(frame(DTS::CtrlStopAll, VRN::BroadcastNumber, VRN::AddrBroadcast, QByteArray::fromHex("0F0100")));
    for (int i = 0; i < motors.size(); ++i)
        QCOMPARE(motors.at(i)->isMoving(), i % 2 == 0);
    net.frameIn(frame(DTS::CtrlStopAll, VRN::BroadcastNumber, VRN::AddrBroadcast, QByteArray::fromHex("FFFFFF")));
    QCOMPARE(net.framesIn() - before, quint64(2));
    QList<quint16> stoodAt;
    for (SimNode* m : qAsConst(motors)) {
        QVERIFY(!m->isMoving());
        QVERIFY(m->position() < 60000);
        stoodAt.append(m->position());
    }
    QTest::qWait(30);
    QCOMPARE(out.count(), 0);
    for (int i = 0; i < motors.size(); ++i)
        QCOMPARE(motors.at(i)->position(), stoodAt.at(i));
}

// Calls through the loopback bus are made by every task test.
void tst_SimNetwork::attachRefusesOtherObjects()
{
    SimNetwork net(8);
    QObject other;
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^\\[SimNetwork\\]: cannot attach"));
    QVERIFY(!net.attach(&other));
}

void tst_SimNetwork::splitter_data()
{
    QTest::addColumn<QByteArray>("stream");
    QTest::addColumn<int>("chunk");  // bytes per feed; 0: all at once
    QTest::addColumn<int>("frames");
    QTest::addColumn<int>("dropped");
    const QByteArray a = frame(DTS::GetNodeLabel, 0x123456);
    const QByteArray b = frame(DTS::SetNodeLabel, 0x000200, VRN::AddrNode, "Kitchen blind");
    QByteArray bad = a;
    bad[bad.size() - 1] = char(bad.back() ^ 0x01);
    for (int chunk : {0, 1, 3, 7}) {
        const QByteArray c = QByteArray::number(chunk);
        QTest::newRow("two frames /" + c) << a + b << chunk << 2 << 0;
        QTest::newRow("garbage first /" + c) << QByteArray("\x00\x01\xAA", 3) + a << chunk << 1 << 3;
        QTest::newRow("bad checksum /" + c) << bad + b << chunk << 1 << int(bad.size());
        // 0x9F announces 31 bytes that never come: the valid frame behind wins.
        QTest::newRow("long announce /" + c) << QByteArray("\x45\x9F", 2) + a << chunk << 1 << 2;
        QTest::newRow("truncated tail /" + c) << a + b.left(10) << chunk << 1 << 0;
    }
}

void tst_SimNetwork::splitter()
{
    QFETCH(QByteArray, stream);
    QFETCH(int, chunk);
    QFETCH(int, frames);
    QFETCH(int, dropped);
    VRNFrameCutter splitter;
    QList<QByteArray> got;
    const int step = chunk > 0 ? chunk : stream.size();
    for (int pos = 0; pos < stream.size(); pos += step)
        got += splitter.feed(stream.mid(pos, step));
    QCOMPARE(got.size(), frames);
    for (const QByteArray& f : qAsConst(got))
        QVERIFY(VRNMessage(BusMessage(f)).isValid());
    QCOMPARE(splitter.droppedBytes(), qint64(dropped));
}

QTEST_MAIN(tst_SimNetwork)
#include "tst_simnetwork.moc"
