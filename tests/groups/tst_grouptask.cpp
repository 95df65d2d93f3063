// One job over a group of devices: order and results per device, failures,
// abort on error, the inner job's properties and priority, the group worker
// and its factory, the registry's group membership and group moves.
#include "taskfixture.h"

#include "dts.h"
#include "getgroupsjob.h"
#include "getlabeljob.h"
#include "getpositionjob.h"
#include "groupcontrol.h"
#include "groupfactory.h"
#include "grouptask.h"
#include "grouptaskresultmodel.h"
#include "groupworker.h"
#include "jobregistration.h"
#include "objectfactory.h"
#include "objectselectionmodel.h"
#include "qmlgrouptaskresult.h"
#include "setfactorydefaultjob.h"
#include "setgroupsjob.h"
#include "setlabeljob.h"
#include "simclock.h"
#include "vrnobjectworker.h"
#include "workqueue.h"

#include <QAbstractItemModelTester>
#include <QStandardPaths>
#include <QtTest>

using namespace TaskFixture;

namespace {
using Uuids = QList<unsigned int>;
const unsigned int Missing = 9999;
const QString FindWorker = QStringLiteral("Internal error(failed to find worker)");
} // namespace

class tst_GroupTask : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void emptyGroup();
    void results_data();
    void results();
    void propertiesCarried();
    void jobPriority_data();
    void jobPriority();
    void workerReusedAndCached();
    void skipRemaining();
    void membership();
    void groupMove();
    void resultFollowsDevice();

private:
    /// Registry rows for simulated nodes of `kinds` (node numbers 0x100, 0x101, ...).
    Uuids addDevices(const QList<SimNode::Kind>& kinds);
    /// Queues `job` on the group worker of `group` and waits for its end.
    GroupTaskResultModel* runGroup(QmlJob& job, const Uuids& group);

    QScopedPointer<Wire> m_wire;
    QList<SimNode*> m_nodes;
};

void tst_GroupTask::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
}

void tst_GroupTask::init()
{
    m_wire.reset(new Wire);
    QVERIFY(openRegistry(*m_wire));
}

void tst_GroupTask::cleanup()
{
    GroupFactory::destroy();
    closeRegistry();
    m_wire.reset();
    m_nodes.clear();
}

Uuids tst_GroupTask::addDevices(const QList<SimNode::Kind>& kinds)
{
    static const QHash<SimNode::Kind, VRNObject::Type> types{
        {SimNode::Std, VRNObject::DtsStd}, {SimNode::Motor, VRNObject::DtsMotor}};
    Uuids uuids;
    for (SimNode::Kind kind : kinds) {
        SimNode* node = m_wire->net.addNode(kind, 0x100 + m_nodes.size());
        node->setLabel("L" + QByteArray::number(m_nodes.size()));
        m_nodes.append(node);
        const auto obj = ObjectFactory::instance()->createObject(types.value(kind), node->number());
        uuids.append(obj->uuid());
    }
    return uuids;
}

GroupTaskResultModel* tst_GroupTask::runGroup(QmlJob& job, const Uuids& group)
{
    const QSharedPointer<GroupWorker> worker = GroupFactory::instance()->groupWorker(group);
    if (!worker->enqueue(&job) || !waitEnd(job, 5000) || job.error() != Job::NoError)
        return nullptr;
    return qvariant_cast<GroupTaskResultModel*>(job.result());
}

void tst_GroupTask::emptyGroup()
{
    GetLabelJob job;
    GroupTaskResultModel* result = runGroup(job, {});
    QVERIFY(result);
    QCOMPARE(result->count(), 0);
    QCOMPARE(job.state(), Job::Finished);
}

// Row per device kind of a three-device group with the middle one failing
// or missing: entries in group order, failures recorded, and with
// abortOnError the devices after the first failure get no entry.
void tst_GroupTask::results_data()
{
    QTest::addColumn<QString>("jobClass");
    QTest::addColumn<QString>("middle");
    QTest::addColumn<QVariant>("abortOnError");
    QTest::addColumn<QStringList>("errors");
    QTest::addColumn<int>("count");

    const QString nack = QStringLiteral("Nack(%1)");
    QTest::newRow("all ok") << "GetLabelJob" << "ok" << QVariant() << QStringList{"", "", ""} << 3;
    QTest::newRow("failing, go on") << "GetLabelJob" << "nack" << QVariant(false)
                                    << QStringList{"", "*", ""} << 3;
    QTest::newRow("failing, abort") << "GetLabelJob" << "nack" << QVariant(true) << QStringList{"", "*"} << 2;
    QTest::newRow("abort as text") << "GetLabelJob" << "nack" << QVariant(QStringLiteral("true"))
                                   << QStringList{"", "*"} << 2;
    QTest::newRow("no worker, go on despite abort") << "GetLabelJob" << "missing" << QVariant(true)
                                                    << QStringList{"", FindWorker, ""} << 3;
    QTest::newRow("mixed kinds") << "GetPositionJob" << "std" << QVariant()
                                 << QStringList{"", "No task for GetPositionJob on VRNStdObject", ""} << 3;
}

void tst_GroupTask::results()
{
    QFETCH(QString, jobClass);
    QFETCH(QString, middle);
    QFETCH(QVariant, abortOnError);
    QFETCH(QStringList, errors);
    QFETCH(int, count);

    Uuids group = addDevices({SimNode::Motor, middle == "std" ? SimNode::Std : SimNode::Motor, SimNode::Motor});
    for (SimNode* node : qAsConst(m_nodes))
        node->setLimits(100, 5000);
    if (middle == "nack")
        m_nodes.at(1)->setForcedNack(DTS::NackDataOutOfRange);
    if (middle == "missing") {
        group[1] = Missing;
        QTest::ignoreMessage(QtWarningMsg, "[ObjectFactory]: unknown worker 9999");
    }
    if (middle == "std")
        QTest::ignoreMessage(QtWarningMsg, "[Worker]: No task for GetPositionJob on VRNStdObject");

    QScopedPointer<Job> job(JobRegistration::create(jobClass));
    if (abortOnError.isValid())
        job->setProperty("abortOnError", abortOnError);
    const QSharedPointer<GroupWorker> worker = GroupFactory::instance()->groupWorker(group);
    GroupTaskResultModel* result = nullptr;
    QScopedPointer<QAbstractItemModelTester> tester;
    connect(job.data(), &Job::started, this, [&] {
        result = static_cast<GroupTask*>(job->task())->result();
        tester.reset(new QAbstractItemModelTester(result, QAbstractItemModelTester::FailureReportingMode::QtTest));
    });
    QVERIFY(worker->enqueue(qobject_cast<QmlJob*>(job.data())));
    QVERIFY(waitEnd(*job, 5000));
    QCOMPARE(job->error(), Job::NoError);
    QVERIFY(result);

    QCOMPARE(result->uuids(), group.mid(0, count));
    for (int i = 0; i < errors.size(); ++i) {
        const QString text = result->errorString(group.at(i));
        QCOMPARE(result->state(group.at(i)), Job::Finished);
        QCOMPARE(result->error(group.at(i)) == Job::NoError, errors.at(i).isEmpty());
        if (errors.at(i) == "*")
            QVERIFY2(text.startsWith("Nack("), qPrintable(text));
        else
            QCOMPARE(text, errors.at(i));
    }
    QCOMPARE(result->failedCount(), errors.size() - errors.count(QString()));
    if (jobClass == "GetLabelJob" && count == 3)
        QCOMPARE(ObjectFactory::instance()->object(group.at(2))->label(), m_nodes.at(2)->label());
}

// Declared and dynamic properties reach every device's job.
void tst_GroupTask::propertiesCarried()
{
    const Uuids group = addDevices({SimNode::Std, SimNode::Motor});
    SetLabelJob job;
    job.setLabel("Atrium");
    job.setName(QStringLiteral("rename"));
    job.setProperty("note", 42);
    job.setProperty("jobPriority", QStringLiteral("x"));
    GroupTaskResultModel* result = runGroup(job, group);
    QVERIFY(result);
    QCOMPARE(result->failedCount(), 0);
    for (SimNode* node : qAsConst(m_nodes))
        QCOMPARE(node->label(), QByteArray("Atrium"));
    auto* task = static_cast<GroupTask*>(job.task());
    QCOMPARE(task->innerJob()->metaObject(), &SetLabelJob::staticMetaObject);
    QCOMPARE(task->innerJob()->property("note").toInt(), 42);
    QCOMPARE(task->innerJob()->name(), QStringLiteral("rename"));
    QCOMPARE(task->jobPriority(), 0);
    QVERIFY(!task->abortOnError());
}

// The device's queue holds a job of priority 1 behind one of 9; the
// group's copy is queued with the group job's "jobPriority".
void tst_GroupTask::jobPriority_data()
{
    QTest::addColumn<int>("priority");
    QTest::addColumn<bool>("groupFirst");
    QTest::newRow("higher") << 5 << true;
    QTest::newRow("lower") << 0 << false;
}

void tst_GroupTask::jobPriority()
{
    QFETCH(int, priority);
    QFETCH(bool, groupFirst);
    const Uuids group = addDevices({SimNode::Std});
    const QSharedPointer<VRNObjectWorker> device = ObjectFactory::instance()->objectWorker(group.first());
    GetLabelJob running, waiting, grouped;
    grouped.setProperty("jobPriority", priority);
    QStringList order;
    connect(&waiting, &Job::started, this, [&] { order << "waiting"; });
    QVERIFY(device->queue()->enqueue(running, 9));
    QVERIFY(device->queue()->enqueue(waiting, 1));
    connect(&grouped, &Job::started, this, [&] {
        connect(static_cast<GroupTask*>(grouped.task())->innerJob(), &Job::started, this, [&] { order << "group"; });
    });
    QVERIFY(GroupFactory::instance()->groupWorker(group)->enqueue(&grouped));
    QVERIFY(waitEnd(grouped) && waitEnd(waiting));
    QCOMPARE(order, groupFirst ? QStringList({"group", "waiting"}) : QStringList({"waiting", "group"}));
}

// Same list, same worker: a second job waits for the first; the cache tells
// lists apart by order and content; a selection gives its list's worker.
void tst_GroupTask::workerReusedAndCached()
{
    const Uuids group = addDevices({SimNode::Std, SimNode::Std});
    GroupFactory* factory = GroupFactory::instance();
    const QSharedPointer<GroupWorker> worker = factory->groupWorker(group);
    QCOMPARE(factory->groupWorker(group + Uuids{group.first()}), worker);
    QVERIFY(factory->groupWorker({group.at(1), group.at(0)}) != worker);
    QVERIFY(factory->groupWorker(group.mid(0, 1)) != worker);
    ObjectSelectionModel selection(ObjectFactory::instance()->database());
    selection.addItems(ObjectFactory::TypeColumn, VRNObject::DtsStd);
    QCOMPARE(factory->groupWorker(&selection), worker);
    QCOMPARE(factory->cachedCount(), 3);

    GetLabelJob first, second;
    QVERIFY(worker->enqueue(&first) && worker->enqueue(&second));
    QVERIFY(waitEnd(first) && waitEnd(second));
    for (const Job* job : {&first, &second})
        QCOMPARE(qvariant_cast<GroupTaskResultModel*>(job->result())->okCount(), 2);

    for (int i = 0; i < 40; ++i)
        factory->groupWorker({unsigned(1000 + i)});
    QCOMPARE(factory->cachedCount(), 32);
    factory->clear();
    QCOMPARE(factory->cachedCount(), 0);
}

// Stopping a long run: the device under way ends and keeps its entry, the
// waiting devices get none, the group finishes.
void tst_GroupTask::skipRemaining()
{
    const Uuids group = addDevices({SimNode::Std, SimNode::Std, SimNode::Std, SimNode::Std});
    GetLabelJob job;
    connect(&job, &Job::started, this, [&] {
        auto* task = static_cast<GroupTask*>(job.task());
        connect(task, &GroupTask::deviceDone, task, &GroupTask::skipRemaining);
    });
    QVERIFY(GroupFactory::instance()->groupWorker(group)->enqueue(&job));
    QVERIFY(waitEnd(job));
    auto* task = static_cast<GroupTask*>(job.task());
    QCOMPARE(job.error(), Job::NoError);
    QCOMPARE(task->result()->uuids(), group.mid(0, 1));
}

// Group reads and writes keep DevicesGroups in step; saving an object leaves it alone.
void tst_GroupTask::membership()
{
    const Uuids group = addDevices({SimNode::Std, SimNode::Motor});
    for (SimNode* node : qAsConst(m_nodes)) {
        for (int slot = 0; slot < SimNode::GroupSlots; ++slot)
            node->setGroup(slot, 0);
    }
    m_nodes.at(0)->setGroup(3, 0x0F0001);
    m_nodes.at(1)->setGroup(0, 0x0F0001);
    m_nodes.at(1)->setGroup(5, 0x0F0002);
    ObjectFactory* registry = ObjectFactory::instance();
    QSignalSpy changed(registry, &ObjectFactory::deviceGroupsChanged);

    GetGroupsJob read;
    QVERIFY(runGroup(read, group));
    QCOMPARE(changed.count(), 2);
    QCOMPARE(registry->groupIds(), Uuids({0x0F0001, 0x0F0002}));
    QCOMPARE(registry->groupMembers(0x0F0001), group);
    QCOMPARE(registry->deviceGroups(group.at(1)), Uuids({0x0F0001, 0x0F0002}));

    // Slot 0 of the motor rewritten; its slot 5 stays as the read found it.
    SetGroupsJob write;
    write.setGroups({0x0F0007, 0x0F0007});
    QVERIFY(runGroup(write, group.mid(1)));
    QCOMPARE(registry->deviceGroups(group.at(1)), Uuids({0x0F0002, 0x0F0007}));
    QCOMPARE(registry->groupMembers(0x0F0001), group.mid(0, 1));

    QSharedPointer<VRNObject> obj = registry->object(group.at(1));
    QVERIFY(registry->save(obj.data()));
    QCOMPARE(registry->deviceGroups(group.at(1)), Uuids({0x0F0002, 0x0F0007}));
    SetFactoryDefaultJob reset;
    reset.setCommand(DTSMotor::FactoryGroups);
    QVERIFY(runGroup(reset, group.mid(1)));
    QCOMPARE(registry->deviceGroups(group.at(1)), Uuids());
    QCOMPARE(m_nodes.at(1)->groups().count(0u), int(SimNode::GroupSlots));
    QVERIFY(registry->destroyObject(group.at(0)));
    QCOMPARE(registry->groupIds(), Uuids());
}

// One frame to a group moves its members only, and nobody answers.
void tst_GroupTask::groupMove()
{
    addDevices({SimNode::Motor, SimNode::Motor, SimNode::Motor, SimNode::Std});
    m_wire->net.setTimeScale(0);
    for (SimNode* node : qAsConst(m_nodes)) {
        node->setLimits(100, 5000);
        node->setPosition(100);
    }
    m_nodes.at(0)->setGroup(2, 0x0F0003);
    m_nodes.at(2)->setGroup(15, 0x0F0003);
    m_nodes.at(2)->setGroup(0, 0x0F0004);

    GroupControl control;
    QSignalSpy sent(&control, &GroupControl::sent);
    QVERIFY(control.moveTo(0x0F0003, DTSMotor::MoveToPercent, 100));
    QVERIFY(sent.wait());
    QCOMPARE(sent.first().at(1).toBool(), true);
    m_wire->net.clock()->advance(60 * 1000000LL);
    QCOMPARE(m_nodes.at(0)->position(), quint16(5000));
    QCOMPARE(m_nodes.at(1)->position(), quint16(100));
    QCOMPARE(m_nodes.at(2)->position(), quint16(5000));
    QCOMPARE(m_wire->sent.size(), 1);
    QVERIFY(m_wire->sent.first().dstType() == VRN::AddrGroup);

    QVERIFY(control.stop(0x0F0004));
    // Not a group (0 and beyond 24 bits too: vrnconfig's command-line table).
    QVERIFY(!control.moveTo(0xFFFFFF, DTSMotor::MoveToPercent, 1));
    QVERIFY(!control.moveTo(0x0F0003, 9, 1));
    QVERIFY(sent.wait());
    QCOMPARE(m_wire->sent.size(), 2);
}

// A fetched entry follows its device; without a model it only logs.
void tst_GroupTask::resultFollowsDevice()
{
    const Uuids group = addDevices({SimNode::Std});
    QScopedPointer<GroupTaskResultModel> model(new GroupTaskResultModel);
    QScopedPointer<QmlGroupTaskResult> entry(model->fetch(group.first(), nullptr));
    QVERIFY(!entry->isValid());
    QSignalSpy changed(entry.data(), &QmlGroupTaskResult::changed);
    model->setErrorResult(group.first(), QStringLiteral("Timeout error"));
    QCOMPARE(changed.count(), 1);
    QVERIFY(entry->isValid());
    QCOMPARE(entry->errorString(), QStringLiteral("Timeout error"));
    QCOMPARE(entry->error(), Job::TaskFailedError);
    model.reset();
    QTest::ignoreMessage(QtWarningMsg, "[GroupTaskResult]: trying to update a null object");
    entry->update();
    QCOMPARE(entry->errorString(), QStringLiteral("Timeout error"));
}

QTEST_MAIN(tst_GroupTask)
#include "tst_grouptask.moc"
