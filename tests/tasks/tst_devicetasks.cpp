// The device task pattern on simulated nodes: every reply check in its order,
// the seeding rule, the label, version and group tasks, and their bindings.
#include "taskfixture.h"

#include "dts.h"
#include "getfwversionjob.h"
#include "getfwversiontask.h"
#include "getgroupsjob.h"
#include "getgroupstask.h"
#include "getlabeljob.h"
#include "getlabeltask.h"
#include "busdiscoverjob.h"
#include "jobregistration.h"
#include "setgroupsjob.h"
#include "setgroupstask.h"
#include "setlabeljob.h"
#include "setlabeltask.h"
#include "setnodediscoveryjob.h"
#include "tx30object.h"
#include "vrndcmotorobject.h"
#include "vrnobjectworker.h"
#include "vrndatawriter.h"
#include "workqueue.h"

#include <QtTest>

using namespace TaskFixture;

class tst_DeviceTasks : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void bindings();
    void replyChecks_data();
    void replyChecks();
    void objectMissing_data();
    void objectMissing();
    void objectGoneWhileRequestOut();
    void labelSeeding_data();
    void labelSeeding();
    void firstReadsSeedLocal();
    void invalidVersion();
    void groupRead();
    void groupReadTimeout();
    void setGroups_data();
    void setGroups();
    void setLabel();
    void nodeDiscoveryMark();

private:
    /// Queues `job` on the standard node's worker and waits for its end.
    Job::Error run(Job& job);
    /// Runs `task` on a job of its own and waits for its end.
    Job::Error run(Task* task, QString* error = nullptr);
    VRNStdObject* stdObj() const { return static_cast<VRNStdObject*>(m_std.data()); }

    QScopedPointer<Wire> m_wire;
    SimNode* m_simStd = nullptr;
    SimNode* m_simMotor = nullptr;
    QSharedPointer<VRNObject> m_std;
    QSharedPointer<VRNObject> m_motor;
    QScopedPointer<VRNObjectWorker> m_worker;
};

void tst_DeviceTasks::init()
{
    m_wire.reset(new Wire);
    m_simStd = m_wire->net.addNode(SimNode::Std, 0x000200);
    m_simMotor = m_wire->net.addNode(SimNode::DCMotor, 0x123456);
    m_simStd->setLabel("Hall");
    m_std.reset(new VRNStdObject);
    m_std->setNodeAddress(m_simStd->address());
    m_std->attach(m_wire->bus);
    m_motor.reset(new VRNDCMotorObject);
    m_motor->setNodeAddress(m_simMotor->address());
    m_motor->attach(m_wire->bus);
    m_worker.reset(new VRNObjectWorker(m_std));
}

void tst_DeviceTasks::cleanup()
{
    m_worker.reset();
    m_std.reset();
    m_motor.reset();
    m_wire.reset();
}

Job::Error tst_DeviceTasks::run(Job& job)
{
    if (!m_worker->queue()->enqueue(job, 0) || !waitEnd(job))
        return Job::AbortedError;
    return job.error();
}

Job::Error tst_DeviceTasks::run(Task* task, QString* error)
{
    Job job;
    job.attach(task);
    job.start();
    if (!waitEnd(job))
        return Job::AbortedError;
    if (error)
        *error = job.errorString();
    return job.error();
}

void tst_DeviceTasks::bindings()
{
    QScopedPointer<Job> byName(JobRegistration::create(QStringLiteral("GetLabelJob")));
    QVERIFY(qobject_cast<GetLabelJob*>(byName.data()));

    // A derived device class runs the standard tasks through its base's binding.
    QSharedPointer<VRNObject> tx30(new TX30Object);
    tx30->setNodeAddress(m_simMotor->address());
    tx30->attach(m_wire->bus);
    VRNObjectWorker tx30Worker(tx30);
    GetLabelJob label;
    QVERIFY(tx30Worker.queue()->enqueue(label, 0));
    QVERIFY(waitEnd(label));
    QCOMPARE(label.error(), Job::NoError);
    QVERIFY(qobject_cast<GetLabelTask*>(label.task()));
    QCOMPARE(tx30->label(), m_simMotor->label());

    // Discovery is bound to the bus only.
    BusDiscoverJob discover;
    QCOMPARE(run(discover), Job::NoTaskError);
    QVERIFY(m_worker->jobNames().contains(QStringLiteral("SetGroupsJob")));
}

void tst_DeviceTasks::replyChecks_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<bool>("acceptAny");
    QTest::addColumn<QString>("error");

    const VRN::Addr node = VRN::makeAddr(VRN::NodeKeypad, 0x000200);
    const QByteArray busyNack = nodeFrame(DTS::Nack, node, QByteArray(1, char(DTS::NackBusy)));
    const QByteArray version = nodeFrame(DTS::PostNodeAppVersion, node, QByteArray::fromHex("0201000011"));
    const QByteArray longLabel = nodeFrame(DTS::PostNodeLabel, node, QByteArray(17, 'x'));
    // Bytes that start no frame reach the call only once a good frame follows them.
    const QByteArray garbage = QByteArray::fromHex("00ff13") + nodeFrame(DTS::PostNodeLabel, node, "Hall");

    QTest::newRow("nack") << busyNack << false << QStringLiteral("Nack(%1)").arg(DTS::toString(DTS::NackBusy));
    QTest::newRow("reply of another kind") << version << false << QStringLiteral("Unexpected reply(75)");
    QTest::newRow("expected kind, bad size") << longLabel << false
                                             << QStringLiteral("Unexpected reply(%1)").arg(QString(longLabel.toHex().toUpper()));
    QTest::newRow("invalid frame") << garbage << true << QStringLiteral("Invalid message(00FF13)");
    QTest::newRow("silence") << QByteArray() << false << QStringLiteral("Timeout error");
}

void tst_DeviceTasks::replyChecks()
{
    QFETCH(QByteArray, reply);
    QFETCH(bool, acceptAny);
    QFETCH(QString, error);

    m_simStd->setSilent(true);
    m_wire->bus->acceptAnyFrame = acceptAny;
    if (!reply.isEmpty())
        m_wire->script.append(reply);
    const StdConfigData before = stdObj()->proxyStdConfig();
    QString text;
    QCOMPARE(run(new GetLabelTask(m_std.data()), &text), Job::TaskFailedError);
    QCOMPARE(text, error);
    QVERIFY(stdObj()->proxyStdConfig().compareStd(before));
}

void tst_DeviceTasks::objectMissing_data()
{
    QTest::addColumn<int>("situation");
    QTest::addColumn<QString>("error");
    QTest::newRow("no bus") << 0 << QStringLiteral("Bus not available");
    QTest::newRow("other call error") << 1 << QStringLiteral("SetLabelTask failed");
    QTest::newRow("object of another class") << 2 << QStringLiteral("Internal error(no VRNObject)");
    QTest::newRow("no object") << 3 << QStringLiteral("Internal error(no VRNObject)");
}

void tst_DeviceTasks::objectMissing()
{
    QFETCH(int, situation);
    QFETCH(QString, error);

    Task* task = nullptr;
    switch (situation) {
    case 0:
        m_std->attach(nullptr);
        task = new GetLabelTask(m_std.data());
        break;
    case 1: // longer than a node's label: the call ends at once with an error
        task = new SetLabelTask(QByteArray(17, 'x'), m_std.data());
        break;
    case 2:
        task = new GetLabelTask(m_wire->bus);
        break;
    default:
        task = new GetGroupsTask(nullptr);
    }
    QString text;
    QCOMPARE(run(task, &text), Job::TaskFailedError);
    QCOMPARE(text, error);
}

void tst_DeviceTasks::objectGoneWhileRequestOut()
{
    m_worker.reset();
    // The device goes the moment its request is on the wire.
    connect(m_wire->bus, &Bus::messageSent, this, [this] { m_std.reset(); });
    QString text;
    QCOMPARE(run(new GetLabelTask(m_std.data()), &text), Job::TaskFailedError);
    QCOMPARE(text, QStringLiteral("Internal error(no VRNObject)"));
    QCOMPARE(m_wire->sentOf(DTS::GetNodeLabel).size(), 1);
}

void tst_DeviceTasks::labelSeeding_data()
{
    QTest::addColumn<QByteArray>("pending");
    QTest::newRow("local not known") << QByteArray();
    QTest::newRow("pending edit") << QByteArray("Kitchen");
}

void tst_DeviceTasks::labelSeeding()
{
    QFETCH(QByteArray, pending);
    if (!pending.isNull()) {
        StdConfigData local = stdObj()->localStdConfig();
        local.data().label = pending;
        stdObj()->updateLocalStdConfig(local);
    }
    GetLabelJob job;
    QCOMPARE(run(job), Job::NoError);
    QCOMPARE(stdObj()->proxyStdConfig().getConstData().label, QByteArray("Hall"));
    QCOMPARE(stdObj()->localStdConfig().getConstData().label, pending.isNull() ? QByteArray("Hall") : pending);
}

void tst_DeviceTasks::firstReadsSeedLocal()
{
    SimNode::AppVersion v;
    v.major = 3;
    v.minor = 1;
    v.build = 7;
    m_simStd->setAppVersion(v);
    m_simStd->setGroup(2, 0x00ABCD);
    GetFwVersionJob version;
    GetGroupsJob groups;
    QCOMPARE(run(version), Job::NoError);
    QCOMPARE(run(groups), Job::NoError);
    const StdConfigData local = stdObj()->localStdConfig();
    QCOMPARE(local.getConstData().appVersion.toString(), QStringLiteral("3.1.0.7"));
    QCOMPARE(local.getConstData().groups, stdObj()->proxyStdConfig().getConstData().groups);
    QCOMPARE(local.getConstData().groups.value(2), 0x00ABCDu);

    // A second read of a changed device updates the proxy only.
    m_simStd->setGroup(2, 0x000777);
    QCOMPARE(run(groups), Job::NoError);
    QCOMPARE(stdObj()->proxyStdConfig().getConstData().groups.value(2), 0x000777u);
    QCOMPARE(stdObj()->localStdConfig().getConstData().groups.value(2), 0x00ABCDu);
}

void tst_DeviceTasks::invalidVersion()
{
    SimNode::AppVersion none;
    none.major = 0xFF;
    m_simStd->setAppVersion(none);
    QString text;
    QCOMPARE(run(new GetFwVersionTask(m_std.data()), &text), Job::TaskFailedError);
    QCOMPARE(text, QStringLiteral("Internal error(firwmare version is not valid)"));
    QVERIFY(!stdObj()->proxyStdConfig().isVersionValid());
}

void tst_DeviceTasks::groupRead()
{
    for (int i = 0; i < SimNode::GroupSlots; ++i)
        m_simStd->setGroup(i, i % 3 ? 0x010000u + unsigned(i) : 0u);
    GetGroupsJob job;
    QCOMPARE(run(job), Job::NoError);
    const QList<VRNMessage> asked = m_wire->sentOf(DTS::GetGroupAddr);
    QCOMPARE(asked.size(), 16);
    for (int i = 0; i < asked.size(); ++i)
        QCOMPARE(int(quint8(asked.at(i).payload().at(0))), i);
    QList<VRN::Addr> expected;
    for (quint32 g : m_simStd->groups())
        expected.append(g);
    QCOMPARE(stdObj()->proxyStdConfig().getConstData().groups, expected);
}

void tst_DeviceTasks::groupReadTimeout()
{
    for (int i = 0; i < SimNode::GroupSlots; ++i)
        m_simStd->setGroup(i, 0x020000u + unsigned(i));
    // The node falls silent when slot 5 is asked for.
    connect(m_wire->bus, &Bus::messageSent, this, [this](const BusMessage& m) {
        const VRNMessage request(m);
        if (request.cmd() == DTS::GetGroupAddr && request.payload().at(0) == 5)
            m_simStd->setSilent(true);
    });
    GetGroupsJob job;
    QCOMPARE(run(job), Job::TaskFailedError);
    QCOMPARE(job.errorString(), QStringLiteral("Timeout error"));
    const QList<VRN::Addr> read = stdObj()->proxyStdConfig().getConstData().groups;
    QCOMPARE(read, (QList<VRN::Addr>{0x020000, 0x020001, 0x020002, 0x020003, 0x020004}));
    QVERIFY(!stdObj()->localStdConfig().isGroupValid());
}

void tst_DeviceTasks::setGroups_data()
{
    QTest::addColumn<QVariantList>("groups");
    QTest::addColumn<int>("nackAt"); // -1: every write is acknowledged
    QTest::newRow("three") << QVariantList{0x10, 0x20, 0x30} << -1;
    QTest::newRow("sixteen") << [] {
        QVariantList all;
        for (int i = 0; i < 16; ++i)
            all.append(0x300 + i);
        return all;
    }() << -1;
    QTest::newRow("empty") << QVariantList() << -1;
    QTest::newRow("numbers as text") << QVariantList{QStringLiteral("7"), 8} << -1;
    QTest::newRow("second write refused") << QVariantList{0x10, 0x20, 0x30} << 1;
}

void tst_DeviceTasks::setGroups()
{
    QFETCH(QVariantList, groups);
    QFETCH(int, nackAt);

    // Slots read before: the local list takes the written entries.
    GetGroupsJob read;
    QCOMPARE(run(read), Job::NoError);
    m_wire->sent.clear();
    if (nackAt >= 0) {
        connect(m_wire->bus, &Bus::messageSent, this, [this, nackAt](const BusMessage& m) {
            if (m_wire->sentOf(DTS::SetGroupAddr).size() == nackAt + 1 && VRNMessage(m).cmd() == DTS::SetGroupAddr)
                m_simStd->setForcedNack(DTS::NackNodeLocked);
        });
    }
    SetGroupsJob job;
    job.setGroups(groups);
    const Job::Error error = run(job);
    const QList<VRNMessage> writes = m_wire->sentOf(DTS::SetGroupAddr);
    const int written = nackAt < 0 ? groups.size() : nackAt;
    QCOMPARE(writes.size(), nackAt < 0 ? groups.size() : nackAt + 1);
    for (int i = 0; i < writes.size(); ++i) {
        const QByteArray p = writes.at(i).payload();
        QCOMPARE(int(quint8(p.at(0))), i);
        QCOMPARE(VRNDataReader(p.mid(1)).readUint24(), groups.at(i).toUInt());
    }
    for (int i = 0; i < written; ++i) {
        QCOMPARE(m_simStd->group(i), groups.at(i).toUInt());
        QCOMPARE(stdObj()->localStdConfig().getConstData().groups.at(i), groups.at(i).toUInt());
    }
    if (nackAt < 0) {
        QCOMPARE(error, Job::NoError);
    } else {
        QCOMPARE(error, Job::TaskFailedError);
        QCOMPARE(job.errorString(), QStringLiteral("Nack(%1)").arg(DTS::toString(DTS::NackNodeLocked)));
    }
}

void tst_DeviceTasks::setLabel()
{
    SetLabelJob job;
    job.setLabel("Porch");
    QCOMPARE(run(job), Job::NoError);
    QCOMPARE(m_simStd->label(), QByteArray("Porch"));
    QCOMPARE(stdObj()->localStdConfig().getConstData().label, QByteArray("Porch"));
    QVERIFY(!stdObj()->proxyStdConfig().isLabelValid()); // only a read fills the proxy

    // The node refuses: the local record keeps what it had.
    m_simStd->setForcedNack(DTS::NackNodeLocked);
    job.setLabel("Attic");
    QCOMPARE(run(job), Job::TaskFailedError);
    QCOMPARE(stdObj()->localStdConfig().getConstData().label, QByteArray("Porch"));
}

void tst_DeviceTasks::nodeDiscoveryMark()
{
    SetNodeDiscoveryJob job;
    job.setEnabled(false);
    QCOMPARE(run(job), Job::NoError);
    QVERIFY(m_simStd->discoveryMark());
    job.setEnabled(true);
    QCOMPARE(run(job), Job::NoError);
    QVERIFY(!m_simStd->discoveryMark());
    QCOMPARE(m_wire->sentOf(DTS::SetNodeDiscovery).size(), 2);
}

QTEST_MAIN(tst_DeviceTasks)
#include "tst_devicetasks.moc"
