// Motor diagnostics and network statistics on simulated nodes: the chain of
// requests, what reaches the runtime record, and the failures that leave it
// as it was.
#include "taskfixture.h"

#include "dts.h"
#include "getmotordiagnosticjob.h"
#include "getnetworkstatsjob.h"
#include "jobregistration.h"
#include "setnetworkstatsjob.h"
#include "vrnmotorobject.h"
#include "vrnobjectworker.h"
#include "workqueue.h"

#include <QtTest>

using namespace TaskFixture;

namespace {

const QList<quint8> DiagRequests = {DTS::DiagGetTotalMoveCount, DTS::DiagGetTotalRevCount,
                                    DTS::DiagGetThermalCount,   DTS::DiagGetObstacleCount,
                                    DTS::DiagGetPowerCount,     DTS::DiagGetResetCount,
                                    DTS::DiagGetEncoderErrors};
const QList<quint8> DiagReplies = {DTS::DiagPostTotalMoveCount, DTS::DiagPostTotalRevCount,
                                   DTS::DiagPostThermalCount,   DTS::DiagPostObstacleCount,
                                   DTS::DiagPostPowerCount,     DTS::DiagPostResetCount,
                                   DTS::DiagPostEncoderErrors};
// The steps whose replies are tested for a negative acknowledgement.
const QList<int> NackSteps = {2, 5, 6};

// moves, revolutions, thermal and moves since, obstacles and moves since, power cuts, resets, encoder errors
const SimNode::Diagnostics SomeDiagnostics{70000, 123456, 3, 40, 5, 9, 11, 2, 7};

} // namespace

class tst_DiagTasks : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void diagnosticChain();
    void diagnosticFailures_data();
    void diagnosticFailures();
    void networkStats_data();
    void networkStats();
    void resetStats_data();
    void resetStats();
    void bindings();

private:
    /// From request `step` (1 = the first) on `node` is silent; `reply`, when
    /// not empty, answers request `step` instead.
    void faultAt(SimNode* node, int step, const QByteArray& reply);
    QList<quint8> sentCodes() const;

    QScopedPointer<Wire> m_wire;
    SimNode* m_sim = nullptr;
    SimNode* m_simStd = nullptr;
    QSharedPointer<VRNObject> m_motor;
    QSharedPointer<VRNObject> m_std;
    QScopedPointer<VRNObjectWorker> m_worker;
    QScopedPointer<VRNObjectWorker> m_stdWorker;
};

void tst_DiagTasks::init()
{
    m_wire.reset(new Wire);
    m_sim = m_wire->net.addNode(SimNode::Motor, 0x123456);
    m_sim->setDiagnostics(SomeDiagnostics);
    m_simStd = m_wire->net.addNode(SimNode::Std, 0x000200);
    m_motor = attachedObject<VRNMotorObject>(*m_wire, m_sim);
    m_worker.reset(new VRNObjectWorker(m_motor));
    m_std = attachedObject<VRNStdObject>(*m_wire, m_simStd);
    m_stdWorker.reset(new VRNObjectWorker(m_std));
}

void tst_DiagTasks::cleanup()
{
    m_stdWorker.reset();
    m_worker.reset();
    m_std.reset();
    m_motor.reset();
    m_wire.reset();
}

void tst_DiagTasks::faultAt(SimNode* node, int step, const QByteArray& reply)
{
    // The network answers inside the transmission: silence the node after
    // the request before `step` has been answered.
    if (step == 1)
        node->setSilent(true);
    auto count = QSharedPointer<int>::create(0);
    connect(m_wire->bus, &VRNLoopbackBus::transmitted, this, [this, node, count, step, reply] {
        ++*count;
        if (*count == step - 1)
            node->setSilent(true);
        if (*count == step && !reply.isEmpty())
            QTimer::singleShot(0, m_wire->bus, [this, reply] { m_wire->bus->inject(reply); });
    });
}

QList<quint8> tst_DiagTasks::sentCodes() const
{
    QList<quint8> out;
    for (const VRNMessage& m : m_wire->sent)
        out.append(m.cmd());
    return out;
}

void tst_DiagTasks::diagnosticChain()
{
    RuntimeData before = m_motor->proxyRuntime();
    before.data().posPulse = 321;
    before.data().networkStat.frameSent = 99;
    m_motor->setProxyRuntime(before);

    GetMotorDiagnosticJob job;
    QCOMPARE(runJob(*m_worker, job), Job::NoError);
    QCOMPARE(sentCodes(), DiagRequests);

    const RuntimeDataData& after = m_motor->proxyRuntime().getConstData();
    const SimNode::Diagnostics& c = SomeDiagnostics;
    const MotorDiagnostic& d = after.motorDiagnostic;
    QVERIFY(std::tie(d.totalMoveCount, d.totalRevCount, d.thermalCount, d.postThermalMove, d.obstacleCount,
                     d.postObstacleMove, d.powerCount, d.resetCount, d.encoderErrCount)
            == std::tie(c.totalMoveCount, c.totalRevCount, c.thermalCount, c.postThermalMove, c.obstacleCount,
                        c.postObstacleMove, c.powerCount, c.resetCount, c.encoderErrCount));
    // The rest of the record is carried over.
    QCOMPARE(after.posPulse, quint16(321));
    QCOMPARE(after.networkStat.frameSent, 99u);
}

void tst_DiagTasks::diagnosticFailures_data()
{
    QTest::addColumn<int>("step");          // 1..7; 0: the bus itself fails
    QTest::addColumn<QByteArray>("reply");  // empty: no answer at all
    QTest::addColumn<QString>("error");
    QTest::addColumn<bool>("transient");

    const VRN::Addr src = VRN::makeAddr(VRN::NodeMotor, 0x123456);
    for (int step = 1; step <= 7; ++step) {
        const QByteArray nack = nodeFrame(DTS::Nack, src, QByteArray("\x20") + char(DiagRequests[step - 1]));
        const QByteArray bad = nodeFrame(DiagReplies[step - 1], src, QByteArray(1, '\x01'));
        QTest::addRow("timeout at %d", step) << step << QByteArray() << "Timeout error" << true;
        QTest::addRow("rejected at %d", step)
            << step << bad << QStringLiteral("Unexpected reply(%1)").arg(QString::fromLatin1(bad.toHex().toUpper()))
            << false;
        QTest::addRow("nack at %d", step)
            << step << nack << (NackSteps.contains(step) ? "Nack(busy)" : "Unexpected reply(6F)") << false;
    }
    QTest::newRow("bus closed (error 4)") << 0 << QByteArray("close") << "GetMotorDiagnosticTask failed" << true;
    QTest::newRow("write failed (error 3)") << 0 << QByteArray("write") << "GetMotorDiagnosticTask failed"
                                            << true;
}

void tst_DiagTasks::diagnosticFailures()
{
    QFETCH(int, step);
    QFETCH(QByteArray, reply);
    QFETCH(QString, error);
    QFETCH(bool, transient);

    QCOMPARE(VRN::makeAddr(VRN::NodeMotor, 0x123456), m_sim->address());
    if (step == 0 && reply == "close")
        m_wire->bus->close();
    else if (step == 0)
        m_wire->bus->failWrites = true;
    else
        faultAt(m_sim, step, reply);
    const RuntimeData before = m_motor->proxyRuntime();
    m_wire->bus->setRepeats(0);  // one frame per step on the wire

    GetMotorDiagnosticJob job;
    QCOMPARE(runJob(*m_worker, job), Job::TaskFailedError);
    QCOMPARE(job.errorString(), error);
    QCOMPARE(job.isTransientError(), transient);
    QVERIFY(m_motor->proxyRuntime() == before);
    if (step > 0)
        QCOMPARE(sentCodes(), DiagRequests.mid(0, step));  // the first failure ends the chain
}

void tst_DiagTasks::networkStats_data()
{
    QTest::addColumn<int>("badStep");  // 0: both replies good
    QTest::addColumn<QString>("error");
    const VRN::Addr src = VRN::makeAddr(VRN::NodeKeypad, 0x000200);
    const QByteArray badStat = nodeFrame(DTS::PostNetworkStat, src, QByteArray(3, '\0'));
    QTest::newRow("read") << 0 << QString();
    QTest::newRow("traffic reply rejected")
        << 1 << QStringLiteral("Unexpected reply(%1)").arg(QString::fromLatin1(badStat.toHex().toUpper()));
    QTest::newRow("error reply rejected") << 2 << "GetNetworkErrorStat failed";
}

void tst_DiagTasks::networkStats()
{
    QFETCH(int, badStep);
    QFETCH(QString, error);

    QCOMPARE(m_simStd->address(), VRN::makeAddr(VRN::NodeKeypad, 0x000200));
    SimNode::NetworkErrorStat errors;
    errors.collisions = 12;
    errors.crcError = 3;
    m_simStd->setNetworkErrorStat(errors);
    if (badStep) {
        const quint8 code = badStep == 1 ? DTS::PostNetworkStat : DTS::PostNetworkErrorStat;
        faultAt(m_simStd, badStep, nodeFrame(code, m_simStd->address(), QByteArray(3, '\0')));
    }
    const RuntimeData before = m_std->proxyRuntime();

    GetNetworkStatsJob job;
    const Job::Error result = runJob(*m_stdWorker, job);
    QCOMPARE(job.errorString(), error);
    if (!error.isEmpty()) {
        QCOMPARE(result, Job::TaskFailedError);
        QVERIFY(m_std->proxyRuntime() == before);
        return;
    }
    QCOMPARE(sentCodes(), (QList<quint8>{DTS::GetNetworkStat, DTS::GetNetworkErrorStat}));
    const RuntimeDataData& after = m_std->proxyRuntime().getConstData();
    // Read back as the node counted them when it answered (the second request
    // is one more frame received than the first reply tells).
    QCOMPARE(after.networkStat.frameReceived + 1, m_simStd->networkStat().frameReceived);
    QCOMPARE(after.networkErrorStat.collisions, quint16(12));
    QCOMPARE(after.networkErrorStat.crcError, quint16(3));
}

void tst_DiagTasks::resetStats_data()
{
    QTest::addColumn<int>("stats");
    QTest::addColumn<QList<quint8>>("reads");
    QTest::addColumn<bool>("trafficCleared");
    QTest::addColumn<bool>("errorsCleared");
    QTest::newRow("network") << int(SetNetworkStatsJob::Network) << QList<quint8>{DTS::GetNetworkStat} << true
                             << false;
    QTest::newRow("errors") << int(SetNetworkStatsJob::Errors) << QList<quint8>{DTS::GetNetworkErrorStat} << false
                            << true;
    QTest::newRow("all") << int(SetNetworkStatsJob::All)
                         << QList<quint8>{DTS::GetNetworkStat, DTS::GetNetworkErrorStat} << true << true;
}

void tst_DiagTasks::resetStats()
{
    QFETCH(int, stats);
    QFETCH(QList<quint8>, reads);
    QFETCH(bool, trafficCleared);
    QFETCH(bool, errorsCleared);

    SimNode::NetworkStat traffic;
    traffic.frameSent = 5000;
    traffic.frameSeen = 20000;
    traffic.frameReceived = 6000;
    m_simStd->setNetworkStat(traffic);
    SimNode::NetworkErrorStat errors;
    errors.collisions = 40;
    errors.unknownMessage = 2;
    m_simStd->setNetworkErrorStat(errors);

    QScopedPointer<Job> job(JobRegistration::create(QStringLiteral("SetNetworkStatsJob")));
    QVERIFY(job->setProperty("stats", stats));
    QCOMPARE(runJob(*m_stdWorker, *job), Job::NoError);

    QCOMPARE(sentCodes(), QList<quint8>{DTS::SetNetworkStat} + reads);
    QCOMPARE(m_wire->sent.first().payload(), QByteArray(1, char(stats)) + '\0');
    // Counting goes on after the reset: a handful of frames, not thousands.
    const SimNode::NetworkStat t = m_simStd->networkStat();
    QCOMPARE(t.frameSeen < 10, trafficCleared);
    QCOMPARE(m_simStd->networkErrorStat().collisions == 0, errorsCleared);

    const RuntimeDataData& record = m_std->proxyRuntime().getConstData();
    if (trafficCleared) {  // the acknowledgement sent, the read-back request seen and received
        const DTSStdProxy::NetworkStat& s = record.networkStat;
        QVERIFY(std::tie(s.frameSent, s.frameSeen, s.frameReceived) == std::make_tuple(1u, 1u, 1u));
    } else {
        QCOMPARE(record.networkStat.frameSeen, 0u);  // not read
    }
    QCOMPARE(record.networkErrorStat.collisions, quint16(0));
}

void tst_DiagTasks::bindings()
{
    // Diagnostics belong to motors: a standard node has no task for them.
    GetMotorDiagnosticJob diag;
    QTest::ignoreMessage(QtWarningMsg, "[Worker]: No task for GetMotorDiagnosticJob on VRNStdObject");
    QCOMPARE(runJob(*m_stdWorker, diag), Job::NoTaskError);

    // Statistics on every node, a motor included.
    GetNetworkStatsJob stats;
    QCOMPARE(runJob(*m_worker, stats), Job::NoError);
    QVERIFY(m_motor->proxyRuntime().getConstData().networkStat.frameReceived > 0);
    SetNetworkStatsJob reset;
    QCOMPARE(runJob(*m_worker, reset), Job::NoError);

    // A value that names no counters is refused before anything is sent.
    m_wire->sent.clear();
    reset.setStats(7);
    QCOMPARE(runJob(*m_worker, reset), Job::TaskFailedError);
    QCOMPARE(reset.errorString(), QStringLiteral("Internal error(unknown statistics 7)"));
    QVERIFY(m_wire->sent.isEmpty());
}

QTEST_GUILESS_MAIN(tst_DiagTasks)
#include "tst_diagtasks.moc"
