#include "dts.h"
#include "vrnlistenermodel.h"
#include "vrnlistenerviewmodel.h"
#include "vrnloopbackbus.h"
#include "vrnmessage.h"

#include <QAbstractItemModelTester>
#include <QPointer>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QtTest>

namespace {
const VRN::Addr Motor42 = VRN::makeAddr(VRN::NodeMotor, 0x42);
const VRN::Addr Motor43 = VRN::makeAddr(VRN::NodeMotor, 0x43);

BusMessage frame(quint8 cmd, VRN::Addr src, quint32 dst, VRN::AddrType type = VRN::AddrNode,
                 const QByteArray& payload = QByteArray())
{
    VRNMessage m(cmd, src, dst, type, payload);
    if (!m.prepare())
        qFatal("test frame does not encode");
    return BusMessage(m.data());
}

QVariant cell(const QAbstractItemModel& model, int row, int role, int column = 0)
{
    return model.data(model.index(row, column), role);
}
}

class tst_VRNListener : public QObject
{
    Q_OBJECT
private slots:
    void recordsWhatTheBusSendsAndReceives();
    void decodesEachColumn();
    void dropsOldestPastTheBound();
    void followsTheBusItIsGiven();
    void filtersByNodeAndCommand_data();
    void filtersByNodeAndCommand();
    void holdsTheModelContract();
};

void tst_VRNListener::recordsWhatTheBusSendsAndReceives()
{
    VRNLoopbackBus bus;
    QVERIFY(bus.open());
    VRNListenerModel model(&bus);

    VRNMessage request(DTS::GetNodeLabel, VRN::ToolAddr, 0x42, VRN::AddrNode);
    QVERIFY(request.prepare());
    bus.call(request);
    QTRY_COMPARE_WITH_TIMEOUT(model.rowCount(), 1, 500);

    const BusMessage reply = frame(DTS::PostNodeLabel, Motor42, VRN::getNumber(VRN::ToolAddr),
                                   VRN::AddrNode, QByteArray("kitchen"));
    // Line noise ahead of the reply is recorded too, as one invalid frame.
    bus.inject(QByteArray::fromHex("ffff") + reply.data());
    QTRY_COMPARE_WITH_TIMEOUT(model.rowCount(), 3, 500);

    QCOMPARE(cell(model, 0, VRNListenerModel::DirectionRole).toInt(), int(VRNListenerModel::Sent));
    QCOMPARE(cell(model, 0, VRNListenerModel::CommandRole).toInt(), int(DTS::GetNodeLabel));
    QCOMPARE(cell(model, 1, VRNListenerModel::ValidRole).toBool(), false);
    QCOMPARE(cell(model, 1, VRNListenerModel::PayloadRole).toString(), QStringLiteral("FF FF"));
    QCOMPARE(cell(model, 2, VRNListenerModel::DirectionRole).toInt(), int(VRNListenerModel::Received));
    QCOMPARE(cell(model, 2, VRNListenerModel::SourceRole).toUInt(), Motor42);
    QCOMPARE(cell(model, 2, VRNListenerModel::CommandRole).toInt(), int(DTS::PostNodeLabel));
}

void tst_VRNListener::decodesEachColumn()
{
    VRNListenerModel model(nullptr);
    model.addFrame(VRNListenerModel::Received,
                   frame(DTS::PostNodeLabel, Motor42, 0x000001, VRN::AddrNode, QByteArray("\x01\xab", 2)));
    model.addFrame(VRNListenerModel::Sent, frame(DTS::GetNodeAddr, VRN::ToolAddr, VRN::BroadcastNumber,
                                                 VRN::AddrBroadcast));
    model.addFrame(VRNListenerModel::Sent, frame(0xEE, VRN::ToolAddr, 0x7, VRN::AddrGroup));
    const QByteArray garbage = QByteArray::fromHex("0102030405");
    model.addFrame(VRNListenerModel::Received, BusMessage(garbage));

    const auto text = [&model](int row, int column) {
        return model.data(model.index(row, column), Qt::DisplayRole).toString();
    };
    QCOMPARE(text(0, VRNListenerModel::DirectionColumn), QStringLiteral("received"));
    QCOMPARE(text(0, VRNListenerModel::SourceColumn), QStringLiteral("0x01000042"));
    QCOMPARE(text(0, VRNListenerModel::DestinationColumn), QStringLiteral("0x000001"));
    QCOMPARE(text(0, VRNListenerModel::CommandColumn), DTS::cmdInfo(DTS::PostNodeLabel).name());
    QCOMPARE(text(0, VRNListenerModel::PayloadColumn), QStringLiteral("01 AB"));
    QCOMPARE(text(0, VRNListenerModel::ValidColumn), QStringLiteral("valid"));
    QCOMPARE(text(1, VRNListenerModel::DestinationColumn), QStringLiteral("all"));
    QCOMPARE(text(2, VRNListenerModel::DestinationColumn), QStringLiteral("group 0x000007"));
    // A code the command table does not know is shown by its value.
    QCOMPARE(text(2, VRNListenerModel::CommandColumn), QStringLiteral("0xEE"));
    // A frame that does not decode keeps every byte and claims no addressing.
    QCOMPARE(text(3, VRNListenerModel::PayloadColumn), QStringLiteral("01 02 03 04 05"));
    QCOMPARE(text(3, VRNListenerModel::SourceColumn), QString());
    QVERIFY(!cell(model, 3, VRNListenerModel::CommandRole).isValid());
    QCOMPARE(text(3, VRNListenerModel::ValidColumn), QStringLiteral("invalid"));
    QVERIFY(!model.data(model.index(4, 0), Qt::DisplayRole).isValid());
}

void tst_VRNListener::dropsOldestPastTheBound()
{
    VRNListenerModel model(nullptr);
    QCOMPARE(model.maxFrames(), 10000);
    model.setMaxFrames(3);
    QSignalSpy removed(&model, &QAbstractItemModel::rowsRemoved);
    for (int i = 0; i < 5; ++i)
        model.addFrame(VRNListenerModel::Received,
                       frame(DTS::PostNodeLabel, Motor42, 1, VRN::AddrNode, QByteArray(1, char(i))));
    QCOMPARE(model.rowCount(), 3);
    QCOMPARE(removed.count(), 2);
    for (const auto& args : removed)
        QCOMPARE(args.at(1).toInt(), 0);
    QCOMPARE(cell(model, 0, VRNListenerModel::PayloadRole).toString(), QStringLiteral("02"));
    QCOMPARE(cell(model, 2, VRNListenerModel::PayloadRole).toString(), QStringLiteral("04"));

    // Lowering the bound drops the surplus at once, oldest first.
    model.setMaxFrames(1);
    QCOMPARE(model.rowCount(), 1);
    QCOMPARE(cell(model, 0, VRNListenerModel::PayloadRole).toString(), QStringLiteral("04"));
}

void tst_VRNListener::followsTheBusItIsGiven()
{
    VRNListenerModel model(nullptr);
    VRNListenerViewModel view(&model);
    QSignalSpy busChanged(&view, &VRNListenerViewModel::busChanged);
    auto* first = new VRNLoopbackBus;
    VRNLoopbackBus second;
    QVERIFY(first->open());
    QVERIFY(second.open());
    const QByteArray reply = frame(DTS::Ack, Motor42, 1).data();

    view.setBus(first);
    first->inject(reply);
    QCOMPARE(model.rowCount(), 1);

    view.setBus(&second);
    QCOMPARE(busChanged.count(), 2);
    first->inject(reply);
    second.inject(reply);
    QCOMPARE(model.rowCount(), 2);

    // A bus that goes away on its own is let go, not used after.
    view.setBus(first);
    delete first;
    QCOMPARE(view.bus(), nullptr);
    second.inject(reply);
    QCOMPARE(model.rowCount(), 2);

    view.clear();
    QCOMPARE(view.rowCount(), 0);
}

void tst_VRNListener::filtersByNodeAndCommand_data()
{
    QTest::addColumn<int>("node");
    QTest::addColumn<int>("command");
    QTest::addColumn<QList<int>>("rows");

    QTest::newRow("no filter") << -1 << -1 << QList<int>{0, 1, 2, 3, 4};
    QTest::newRow("node as source or destination") << 0x42 << -1 << QList<int>{0, 1};
    QTest::newRow("group number is not a node") << 0x43 << -1 << QList<int>{2};
    QTest::newRow("command") << -1 << int(DTS::Ack) << QList<int>{1, 2};
    QTest::newRow("node and command") << 0x42 << int(DTS::Ack) << QList<int>{1};
    QTest::newRow("nothing matches") << 0x99 << -1 << QList<int>{};
}

void tst_VRNListener::filtersByNodeAndCommand()
{
    QFETCH(int, node);
    QFETCH(int, command);
    QFETCH(QList<int>, rows);

    VRNListenerModel model(nullptr);
    VRNListenerViewModel view(&model);
    // Set before the frames arrive: it applies to them too; the same value
    // again is no change.
    QSignalSpy filterChanged(&view, &VRNListenerViewModel::nodeFilterChanged);
    view.setNodeFilter(node);
    view.setNodeFilter(node);
    QCOMPARE(filterChanged.count(), node < 0 ? 0 : 1);
    model.addFrame(VRNListenerModel::Sent, frame(DTS::GetNodeLabel, VRN::ToolAddr, 0x42));
    model.addFrame(VRNListenerModel::Received, frame(DTS::Ack, Motor42, 1));
    model.addFrame(VRNListenerModel::Received, frame(DTS::Ack, Motor43, 1));
    model.addFrame(VRNListenerModel::Sent, frame(DTS::SetGroupAddr, VRN::ToolAddr, 0x43, VRN::AddrGroup,
                                                 QByteArray(4, '\0')));
    model.addFrame(VRNListenerModel::Received, BusMessage(QByteArray::fromHex("7f00")));

    view.setCommandFilter(command);
    QList<int> seen;
    for (int r = 0; r < view.rowCount(); ++r)
        seen << view.mapToSource(view.index(r, 0)).row();
    QCOMPARE(seen, rows);
}


// Frames of a few nodes and commands arrive (line noise among them) while
// the bound, the filters and clearing change at random, with Qt's model
// checker on both models: the model keeps the newest frames within its
// bound, and the view shows exactly those that pass its filters, in
// arrival order.
void tst_VRNListener::holdsTheModelContract()
{
    struct Sent
    {
        int node;
        int command;
    };
    QRandomGenerator random(5);
    VRNListenerModel model(nullptr);
    VRNListenerViewModel view(&model);
    QAbstractItemModelTester modelChecker(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    QAbstractItemModelTester viewChecker(&view, QAbstractItemModelTester::FailureReportingMode::QtTest);
    const QList<int> commands{DTS::Ack, DTS::GetNodeLabel, DTS::PostNodeLabel, DTS::GetNodeAddr};
    QList<Sent> sent; // by serial number, carried in each frame's payload
    for (int step = 0; step < 700; ++step) {
        const int what = random.bounded(100);
        if (what < 85) {
            const QByteArray serial = QByteArray::number(sent.size());
            const int node = random.bounded(0x40, 0x44);
            const int command = commands.at(random.bounded(commands.size()));
            if (random.bounded(20) == 0) {
                model.addFrame(VRNListenerModel::Received, BusMessage(QByteArray::fromHex("ff") + serial));
                sent.append({-1, -1});
            } else {
                model.addFrame(VRNListenerModel::Received,
                               frame(quint8(command), VRN::makeAddr(VRN::NodeMotor, quint32(node)), 1, VRN::AddrNode,
                                     serial));
                sent.append({node, command});
            }
        } else if (what < 89) {
            model.setMaxFrames(random.bounded(50, 400));
        } else if (what < 94) {
            view.setNodeFilter(random.bounded(3) ? random.bounded(0x40, 0x44) : -1);
        } else if (what < 99) {
            view.setCommandFilter(random.bounded(3) ? commands.at(random.bounded(commands.size())) : -1);
        } else {
            random.bounded(2) ? model.clear() : view.clear();
        }
        // The model keeps the newest frames, in order, none missing, never
        // more than the bound (dropped a chunk at a time).
        QVERIFY(model.rowCount() <= model.maxFrames());
        QList<int> expected;
        for (int r = 0; r < model.rowCount(); ++r) {
            const QByteArray payload = QByteArray::fromHex(cell(model, r, VRNListenerModel::PayloadRole).toByteArray());
            const int serial = (payload.startsWith('\xff') ? payload.mid(1) : payload).toInt();
            QCOMPARE(serial, sent.size() - model.rowCount() + r);
            const Sent& s = sent.at(serial);
            const bool nodeOk = view.nodeFilter() < 0 || s.node == view.nodeFilter();
            const bool commandOk = view.commandFilter() < 0 || s.command == view.commandFilter();
            if (nodeOk && commandOk)
                expected << r;
        }
        QList<int> shown;
        for (int r = 0; r < view.rowCount(); ++r)
            shown << view.mapToSource(view.index(r, 0)).row();
        QCOMPARE(shown, expected);
    }
}

QTEST_GUILESS_MAIN(tst_VRNListener)
#include "tst_vrnlistener.moc"
