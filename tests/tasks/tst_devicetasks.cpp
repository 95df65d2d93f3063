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

#include <QProcess>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QTranslator>
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
    void labelSeeding_data();
    void labelSeeding();
    void firstReadsSeedLocal();
    void invalidVersion();
    void failureTextsTranslated();
    void groupReplyForAnotherSlot();
    void groupReadTimeout();
    void setGroups_data();
    void setGroups();
    void setGroupsSlotRefused();
    void setLabel();
    void nodeDiscoveryMark();

private:
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
    m_std = attachedObject<VRNStdObject>(*m_wire, m_simStd);
    m_motor = attachedObject<VRNDCMotorObject>(*m_wire, m_simMotor);
    m_worker.reset(new VRNObjectWorker(m_std));
}

void tst_DeviceTasks::cleanup()
{
    m_worker.reset();
    m_std.reset();
    m_motor.reset();
    m_wire.reset();
}

void tst_DeviceTasks::bindings()
{
    // A derived device class runs the standard tasks through its base's binding.
    QSharedPointer<VRNObject> tx30 = attachedObject<TX30Object>(*m_wire, m_simMotor);
    VRNObjectWorker tx30Worker(tx30);
    GetLabelJob label;
    QVERIFY(tx30Worker.queue()->enqueue(label, 0));
    QVERIFY(waitEnd(label));
    QCOMPARE(label.error(), Job::NoError);
    QVERIFY(qobject_cast<GetLabelTask*>(label.task()));
    QCOMPARE(tx30->label(), m_simMotor->label());

    // Discovery is bound to the bus only.
    BusDiscoverJob discover;
    QCOMPARE(runJob(*m_worker, discover), Job::NoTaskError);
}

void tst_DeviceTasks::replyChecks_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<bool>("acceptAny");
    QTest::addColumn<QString>("error");

    const VRN::Addr node = VRN::makeAddr(VRN::NodeKeypad, 0x000200);
    const QByteArray busyNack = nodeFrame(DTS::Nack, node, QByteArray(1, char(DTS::NackBusy)) + char(DTS::GetNodeLabel));
    const QByteArray version = nodeFrame(DTS::PostNodeAppVersion, node, QByteArray::fromHex("0201000011"));
    const QByteArray longLabel = nodeFrame(DTS::PostNodeLabel, node, QByteArray(17, 'x'));
    // Bytes that start no frame reach the call only once a good frame follows them.
    const QByteArray garbage = QByteArray::fromHex("00ff13") + nodeFrame(DTS::PostNodeLabel, node, "Hall");

    QTest::newRow("nack") << busyNack << false << QStringLiteral("Nack(%1)").arg(DTS::toString(DTS::NackBusy));
    // The bus gives a task only the replies to its request: a reply of
    // another kind waits out the timeout on the bus, and meets the task's own
    // check only on a bus that hands over any frame.
    QTest::newRow("reply of another kind") << version << true << QStringLiteral("Unexpected reply(75)");
    QTest::newRow("reply of another kind, matched") << version << false << QStringLiteral("Timeout error");
    QTest::newRow("expected kind, bad size") << longLabel << false
                                             << QStringLiteral("Unexpected reply(%1)").arg(QString(longLabel.toHex().toUpper()));
    QTest::newRow("invalid frame") << garbage << true << QStringLiteral("Invalid message(00FF13)");
    QTest::newRow("empty frame") << QByteArray() << true << QStringLiteral("Invalid message()");
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
    else if (acceptAny) // a frame of no bytes, as a transport of another make may hand over
        connect(m_wire->bus, &Bus::messageSent, this, [this] {
            QTimer::singleShot(0, m_wire->bus, [this] { m_wire->bus->deliver(QByteArray()); });
        });
    const StdConfigData before = stdObj()->proxyStdConfig();
    QString text;
    QCOMPARE(runTask(new GetLabelTask(m_std.data()), &text), Job::TaskFailedError);
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
    QCOMPARE(runTask(task, &text), Job::TaskFailedError);
    QCOMPARE(text, error);
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
    QCOMPARE(runJob(*m_worker, job), Job::NoError);
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
    QCOMPARE(runJob(*m_worker, version), Job::NoError);
    QCOMPARE(runJob(*m_worker, groups), Job::NoError);
    const StdConfigData local = stdObj()->localStdConfig();
    QCOMPARE(local.getConstData().appVersion.toString(), QStringLiteral("3.1.0.7"));
    QCOMPARE(local.getConstData().groups, stdObj()->proxyStdConfig().getConstData().groups);
    QCOMPARE(local.getConstData().groups.value(2), 0x00ABCDu);

    // A second read of a changed device updates the proxy only.
    m_simStd->setGroup(2, 0x000777);
    QCOMPARE(runJob(*m_worker, groups), Job::NoError);
    QCOMPARE(stdObj()->proxyStdConfig().getConstData().groups.value(2), 0x000777u);
    QCOMPARE(stdObj()->localStdConfig().getConstData().groups.value(2), 0x00ABCDu);
}

void tst_DeviceTasks::invalidVersion()
{
    SimNode::AppVersion none;
    none.major = 0xFF;
    m_simStd->setAppVersion(none);
    QString text;
    QCOMPARE(runTask(new GetFwVersionTask(m_std.data()), &text), Job::TaskFailedError);
    QCOMPARE(text, QStringLiteral("Internal error(firwmare version is not valid)"));
    QVERIFY(!stdObj()->proxyStdConfig().isVersionValid());
}

// A translation file made of the task sources by lupdate holds every failure
// text under the context the task looks it up in.
void tst_DeviceTasks::failureTextsTranslated()
{
    const QString lupdate = QStringLiteral(VRN_LUPDATE);
    const QString lrelease = QStringLiteral(VRN_LRELEASE);
    if (lupdate.endsWith(QLatin1String("NOTFOUND")) || lrelease.endsWith(QLatin1String("NOTFOUND")))
        QSKIP("Qt's translation tools (lupdate, lrelease) are not installed");
    QTemporaryDir dir;
    const QString ts = dir.filePath(QStringLiteral("tasks.ts"));
    const QString qm = dir.filePath(QStringLiteral("tasks.qm"));
    QCOMPARE(QProcess::execute(lupdate, {QStringLiteral("-silent"), QStringLiteral(VRN_TASK_SOURCES), QStringLiteral("-ts"), ts}), 0);
    // Every text the file holds comes out marked with "~".
    QCOMPARE(QProcess::execute(lrelease, {QStringLiteral("-silent"), QStringLiteral("-markuntranslated"), QStringLiteral("~"),
                                          ts, QStringLiteral("-qm"), qm}), 0);
    QTranslator translator;
    QVERIFY(translator.load(qm));
    QCoreApplication::installTranslator(&translator);
    const auto uninstall = qScopeGuard([&] { QCoreApplication::removeTranslator(&translator); });

    SimNode::AppVersion none;
    none.major = 0xFF;
    m_simStd->setAppVersion(none);
    QString text;
    runTask(new GetFwVersionTask(m_std.data()), &text);
    QCOMPARE(text, QStringLiteral("~Internal error(firwmare version is not valid)"));
    runTask(new SetLabelTask(QByteArray(17, 'x'), m_std.data()), &text);
    QCOMPARE(text, QStringLiteral("~SetLabelTask failed"));
    runTask(new GetGroupsTask(nullptr), &text);
    QCOMPARE(text, QStringLiteral("~Internal error(no VRNObject)"));
    m_simStd->setSilent(true);
    runTask(new GetLabelTask(m_std.data()), &text);
    QCOMPARE(text, QStringLiteral("~Timeout error"));
}

void tst_DeviceTasks::groupReplyForAnotherSlot()
{
    for (int i = 0; i < SimNode::GroupSlots; ++i)
        m_simStd->setGroup(i, i % 3 ? 0x030000u + unsigned(i) : 0u);
    // Asked for slot 3, a frame for slot 9 comes first: it answers nothing
    // and is dropped; the node's own answer fills slot 3.
    connect(m_wire->bus, &Bus::messageSent, this, [this](const BusMessage& m) {
        const VRNMessage request(m);
        if (request.cmd() == DTS::GetGroupAddr && request.payload().at(0) == 3)
            m_wire->script.append(nodeFrame(DTS::PostGroupAddr, m_simStd->address(), QByteArray::fromHex("09030009")));
    });
    const quint64 unmatched = m_wire->bus->unmatchedCount();
    GetGroupsJob job;
    QCOMPARE(runJob(*m_worker, job), Job::NoError);
    // Every slot asked for in order, each filled from its own answer.
    const QList<VRNMessage> asked = m_wire->sentOf(DTS::GetGroupAddr);
    QCOMPARE(asked.size(), 16);
    QList<VRN::Addr> expected;
    for (int i = 0; i < asked.size(); ++i) {
        QCOMPARE(int(quint8(asked.at(i).payload().at(0))), i);
        expected.append(m_simStd->group(i));
    }
    QCOMPARE(stdObj()->proxyStdConfig().getConstData().groups, expected);
    QCOMPARE(m_wire->bus->unmatchedCount(), unmatched + 1);
}

void tst_DeviceTasks::groupReadTimeout()
{
    for (int i = 0; i < SimNode::GroupSlots; ++i)
        m_simStd->setGroup(i, 0x020000u + unsigned(i));
    // The node falls silent when slot 5 is asked for.
    const auto silence = connect(m_wire->bus, &Bus::messageSent, this, [this](const BusMessage& m) {
        const VRNMessage request(m);
        if (request.cmd() == DTS::GetGroupAddr && request.payload().at(0) == 5)
            m_simStd->setSilent(true);
    });
    GetGroupsJob job;
    QCOMPARE(runJob(*m_worker, job), Job::TaskFailedError);
    QCOMPARE(job.errorString(), QStringLiteral("Timeout error"));
    const QList<VRN::Addr> read = stdObj()->proxyStdConfig().getConstData().groups;
    QCOMPARE(read, (QList<VRN::Addr>{0x020000, 0x020001, 0x020002, 0x020003, 0x020004}));
    QVERIFY(!stdObj()->localStdConfig().isGroupValid());

    disconnect(silence);
    m_simStd->setSilent(false);
    const auto slotsAsked = [this] {
        QList<int> asked;
        for (const VRNMessage& m : m_wire->sentOf(DTS::GetGroupAddr))
            asked << quint8(m.payload().at(0));
        m_wire->sent.clear();
        return asked;
    };
    slotsAsked();
    // The place the job kept belongs to its node: on another device the
    // same job reads from slot 0.
    GetGroupsJob copied;
    copied.setProperty(DeviceTask::ResumeProperty, job.property(DeviceTask::ResumeProperty));
    VRNObjectWorker motorWorker(m_motor);
    QCOMPARE(runJob(motorWorker, copied), Job::NoError);
    QCOMPARE(slotsAsked().first(), 0);
    // Run again on its node, the job asks for the slot that failed and those
    // after it, and the list comes out whole and in order.
    QCOMPARE(runJob(*m_worker, job), Job::NoError);
    QCOMPARE(slotsAsked(), (QList<int>{5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15}));
    QCOMPARE(stdObj()->proxyStdConfig().getConstData().groups.size(), 16);
    QCOMPARE(stdObj()->proxyStdConfig().getConstData().groups, stdObj()->localStdConfig().getConstData().groups);
    QCOMPARE(stdObj()->proxyStdConfig().getConstData().groups.last(), 0x02000Fu);
    // Once whole, a further run reads the list anew.
    QCOMPARE(runJob(*m_worker, job), Job::NoError);
    QCOMPARE(slotsAsked().size(), 16);
}

void tst_DeviceTasks::setGroups_data()
{
    QTest::addColumn<QVariantList>("groups");
    QTest::newRow("three") << QVariantList{0x10, 0x20, 0x30};
    QTest::newRow("sixteen") << [] {
        QVariantList all;
        for (int i = 0; i < 16; ++i)
            all.append(0x300 + i);
        return all;
    }();
    QTest::newRow("empty") << QVariantList();
    QTest::newRow("numbers as text") << QVariantList{QStringLiteral("7"), 8};
}

void tst_DeviceTasks::setGroups()
{
    QFETCH(QVariantList, groups);

    // Slots read before: the local list takes the written entries.
    GetGroupsJob read;
    QCOMPARE(runJob(*m_worker, read), Job::NoError);
    m_wire->sent.clear();
    SetGroupsJob job;
    job.setGroups(groups);
    QCOMPARE(runJob(*m_worker, job), Job::NoError);
    const QList<VRNMessage> writes = m_wire->sentOf(DTS::SetGroupAddr);
    QCOMPARE(writes.size(), groups.size());
    for (int i = 0; i < writes.size(); ++i) {
        const QByteArray p = writes.at(i).payload();
        QCOMPARE(int(quint8(p.at(0))), i);
        QCOMPARE(VRNDataReader(p.mid(1)).readUint24(), groups.at(i).toUInt());
        QCOMPARE(m_simStd->group(i), groups.at(i).toUInt());
        QCOMPARE(stdObj()->localStdConfig().getConstData().groups.at(i), groups.at(i).toUInt());
    }
}

// A refused slot stops the writing and ends nothing: the job runs until
// whoever queued it takes it off the queue.
void tst_DeviceTasks::setGroupsSlotRefused()
{
    connect(m_wire->bus, &Bus::messageSent, this, [this](const BusMessage& m) {
        if (VRNMessage(m).cmd() == DTS::SetGroupAddr && m_wire->sentOf(DTS::SetGroupAddr).size() == 2)
            m_simStd->setForcedNack(DTS::NackNodeLocked);
    });
    SetGroupsJob job;
    job.setGroups({0x10, 0x20, 0x30});
    QList<QVariantList> refused;
    connect(&job, &Job::started, this, [&] {
        connect(qobject_cast<SetGroupsTask*>(job.task()), &SetGroupsTask::slotFailed, this,
                [&](int slot, const QString& error) { refused.append({slot, error}); });
    });
    QVERIFY(m_worker->queue()->enqueue(job, 0));
    QTRY_COMPARE(refused.size(), 1);
    const QString nack = QStringLiteral("Nack(%1)").arg(DTS::toString(DTS::NackNodeLocked));
    QCOMPARE(refused.first(), (QVariantList{1, nack}));
    QTest::qWait(100);
    QCOMPARE(job.state(), Job::Running);
    QCOMPARE(m_wire->sentOf(DTS::SetGroupAddr).size(), 2);
    QCOMPARE(job.task()->property("failedSlot").toInt(), 1);

    QSignalSpy finished(&job, &Job::finished);
    QVERIFY(m_worker->queue()->dequeue(job));
    QCOMPARE(finished.count(), 1);
    QCOMPARE(job.error(), Job::AbortedError);
}

void tst_DeviceTasks::setLabel()
{
    SetLabelJob job;
    job.setLabel("Porch");
    QCOMPARE(runJob(*m_worker, job), Job::NoError);
    QCOMPARE(m_simStd->label(), QByteArray("Porch"));
    QCOMPARE(stdObj()->localStdConfig().getConstData().label, QByteArray("Porch"));
    QVERIFY(!stdObj()->proxyStdConfig().isLabelValid()); // only a read fills the proxy

    // The node refuses: the local record keeps what it had.
    m_simStd->setForcedNack(DTS::NackNodeLocked);
    job.setLabel("Attic");
    QCOMPARE(runJob(*m_worker, job), Job::TaskFailedError);
    QCOMPARE(stdObj()->localStdConfig().getConstData().label, QByteArray("Porch"));
}

void tst_DeviceTasks::nodeDiscoveryMark()
{
    SetNodeDiscoveryJob job;
    job.setEnabled(false);
    QCOMPARE(runJob(*m_worker, job), Job::NoError);
    QVERIFY(m_simStd->discoveryMark());
    job.setEnabled(true);
    QCOMPARE(runJob(*m_worker, job), Job::NoError);
    QVERIFY(!m_simStd->discoveryMark());
    QCOMPARE(m_wire->sentOf(DTS::SetNodeDiscovery).size(), 2);
}

QTEST_MAIN(tst_DeviceTasks)
#include "tst_devicetasks.moc"
