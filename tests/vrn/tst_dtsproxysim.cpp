// Proxies and simulated nodes agree on the reply layouts no task reads,
// exchanged on the loopback wire. The node's own rules (moves, refusals,
// counters) are tst_simnode's; request bytes and parsers are pinned in
// tst_dtsproxyrequests and tst_dtsproxyreplies; the replies the tasks read
// (labels, versions, groups, motor settings, positions, diagnostics) meet
// the simulated nodes in tests/tasks and tests/groups.
#include "dtsstdproxy.h"
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
    void networkCounters();

private:
    // Waits for `call` and returns its reply; an empty message on any error.
    BusMessage reply(const BusPendingCall& call);

    QScopedPointer<VRNLoopbackBus> m_bus;
    QScopedPointer<SimNetwork> m_net;
    SimNode* m_simStd = nullptr;
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
    m_simStd = m_net->addNode(SimNode::Std, 0x000200);
    QVERIFY(m_simStd);
    m_std.reset(new DTSStdProxy(m_simStd->address(), m_bus.data()));
}

void tst_DTSProxySim::cleanup()
{
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
    QVERIFY(m_std->isAck(reply(m_std->setNodeLabel(QByteArray()))));
    QByteArray label;
    QVERIFY(m_std->getNodeLabelReply(reply(m_std->getNodeLabel()), label));
    QVERIFY(label.isEmpty() && !label.isNull()); // a nameless node is not an unknown label

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

QTEST_MAIN(tst_DTSProxySim)
#include "tst_dtsproxysim.moc"
