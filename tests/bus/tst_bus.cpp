#include "testframes.h"

#include "buspendingcallwatcher.h"
#include "vrnloopbackbus.h"
#include "bushealthmodel.h"

#include <QAbstractItemModelTester>
#include <QRegularExpression>
#include <algorithm>

#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <functional>
#include <memory>
#include <vector>

using namespace TestFrames;

// Loopback bus whose wire can be made to refuse writes.
class RefusingBus : public VRNLoopbackBus
{
public:
    bool refuse = false;

protected:
    bool writeFrame(const BusMessage& message) override
    {
        return !refuse && VRNLoopbackBus::writeFrame(message);
    }
};

// A watcher with a spy on its finished() signal.
struct Watched
{
    explicit Watched(const BusPendingCall& call) : watcher(call), spy(&watcher, &BusPendingCallWatcher::finished) {}
    BusPendingCallWatcher watcher;
    QSignalSpy spy;
};

class tst_Bus : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void unicastEndsWithFirstFrameOfCalledNode();
    void unicastTimesOut();
    void broadcastCollectsEveryReplyInWindow_data();
    void broadcastCollectsEveryReplyInWindow();
    void broadcastEndsWhenTheLineStaysQuiet();
    void callsGoOutOneAtATimeInSubmissionOrder();
    void waitingCallsEndOnceWhenBusGoes_data();
    void waitingCallsEndOnceWhenBusGoes();
    void callOnClosedBusEndsFromEventLoop();
    void cancel();
    void writeFailureEndsCallAndNextGoes();
    void watcherReportsOncePerWatchedCall();
    void replyMustAnswerItsRequest_data();
    void replyMustAnswerItsRequest();
    void reservedNumbersAreNeverCalled();
    void lostRequestIsSentAgain_data();
    void lostRequestIsSentAgain();
    void healthOfEachNode();

private:
    Watched& watch(const BusPendingCall& call);
    void answerEach(std::function<void(const VRNMessage&)> answer);

    RefusingBus* bus = nullptr;
    QList<VRNMessage> wire; // every frame the bus wrote
    std::function<void(const VRNMessage&)> peer;
    std::vector<std::unique_ptr<Watched>> watched;
};

void tst_Bus::init()
{
    wire.clear();
    peer = nullptr;
    bus = new RefusingBus;
    // Generous, so a loaded machine does not end calls that get answers;
    // tests of expiry shorten them.
    bus->setTimeout(1000);
    bus->setBroadcastWindow(150);
    connect(bus, &VRNLoopbackBus::transmitted, this, [this](const QByteArray& bytes) {
        wire.append(VRNMessage(BusMessage(bytes)));
        if (peer)
            peer(wire.last());
    });
    QVERIFY(bus->open());
}

void tst_Bus::cleanup()
{
    watched.clear();
    delete bus;
}

Watched& tst_Bus::watch(const BusPendingCall& call)
{
    watched.push_back(std::make_unique<Watched>(call));
    return *watched.back();
}

void tst_Bus::answerEach(std::function<void(const VRNMessage&)> answer)
{
    peer = std::move(answer);
}

void tst_Bus::unicastEndsWithFirstFrameOfCalledNode()
{
    const QByteArray right = reply(0x42, "first");
    answerEach([&](const VRNMessage& request) {
        // Not answers: another node, a frame to another address, an invalid frame.
        bus->inject(reply(0x43));
        bus->inject(VRNMessage(DTS::PostNodeLabel, VRN::makeAddr(VRN::NodeMotor, 0x42), 0x7,
                               VRN::AddrNode).data());
        bus->inject(corrupted(reply(0x42)));
        bus->inject(right);
        bus->inject(reply(0x42, "second"));
        QCOMPARE(request.dstAddr(), 0x42u);
    });
    QSignalSpy received(bus, &Bus::messageReceived);
    Watched& w = watch(bus->call(request(0x42)));

    QTRY_COMPARE(w.spy.count(), 1);
    QCOMPARE(w.watcher.error(), BusPendingCall::NoError);
    QVERIFY(w.watcher.errorString().isEmpty());
    QCOMPARE(w.watcher.replies(), QList<BusMessage>{BusMessage(right)});
    QCOMPARE(w.watcher.reply(), BusMessage(right));
    QCOMPARE(received.count(), 5); // every frame is reported, matched or not
    QTest::qWait(50);
    QCOMPARE(w.spy.count(), 1);
}

void tst_Bus::unicastTimesOut()
{
    bus->setTimeout(30);
    Watched& silent = watch(bus->call(request(0x10)));
    answerEach([&](const VRNMessage& request) {
        if (request.dstAddr() == 0x11)
            bus->inject(reply(0x11));
    });
    Watched& next = watch(bus->call(request(0x11)));

    QTRY_COMPARE(next.spy.count(), 1);
    QCOMPARE(silent.spy.count(), 1);
    QCOMPARE(silent.watcher.error(), BusPendingCall::TimeoutError);
    QVERIFY(!silent.watcher.errorString().isEmpty());
    QVERIFY(silent.watcher.replies().isEmpty());
    QVERIFY(silent.watcher.reply().isEmpty());
    QCOMPARE(next.watcher.error(), BusPendingCall::NoError);
}

void tst_Bus::broadcastCollectsEveryReplyInWindow_data()
{
    QTest::addColumn<int>("nodes");
    QTest::addColumn<bool>("group");
    for (int nodes : {0, 1, 7}) {
        QTest::addRow("broadcast, %d replies", nodes) << nodes << false;
        QTest::addRow("group, %d replies", nodes) << nodes << true;
    }
}

void tst_Bus::broadcastCollectsEveryReplyInWindow()
{
    QFETCH(int, nodes);
    QFETCH(bool, group);
    QList<BusMessage> sent;
    answerEach([&](const VRNMessage&) {
        bus->inject("\x01\x02"); // garbage is not a reply
        for (int n = 1; n <= nodes; ++n) {
            const QByteArray frame = group ? reply(0x100 + quint32(n), "label")
                                           : reply(0x100 + quint32(n), QByteArray(), DTS::PostNodeAddr);
            sent.append(BusMessage(frame));
            // Replies straggle in while the window is open.
            QTimer::singleShot(n, bus, [this, frame] { bus->inject(frame); });
        }
    });
    VRNMessage request = group ? VRNMessage(DTS::GetNodeLabel, VRN::ToolAddr, 0x123, VRN::AddrGroup)
                               : broadcast();
    request.prepare();
    Watched& w = watch(bus->call(request));

    QTRY_COMPARE(w.spy.count(), 1);
    QCOMPARE(w.watcher.error(), BusPendingCall::NoError);
    QCOMPARE(w.watcher.replies(), sent);
}

// A window far longer than the test may wait: only the quiet gap ends it, and
// replies spaced by less than the gap all count.
void tst_Bus::broadcastEndsWhenTheLineStaysQuiet()
{
    bus->setBroadcastWindow(60000);
    bus->setBroadcastQuietTime(80);
    QList<BusMessage> sent;
    answerEach([&](const VRNMessage&) {
        for (int n = 1; n <= 4; ++n) {
            const QByteArray frame = reply(0x100 + quint32(n), QByteArray(), DTS::PostNodeAddr);
            sent.append(BusMessage(frame));
            QTimer::singleShot(n * 30, bus, [this, frame] { bus->inject(frame); });
        }
    });
    Watched& w = watch(bus->call(broadcast()));
    QTRY_COMPARE(w.spy.count(), 1);
    QCOMPARE(w.watcher.error(), BusPendingCall::NoError);
    QCOMPARE(w.watcher.replies(), sent);
}

void tst_Bus::callsGoOutOneAtATimeInSubmissionOrder()
{
    int onWire = 0;
    int maxOnWire = 0;
    QList<quint32> finishOrder;
    answerEach([&](const VRNMessage& request) {
        maxOnWire = qMax(maxOnWire, ++onWire);
        const quint32 node = request.dstAddr();
        QTimer::singleShot(2, bus, [&, node] {
            --onWire;
            bus->inject(reply(node));
        });
    });
    const QList<quint32> nodes{0x105, 0x103, 0x109, 0x101};
    for (quint32 node : nodes) {
        Watched& w = watch(bus->call(request(node)));
        connect(&w.watcher, &BusPendingCallWatcher::finished, this,
                [&finishOrder, node] { finishOrder.append(node); });
    }
    QCOMPARE(bus->pendingCount(), 4);

    QTRY_COMPARE(finishOrder.size(), 4);
    QCOMPARE(finishOrder, nodes);
    QCOMPARE(maxOnWire, 1);
    QCOMPARE(wire.size(), 4);
    for (int i = 0; i < nodes.size(); ++i)
        QCOMPARE(wire.at(i).dstAddr(), nodes.at(i));
    for (const auto& w : watched)
        QCOMPARE(w->watcher.error(), BusPendingCall::NoError);
    QCOMPARE(bus->pendingCount(), 0);
}

void tst_Bus::waitingCallsEndOnceWhenBusGoes_data()
{
    QTest::addColumn<bool>("destroy");
    QTest::newRow("closed") << false;
    QTest::newRow("destroyed") << true;
}

void tst_Bus::waitingCallsEndOnceWhenBusGoes()
{
    QFETCH(bool, destroy);
    bus->setTimeout(5000); // ends by the bus going, not by the clock
    QList<BusPendingCall> calls;
    for (quint32 node = 0x101; node <= 0x103; ++node) {
        calls.append(bus->call(request(node)));
        watch(calls.last());
    }
    QTRY_COMPARE(wire.size(), 1); // one on the wire, two waiting

    QSignalSpy closed(bus, &Bus::closed);
    if (destroy) {
        delete bus;
        bus = nullptr;
    } else {
        bus->close();
        QCOMPARE(closed.count(), 1);
        QCOMPARE(bus->pendingCount(), 0);
    }
    for (const BusPendingCall& call : calls) {
        QVERIFY(call.isFinished());
        QCOMPARE(call.error(), BusPendingCall::BusNotAvailableError);
    }
    // Reports come from the event loop, never from inside close or delete.
    for (const auto& w : watched)
        QCOMPARE(w->spy.count(), 0);
    QTest::qWait(20);
    for (const auto& w : watched)
        QCOMPARE(w->spy.count(), 1);
    QCOMPARE(wire.size(), 1);
}

void tst_Bus::callOnClosedBusEndsFromEventLoop()
{
    bus->close();
    const BusPendingCall call = bus->call(request(0x101));
    Watched& w = watch(call);
    QVERIFY(!call.isFinished());
    QCOMPARE(w.spy.count(), 0);

    QTRY_COMPARE(w.spy.count(), 1);
    QCOMPARE(call.error(), BusPendingCall::BusNotAvailableError);
    QVERIFY(!call.errorString().isEmpty());
    QVERIFY(wire.isEmpty());

    // A bus opened again carries calls again.
    answerEach([&](const VRNMessage& r) { bus->inject(reply(r.dstAddr())); });
    QVERIFY(bus->open());
    Watched& again = watch(bus->call(request(0x101)));
    QTRY_COMPARE(again.spy.count(), 1);
    QCOMPARE(again.watcher.error(), BusPendingCall::NoError);
}

void tst_Bus::cancel()
{
    bus->setTimeout(5000);
    BusPendingCall onWire = bus->call(request(0x101));
    BusPendingCall waiting = bus->call(request(2));
    BusPendingCall last = bus->call(request(3));
    Watched& wOnWire = watch(onWire);
    Watched& wWaiting = watch(waiting);
    Watched& wLast = watch(last);
    QTRY_COMPARE(wire.size(), 1);

    QVERIFY(waiting.cancel());
    QVERIFY(!waiting.cancel());
    QCOMPARE(waiting.error(), BusPendingCall::CancelledError);
    QCOMPARE(wWaiting.spy.count(), 0);
    QCOMPARE(bus->pendingCount(), 2);

    answerEach([&](const VRNMessage& r) { bus->inject(reply(r.dstAddr())); });
    QVERIFY(onWire.cancel());
    QCOMPARE(onWire.error(), BusPendingCall::CancelledError);

    QTRY_COMPARE(wLast.spy.count(), 1);
    QCOMPARE(last.error(), BusPendingCall::NoError);
    QCOMPARE(wOnWire.spy.count(), 1);
    QCOMPARE(wWaiting.spy.count(), 1);
    // The cancelled waiting call never reached the wire.
    QCOMPARE(wire.size(), 2);
    QCOMPARE(wire.at(1).dstAddr(), 3u);
    QVERIFY(!last.cancel());
    QCOMPARE(last.error(), BusPendingCall::NoError);
    QVERIFY(!BusPendingCall::fromError(BusPendingCall::OtherError).cancel());
}

void tst_Bus::writeFailureEndsCallAndNextGoes()
{
    answerEach([&](const VRNMessage& r) { bus->inject(reply(r.dstAddr())); });
    bus->refuse = true;
    Watched& refused = watch(bus->call(request(0x101)));
    Watched& second = watch(bus->call(request(2)));
    QTRY_COMPARE(refused.spy.count(), 1);
    QCOMPARE(refused.watcher.error(), BusPendingCall::WriteError);
    QCOMPARE(second.watcher.error(), BusPendingCall::WriteError);

    bus->refuse = false;
    Watched& third = watch(bus->call(request(3)));
    QTRY_COMPARE(third.spy.count(), 1);
    QCOMPARE(third.watcher.error(), BusPendingCall::NoError);
    QCOMPARE(wire.size(), 1);
}

void tst_Bus::watcherReportsOncePerWatchedCall()
{
    // An already finished call reports from the event loop, not from the
    // assignment.
    BusPendingCallWatcher watcher;
    QSignalSpy spy(&watcher, &BusPendingCallWatcher::finished);
    const BusPendingCall early = BusPendingCall::fromError(BusPendingCall::OtherError, "no node");
    watcher = early;
    watcher = early; // the same call again: still one report
    QCOMPARE(spy.count(), 0);
    QTRY_COMPARE(spy.count(), 1);
    QCOMPARE(watcher.errorString(), QStringLiteral("no node"));

    // A call replaced before it reported never reports here.
    answerEach([&](const VRNMessage& r) { bus->inject(reply(r.dstAddr())); });
    spy.clear();
    const BusPendingCall first = bus->call(request(0x101));
    watcher = first;
    const BusPendingCall second = BusPendingCall::fromError(BusPendingCall::TimeoutError);
    watcher = second;
    QTRY_VERIFY(first.isFinished());
    QTest::qWait(10);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(watcher.error(), BusPendingCall::TimeoutError);

    // Two watchers on one call report once each; a default watcher never.
    BusPendingCallWatcher idle;
    QSignalSpy idleSpy(&idle, &BusPendingCallWatcher::finished);
    const BusPendingCall shared = bus->call(request(2));
    Watched& a = watch(shared);
    Watched& b = watch(shared);
    QTRY_COMPARE(a.spy.count(), 1);
    QTRY_COMPARE(b.spy.count(), 1);
    QTest::qWait(10);
    QCOMPARE(a.spy.count() + b.spy.count() + idleSpy.count(), 2);
}

void tst_Bus::replyMustAnswerItsRequest_data()
{
    QTest::addColumn<int>("cmd");
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QByteArray>("frame");
    QTest::addColumn<bool>("taken");
    const VRN::Addr node = VRN::makeAddr(VRN::NodeMotor, 0x42);
    auto from = [](VRN::Addr src, quint8 cmd, const QByteArray& payload, quint8 seq = 0) {
        VRNMessage m(cmd, src, VRN::getNumber(VRN::ToolAddr), VRN::AddrNode, payload);
        m.setSeq(seq);
        m.prepare();
        return m.data();
    };
    const QByteArray label(1, char(DTS::SetNodeLabel));
    QTest::newRow("ack of the command") << int(DTS::SetNodeLabel) << QByteArray("x") << from(node, DTS::Ack, label) << true;
    for (quint8 other : {DTS::CtrlWink, DTS::CtrlMoveTo, DTS::FwUpdateBegin})
        QTest::addRow("ack of 0x%02x", other) << int(DTS::SetNodeLabel) << QByteArray("x")
                                             << from(node, DTS::Ack, QByteArray(1, char(other))) << false;
    QTest::newRow("ack without code") << int(DTS::SetNodeLabel) << QByteArray("x") << from(node, DTS::Ack, {}) << false;
    QTest::newRow("ack of a read") << int(DTS::GetNodeLabel) << QByteArray()
                                   << from(node, DTS::Ack, QByteArray(1, char(DTS::GetNodeLabel))) << false;
    QTest::newRow("nack of the command") << int(DTS::GetNodeLabel) << QByteArray()
                                         << from(node, DTS::Nack, QByteArray::fromHex("2045")) << true;
    QTest::newRow("nack of another") << int(DTS::GetNodeLabel) << QByteArray()
                                     << from(node, DTS::Nack, QByteArray::fromHex("2055")) << false;
    QTest::newRow("slot asked") << int(DTS::GetGroupAddr) << QByteArray("\x03", 1)
                                << from(node, DTS::PostGroupAddr, QByteArray::fromHex("03ABCDEF")) << true;
    QTest::newRow("another slot") << int(DTS::GetGroupAddr) << QByteArray("\x05", 1)
                                  << from(node, DTS::PostGroupAddr, QByteArray::fromHex("03ABCDEF")) << false;
    QTest::newRow("another position") << int(DTS::GetMotorIP) << QByteArray("\x05", 1)
                                      << from(node, DTS::PostMotorIP, QByteArray::fromHex("03000132")) << false;
    QTest::newRow("reply of another read") << int(DTS::GetNodeLabel) << QByteArray()
                                           << from(node, DTS::PostNodeAppVersion, QByteArray(5, 0)) << false;
    QTest::newRow("late answer, another number") << int(DTS::GetNodeLabel) << QByteArray()
                                                 << from(node, DTS::PostNodeLabel, "old", 0x0F) << false;
    QTest::newRow("from the broadcast number") << int(DTS::GetNodeLabel) << QByteArray()
                                               << from(VRN::makeAddr(VRN::NodeMotor, 0xFFFFFF), DTS::PostNodeLabel, "x") << false;
}

void tst_Bus::replyMustAnswerItsRequest()
{
    QFETCH(int, cmd);
    QFETCH(QByteArray, payload);
    QFETCH(QByteArray, frame);
    QFETCH(bool, taken);
    bus->setTimeout(30);
    bus->setRepeats(0);
    answerEach([&](const VRNMessage& sent) {
        // A numbered answer in the table stands for another request's: the
        // bus starts its numbers at random, so give it one the request has not.
        VRNMessage reply{BusMessage(frame)};
        if (reply.seq() && reply.seq() == sent.seq()) {
            reply.setSeq(quint8(sent.seq() % VRNMessage::MaxSeq + 1));
            reply.prepare();
            return bus->inject(reply.data());
        }
        bus->inject(frame);
    });
    VRNMessage rq(quint8(cmd), VRN::ToolAddr, 0x42, VRN::AddrNode, payload);
    rq.setAck(true);
    QVERIFY(rq.prepare());
    QSignalSpy unmatched(bus, &Bus::messageUnmatched);
    Watched& w = watch(bus->call(rq));
    QTRY_COMPARE(w.spy.count(), 1);
    QCOMPARE(w.watcher.error(), taken ? BusPendingCall::NoError : BusPendingCall::TimeoutError);
    QCOMPARE(unmatched.count(), taken ? 0 : 1);
    QCOMPARE(bus->unmatchedCount(), quint64(unmatched.count()));
}

void tst_Bus::reservedNumbersAreNeverCalled()
{
    for (quint32 number : {0x000000u, 0x000001u, 0xFE1234u, 0xFFFFFFu}) {
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("refused: the number is reserved"));
        Watched& w = watch(bus->call(request(number)));
        QTRY_COMPARE(w.spy.count(), 1);
        QCOMPARE(w.watcher.error(), BusPendingCall::OtherError);
        QVERIFY(w.watcher.errorString().contains(QStringLiteral("reserved")));
    }
    QVERIFY(wire.isEmpty());
}

void tst_Bus::lostRequestIsSentAgain_data()
{
    QTest::addColumn<int>("repeats");
    QTest::addColumn<int>("lost");  // tries that get no answer
    for (int repeats = 0; repeats <= 2; ++repeats)
        for (int lost = 0; lost <= repeats + 1; ++lost)
            QTest::addRow("repeats %d, %d lost", repeats, lost) << repeats << lost;
}

void tst_Bus::lostRequestIsSentAgain()
{
    QFETCH(int, repeats);
    QFETCH(int, lost);
    bus->setTimeout(25);
    bus->setRepeats(repeats);
    answerEach([&](const VRNMessage& request) {
        if (wire.size() > lost)
            bus->inject(reply(request.dstAddr()));
    });
    const BusPendingCall call = bus->call(request(0x42));
    Watched& w = watch(call);
    QTRY_COMPARE(w.spy.count(), 1);
    const bool answered = lost <= repeats;
    QCOMPARE(w.watcher.error(), answered ? BusPendingCall::NoError : BusPendingCall::TimeoutError);
    QCOMPARE(wire.size(), qMin(lost, repeats) + 1);
    // Every try is the same frame, sequence number included.
    for (const VRNMessage& m : qAsConst(wire))
        QCOMPARE(m.data(), wire.first().data());
    QVERIFY(wire.first().seq() != 0);
    QCOMPARE(call.retransmissions(), wire.size() - 1);
    QCOMPARE(bus->retransmissionCount(), quint64(wire.size() - 1));

    // The next request to the node has the next number; the same request
    // again after one that got no answer keeps its number (a job tried once
    // more must not act twice).
    wire.clear();
    answerEach([&](const VRNMessage& request) { bus->inject(reply(request.dstAddr())); });
    Watched& next = watch(bus->call(request(0x42)));
    QTRY_COMPARE(next.spy.count(), 1);
    QCOMPARE(wire.size(), 1);
    QVERIFY(wire.first().seq() != 0);
    QCOMPARE(wire.first().seq() == VRNMessage(call.request()).seq(), !answered);
}

// Rows beyond a page, counts changing while views watch, both orders.
void tst_Bus::healthOfEachNode()
{
    BusHealthModel* health = bus->health();
    QAbstractItemModelTester tester(health, QAbstractItemModelTester::FailureReportingMode::QtTest);
    bus->setTimeout(10);
    bus->setRepeats(1);
    // Node n answers unless n is a multiple of 7; 0x104 answers the repeat only.
    answerEach([&](const VRNMessage& request) {
        const quint32 n = request.dstAddr();
        const bool firstTry = wire.size() < 2 || wire.at(wire.size() - 2).data() != wire.last().data();
        if (n % 7 != 0 && !(n == 0x104 && firstTry))
            bus->inject(reply(n));
        if (n == 0x105)
            bus->inject(reply(n, "x", DTS::PostNodeAppVersion));  // answers nothing
    });
    QList<BusPendingCall> calls;
    for (quint32 n = 0x101; n <= 0x150; ++n)
        calls << bus->call(request(n));
    QTRY_VERIFY(std::all_of(calls.cbegin(), calls.cend(), [](const BusPendingCall& c) { return c.isFinished(); }));
    health->flush();
    QCOMPARE(health->rowCount(), 0x50);
    // Worst first: the silent nodes.
    QCOMPARE(health->get(0).value(QStringLiteral("timeouts")).toInt(), 1);
    QCOMPARE(health->get(0).value(QStringLiteral("replies")).toInt(), 0);
    const QVariantMap repeated = health->get(health->rowOf(0x104));
    QCOMPARE(repeated.value(QStringLiteral("requests")).toInt(), 1);
    QCOMPARE(repeated.value(QStringLiteral("retransmissions")).toInt(), 1);
    QCOMPARE(repeated.value(QStringLiteral("replies")).toInt(), 1);
    QCOMPARE(health->get(health->rowOf(0x105)).value(QStringLiteral("invalidFrames")).toInt(), 1);
    QCOMPARE(health->get(health->rowOf(0x106)).value(QStringLiteral("score")).toDouble(), 0.0);
    QVERIFY(health->get(health->rowOf(0x106)).value(QStringLiteral("medianMs")).toInt() >= 0);
    for (Qt::SortOrder order : {Qt::AscendingOrder, Qt::DescendingOrder}) {
        health->sort(BusHealthModel::NodeColumn, order);
        const qint64 first = health->index(0, 0).data(BusHealthModel::NodeIdRole).toLongLong();
        QCOMPARE(first, order == Qt::AscendingOrder ? 0x101 : 0x151);  // 0x151 joined in the first pass
        // More traffic while sorted: rows move, persistent indexes follow.
        const QPersistentModelIndex kept = health->index(health->rowOf(0x110), 0);
        calls = {bus->call(request(0x110)), bus->call(request(0x151 + int(order)))};
        QTRY_VERIFY(calls.last().isFinished());
        health->flush();
        QCOMPARE(kept.data(BusHealthModel::NodeIdRole).toLongLong(), 0x110);
    }
    bus->close();
    QVERIFY(bus->open());
    QCOMPARE(health->rowCount(), 0);
}

QTEST_GUILESS_MAIN(tst_Bus)
#include "tst_bus.moc"
