// Discovery on simulated networks: rounds, marks, lost frames, duplicate node
// numbers, a network discovered twice, and the failures of the bus and the registry.
#include "taskfixture.h"

#include "busdiscoverjob.h"
#include "busdiscovertask.h"
#include "busfactory.h"
#include "dts.h"
#include "objectfactory.h"
#include "workqueue.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

using namespace TaskFixture;

namespace {
using UuidList = QList<unsigned int>;
} // namespace

class tst_BusDiscoverTask : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void emptyBus();
    void nodesOverSeveralRounds();
    void lostFrames();
    void duplicateNodeNumbers();
    void secondDiscovery();
    void failures_data();
    void failures();
    void creationFails();

private:
    /// Runs a discovery on the bus worker; the result, or nothing when it failed.
    UuidList discover(QString* error = nullptr);
    /// (round, nodes found) of every round of the last discovery.
    QList<QPair<int, int>> m_rounds;
    int rows() const;
    /// Device type and node id of the row of `uuid`.
    QPair<int, unsigned int> row(unsigned int uuid) const;

    QTemporaryDir m_home;
    QScopedPointer<Wire> m_wire;
};

void tst_BusDiscoverTask::initTestCase()
{
    QVERIFY(m_home.isValid());
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(m_home.path() + QStringLiteral("/config")));
    qputenv("XDG_DATA_HOME", QFile::encodeName(m_home.path() + QStringLiteral("/data")));
    QStandardPaths::setTestModeEnabled(true);
}

void tst_BusDiscoverTask::init()
{
    m_wire.reset(new Wire);
    QVERIFY(openRegistry(*m_wire));
}

void tst_BusDiscoverTask::cleanup()
{
    closeRegistry();
    m_wire.reset();
}

UuidList tst_BusDiscoverTask::discover(QString* error)
{
    BusDiscoverJob job;
    m_rounds.clear();
    connect(&job, &Job::started, this, [this, &job] {
        connect(qobject_cast<BusDiscoverTask*>(job.task()), &BusDiscoverTask::roundFinished, this,
                [this](int round, int found) { m_rounds.append({round, found}); });
    });
    if (!BusFactory::instance()->busWorker()->queue()->enqueue(job, 0) || !waitEnd(job, 20000))
        return {};
    if (error)
        *error = job.errorString();
    return job.result().value<UuidList>();
}

int tst_BusDiscoverTask::rows() const
{
    QSqlQuery q(QStringLiteral("SELECT COUNT(*) FROM Devices"));
    return q.next() ? q.value(0).toInt() : -1;
}

QPair<int, unsigned int> tst_BusDiscoverTask::row(unsigned int uuid) const
{
    QSqlQuery q;
    q.prepare(QStringLiteral("SELECT type, nodeID FROM Devices WHERE uuid=?"));
    q.addBindValue(uuid);
    if (!q.exec() || !q.next())
        return {-1, 0};
    return {q.value(0).toInt(), q.value(1).toUInt()};
}

void tst_BusDiscoverTask::emptyBus()
{
    QString error = QStringLiteral("not run");
    QCOMPARE(discover(&error), UuidList());
    QCOMPARE(error, QString());
    QCOMPARE(m_wire->sentOf(DTS::SetDeafMode).size(), 1);
    QCOMPARE(m_wire->sentOf(DTS::ClearDiscovery).size(), 1);
    QCOMPARE(m_wire->sentOf(DTS::GetNodeAddr).size(), 4);
    QCOMPARE(m_wire->sentOf(DTS::SetNodeDiscovery).size(), 0);
    QCOMPARE(m_wire->sent.size(), 6);
    // Every broadcast goes without an acknowledgement to every node.
    for (const VRNMessage& m : m_wire->sent) {
        QVERIFY(m.isBroadcast());
        QVERIFY(!m.ack());
    }
    QCOMPARE(m_wire->sent.first().payload(), QByteArray::fromHex("ffffffffffff"));
}

void tst_BusDiscoverTask::nodesOverSeveralRounds()
{
    SimNode* motor = m_wire->net.addNode(SimNode::Motor, 0x000101);
    SimNode* keypad = m_wire->net.addNode(SimNode::Std, 0x000102);
    SimNode* late = m_wire->net.addNode(SimNode::LRU50, 0x000103);
    SimNode* tx30 = m_wire->net.addNode(SimNode::TX30, 0x000104);
    // Refuses its mark, so it answers every round.
    keypad->setForcedNack(DTS::NackNodeLocked, -1);
    // Joins only in the second round.
    late->setSilent(true);
    connect(m_wire->bus, &Bus::messageSent, this, [this, late] {
        if (m_wire->sentOf(DTS::GetNodeAddr).size() == 2)
            late->setSilent(false);
    });
    QTest::ignoreMessage(QtDebugMsg, QRegularExpression(QStringLiteral("already discovered node: 0x03000102")));

    const UuidList found = discover();
    QCOMPARE(found.size(), 4);
    QCOMPARE(rows(), 4);
    // A new node in round 2 restarts the count: four quiet rounds after it.
    QCOMPARE(m_wire->sentOf(DTS::GetNodeAddr).size(), 6);
    QCOMPARE(m_rounds, (QList<QPair<int, int>>{{1, 3}, {2, 4}, {3, 4}, {4, 4}, {5, 4}, {6, 4}}));
    // In address order: motor (type 1), TX30 (2), keypad (3), LRU50 (7).
    QCOMPARE(row(found.at(0)), qMakePair(int(VRNObject::DtsMotor), 0x000101u));
    QCOMPARE(row(found.at(1)), qMakePair(int(VRNObject::TX30), 0x000104u));
    QCOMPARE(row(found.at(2)), qMakePair(int(VRNObject::DtsStd), 0x000102u));
    QCOMPARE(row(found.at(3)), qMakePair(int(VRNObject::LRU50), 0x000103u));
    // Marked once each, released once each.
    const QList<VRNMessage> marks = m_wire->sentOf(DTS::SetNodeDiscovery);
    QCOMPARE(marks.size(), 8);
    for (int i = 0; i < marks.size(); ++i)
        QCOMPARE(marks.at(i).payload(), QByteArray(1, i < 4 ? 1 : 0));
    for (SimNode* node : {motor, late, tx30})
        QVERIFY(!node->discoveryMark());
}

void tst_BusDiscoverTask::lostFrames()
{
    m_wire->net.addDevices(QStringLiteral("std:6,motor:6,dcmotor:3"));
    m_wire->net.setLoss(0.15);
    const UuidList found = discover();
    QCOMPARE(found.size(), 15);
    QCOMPARE(rows(), 15);
    QVERIFY(m_wire->net.framesLost() > 0);
}

void tst_BusDiscoverTask::duplicateNodeNumbers()
{
    m_wire->net.addDevices(QStringLiteral("motor:3"));
    QCOMPARE(m_wire->net.addDuplicates(2), 2);
    // The same number on a node of another type is another device.
    m_wire->net.addNode(SimNode::Std, m_wire->net.nodes().first()->number());
    const UuidList found = discover();
    QCOMPARE(found.size(), 4);
    QCOMPARE(rows(), 4);
    QSqlQuery q(QStringLiteral("SELECT COUNT(DISTINCT nodeID) FROM Devices"));
    QVERIFY(q.next());
    QCOMPARE(q.value(0).toInt(), 3);
    for (SimNode* node : m_wire->net.nodes())
        QVERIFY(!node->discoveryMark());
}

// Nodes listed before get no new row: each is recorded as NoObject and left
// unmarked; the addresses beside "result" say which nodes they were.
void tst_BusDiscoverTask::secondDiscovery()
{
    m_wire->net.addDevices(QStringLiteral("std:3,motor:2"));
    QCOMPARE(discover().size(), 5);
    m_wire->sent.clear();
    for (int i = 0; i < 5; ++i) {
        QTest::ignoreMessage(QtWarningMsg, "[BusDiscoverTask]: failed to createObject");
        QTest::ignoreMessage(QtWarningMsg, "[BusDiscoverTask]: failed to retrieve objectWorker");
    }
    QList<unsigned int> answered;
    BusDiscoverJob job;
    connect(&job, &Job::finished, this, [&] { answered = qobject_cast<BusDiscoverTask*>(job.task())->answeredNodes(); });
    QVERIFY(BusFactory::instance()->busWorker()->queue()->enqueue(job, 0));
    QVERIFY(waitEnd(job, 20000));
    QCOMPARE(job.result().value<UuidList>(), UuidList(QVector<unsigned int>(5, BusDiscoverTask::NoObject).toList()));
    QCOMPARE(rows(), 5);
    QCOMPARE(m_wire->sentOf(DTS::SetNodeDiscovery).size(), 0);
    QList<unsigned int> addrs;
    for (SimNode* node : m_wire->net.nodes())
        addrs.append(node->address());
    std::sort(addrs.begin(), addrs.end());
    QCOMPARE(answered, addrs);
}

void tst_BusDiscoverTask::failures_data()
{
    QTest::addColumn<int>("situation");
    QTest::addColumn<QString>("error");
    QTest::newRow("no bus") << 0 << QStringLiteral("bus not available");
    QTest::newRow("bus closed while collecting") << 1 << QStringLiteral("Discover failed (4)");
}

void tst_BusDiscoverTask::failures()
{
    QFETCH(int, situation);
    QFETCH(QString, error);
    m_wire->net.addDevices(QStringLiteral("std:2"));
    QString text;
    if (situation == 0) {
        Job job;
        QmlObjectWorker worker;
        job.attach(new BusDiscoverTask(worker, nullptr, job));
        job.start();
        QVERIFY(waitEnd(job));
        text = job.errorString();
    } else {
        connect(m_wire->bus, &Bus::messageSent, this, [this](const BusMessage& m) {
            if (VRNMessage(m).cmd() == DTS::GetNodeAddr)
                m_wire->bus->close();
        });
        QCOMPARE(discover(&text), UuidList());
    }
    QCOMPARE(text, error);
    QCOMPARE(rows(), 0);
}

void tst_BusDiscoverTask::creationFails()
{
    m_wire->net.addNode(SimNode::Std, 0x000222);
    // The first answer is damaged; the node answers again next round.
    m_wire->bus->acceptAnyFrame = true;
    m_wire->script.append(QByteArray());
    m_wire->script.append(QByteArray());
    m_wire->script.append(QByteArray::fromHex("00ff13") + nodeFrame(DTS::PostNodeAddr, 0x03000333));
    QTest::ignoreMessage(QtWarningMsg, "[BusDiscoverTask]: invalid message received");
    QSqlQuery(QStringLiteral("DROP TABLE Devices"));
    QTest::ignoreMessage(QtWarningMsg, "[BusDiscoverTask]: failed to createObject");
    QTest::ignoreMessage(QtWarningMsg, "[BusDiscoverTask]: failed to createObject");
    QTest::ignoreMessage(QtWarningMsg, "[BusDiscoverTask]: failed to retrieve objectWorker");
    QTest::ignoreMessage(QtWarningMsg, "[BusDiscoverTask]: failed to retrieve objectWorker");
    const UuidList found = discover();
    // Recorded as found, never marked, and reported as no object.
    QCOMPARE(found, UuidList({BusDiscoverTask::NoObject, BusDiscoverTask::NoObject}));
    QCOMPARE(m_wire->sentOf(DTS::SetNodeDiscovery).size(), 0);
}

QTEST_MAIN(tst_BusDiscoverTask)
#include "tst_busdiscovertask.moc"
