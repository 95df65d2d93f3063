#include "nullvariant.h"
#include "objectfactory.h"
#include "registryfixture.h"
#include "vrnobjectworker.h"
#include "vrnstdobject.h"

#include "qmlsharedobject.h"
#include "tx30object.h"
#include "vrnbus.h"

#include <QPointer>
#include <QSignalSpy>
#include <QTest>

using namespace RegistryFixture;

class tst_ObjectFactory : public QObject
{
    Q_OBJECT

private:
    ObjectFactory* factory() const { return ObjectFactory::instance(); }

    int rows(const QString& table = QStringLiteral("Devices"))
    {
        return sqlValue(QStringLiteral("SELECT COUNT(*) FROM ") + table).toInt();
    }

private slots:
    void initTestCase() { RegistryFixture::initTestCase(); }
    void init() { QVERIFY(openDatabase()); }
    void cleanup() { closeAll(); }

    void withoutConnectionOpensInMemory()
    {
        QSqlDatabase::removeDatabase(QSqlDatabase::defaultConnection);
        QTest::ignoreMessage(QtWarningMsg, "[ObjectFactory]: no database open, opening in-memory database");
        QVERIFY(factory()->createObject(VRNObject::DtsMotor, 1, false));
        QCOMPARE(factory()->database().databaseName(), QStringLiteral(":memory:"));
        QCOMPARE(rows(), 1);
    }

    void creationSignalsAndStoresNodeIdZeroAsNull()
    {
        QSignalSpy created(factory(), &ObjectFactory::objectCreated);
        QTest::ignoreMessage(QtDebugMsg, QRegularExpression("^\\[ObjectFactory\\]: object created with uuid 1$"));
        const auto obj = factory()->createObject(VRNObject::DtsStd, 0, true);
        QVERIFY(obj);
        QCOMPARE(created.count(), 1);
        QCOMPARE(created.first().at(0).value<QSharedPointer<VRNObject>>(), obj);
        QCOMPARE(created.first().at(1).toBool(), true);
        QVERIFY(sqlValue(QStringLiteral("SELECT nodeID IS NULL FROM Devices WHERE uuid = ?"), {obj->uuid()}).toBool());

        // Read back from the row by a fresh factory: node number 0.
        const auto uuid = obj->uuid();
        ObjectFactory::destroy();
        const auto reread = factory()->object(uuid);
        QCOMPARE(VRN::getNumber(reread->address()), 0u);
        QCOMPARE(reread->type(), VRNObject::DtsStd);
    }

    void duplicateIsRefusedWithoutSignal_data()
    {
        QTest::addColumn<unsigned>("nodeID");
        QTest::newRow("node id") << 0x1234u;
        QTest::newRow("NULL node id") << 0u;
    }

    void duplicateIsRefusedWithoutSignal()
    {
        QFETCH(unsigned, nodeID);
        QVERIFY(factory()->createObject(VRNObject::DtsMotor, nodeID, false));
        QSignalSpy created(factory(), &ObjectFactory::objectCreated);
        QTest::ignoreMessage(QtDebugMsg, "[ObjectFactory]: object already exists");
        QVERIFY(!factory()->createObject(VRNObject::DtsMotor, nodeID, false));
        QCOMPARE(created.count(), 0);
        QCOMPARE(rows(), 1);
        // Same node id, other type: another device.
        QVERIFY(factory()->createObject(VRNObject::DtsStd, nodeID, false));
        QCOMPARE(created.count(), 1);
    }

    void lookUpsAgreeWithScanningEveryRow()
    {
        factory(); // the schema
        // NULL node ids, an explicit 0, duplicates, a NULL type.
        const QList<QVariantList> rows{{nullVariant<int>(), 1}, {0, 2},  {7, 2}, {7, 2},
                                       {7, 3},                       {9, nullVariant<int>()}};
        for (const QVariantList& row : rows)
            sql(QStringLiteral("INSERT INTO Devices(nodeID, type) VALUES (?, ?)"), row);
        QList<QPair<unsigned, int>> stored;
        QSqlQuery all = sql(QStringLiteral("SELECT nodeID, type FROM Devices "));
        while (all.next())
            stored.append({all.value(0).toUInt(), all.value(1).toInt()});

        for (unsigned node : {0u, 7u, 8u, 9u}) {
            bool listed = false;
            for (const auto& row : stored)
                listed = listed || row.first == node;
            QCOMPARE(factory()->alreadyListed(node), listed);
            for (int type = 0; type <= VRNObject::TypeMax; ++type) {
                const bool exists = stored.contains({node, type});
                QCOMPARE(factory()->alreadyExist(node, VRNObject::Type(type)), exists);
            }
        }
        QCOMPARE(factory()->nodeAddrs(), (QList<VRN::Addr>{0, 0, 7, 7, 7, 9}));
    }

    // (No worker for an unknown uuid: tst_grouptask's results table.)
    void unknownUuid()
    {
        QVERIFY(!factory()->object(5));
        QVERIFY(!factory()->objectQml(this, 5));
    }

    // Rows no device can have (an older registry, a forged answer): by the
    // number, or by the node type discovery saw.
    void reservedRowsAreInvalid_data()
    {
        QTest::addColumn<quint32>("number");
        QTest::addColumn<int>("seenType");  // -1: none seen
        QTest::addColumn<int>("problem");
        const int valid = ObjectFactory::AddressValid;
        QTest::newRow("device") << 0x000002u << -1 << valid;
        QTest::newRow("below the tool range") << 0xFDFFFFu << -1 << valid;
        QTest::newRow("setting tool seen") << 0x123456u << int(VRN::NodeSettingTool) << valid;
        QTest::newRow("zero") << 0u << -1 << int(ObjectFactory::NumberNone);
        QTest::newRow("broadcast") << 0xFFFFFFu << -1 << int(ObjectFactory::NumberBroadcast);
        for (quint32 tool : {0x000001u, 0xFE0000u, 0xFEFFFFu})
            QTest::addRow("tool %06x", tool) << tool << -1 << int(ObjectFactory::NumberTool);
        QTest::newRow("tool type seen") << 0x123456u << 0 << int(ObjectFactory::TypeTool);
        for (int type : {15, 255})
            QTest::addRow("type %d seen", type) << 0x123456u << type << int(ObjectFactory::TypeReserved);
    }
    void reservedRowsAreInvalid()
    {
        QFETCH(quint32, number);
        QFETCH(int, seenType);
        QFETCH(int, problem);
        const QSharedPointer<VRNObject> object = factory()->createObject(VRNObject::DtsStd, number);
        QVERIFY(object);
        if (seenType >= 0)
            QCOMPARE(factory()->settleKind(VRN::makeAddr(VRN::NodeType(seenType), int(number)), object->uuid()),
                     object->uuid());
        QCOMPARE(int(factory()->deviceProblem(object->uuid())), problem);
        QCOMPARE(factory()->deviceProblem(object->uuid() + 1), ObjectFactory::AddressValid);
        // A list checked at once (one pass over the registry) finds the same rows.
        const QVariantList both{factory()->createObject(VRNObject::DtsMotor, 0x000003)->uuid(), object->uuid()};
        QCOMPARE(factory()->invalidDevices(both),
                 problem == ObjectFactory::AddressValid ? QVariantList() : QVariantList{object->uuid()});
    }

    void cacheKeepsTheMostRecent200()
    {
        QList<VRNObject::UUID> uuids;
        for (unsigned i = 1; i <= 200; ++i)
            uuids.append(factory()->createObject(VRNObject::DtsStd, i, false)->uuid());
        QSharedPointer<VRNObject> held = factory()->objectFromCache(uuids[0]); // touched: now the newest
        QVERIFY(held);

        factory()->createObject(VRNObject::DtsStd, 201, false);

        QVERIFY(factory()->isObjectInCache(uuids[0]));
        QVERIFY(!factory()->isObjectInCache(uuids[1]));
        QVERIFY(!factory()->objectFromCache(uuids[1]));
        const auto rebuilt = factory()->object(uuids[1]);
        QVERIFY(rebuilt);
        QCOMPARE(rebuilt->uuid(), uuids[1]);
        QVERIFY(factory()->isObjectInCache(uuids[1]));

        // An evicted object still held elsewhere lives on beside a new instance.
        for (unsigned i = 202; i <= 402; ++i)
            factory()->createObject(VRNObject::DtsStd, i, false);
        QVERIFY(!factory()->isObjectInCache(uuids[0]));
        QCOMPARE(held->uuid(), uuids[0]);
        const auto second = factory()->object(uuids[0]);
        QVERIFY(second && second != held);
        QCOMPARE(second->uuid(), uuids[0]);
    }

    void oneWorkerPerDeviceWhileItLives()
    {
        const auto uuid = factory()->createObject(VRNObject::DtsMotor, 3, false)->uuid();
        auto first = factory()->objectWorker(uuid);
        QVERIFY(first);
        QCOMPARE(factory()->objectWorker(uuid), first);
        QCOMPARE(first->vrnObject()->uuid(), uuid);
        QPointer<VRNObjectWorker> watch(first.data());

        first.reset(); // the last holder lets go: the factory forgets it
        QVERIFY(watch.isNull());
        auto next = factory()->objectWorker(uuid);
        QVERIFY(next);
        QCOMPARE(next->vrnObject()->uuid(), uuid);
        QCOMPARE(factory()->objectWorker(uuid), next);
    }

    void destroyMissingRowStillSignals()
    {
        QSignalSpy begin(factory(), &ObjectFactory::beginObjectDestroy);
        QSignalSpy end(factory(), &ObjectFactory::objectDestroyed);
        QTest::ignoreMessage(QtDebugMsg, "[ObjectFactory]: object destroyed( false )");
        QVERIFY(!factory()->destroyObjectQml(42));
        QCOMPARE(begin.count(), 1);
        QCOMPARE(end.count(), 1);
        QCOMPARE(end.first().at(0).toUInt(), 42u);
        QCOMPARE(end.first().at(1).toUInt(), 0u);
    }

    void destroyDeletesRowGroupsAndCacheEntry()
    {
        const auto gone = factory()->createObject(VRNObject::DtsMotor, 4, false);
        const auto kept = factory()->createObject(VRNObject::DtsMotor, 5, false);
        for (const auto& obj : {gone, kept})
            for (int group : {0x10, 0x11})
                sql(QStringLiteral("INSERT INTO DevicesGroups(deviceUUID, groupID) VALUES (?, ?)"), {obj->uuid(), group});
        QSignalSpy begin(factory(), &ObjectFactory::beginObjectDestroy);
        QSignalSpy end(factory(), &ObjectFactory::objectDestroyed);
        connect(factory(), &ObjectFactory::beginObjectDestroy, this,
                [&] { QCOMPARE(end.count(), 0); }); // begin comes first

        QTest::ignoreMessage(QtDebugMsg, "[ObjectFactory]: object destroyed( true )");
        QVERIFY(factory()->destroyObject(gone->uuid()));

        QCOMPARE(begin.count(), 1);
        QCOMPARE(end.first().at(1).toUInt(), gone->address());
        QVERIFY(!factory()->isObjectInCache(gone->uuid()));
        QVERIFY(!factory()->object(gone->uuid()));
        QCOMPARE(rows(), 1);
        QCOMPARE(sqlValue(QStringLiteral("SELECT COUNT(*) FROM DevicesGroups WHERE deviceUUID = ?"), {gone->uuid()}).toInt(), 0);
        QCOMPARE(rows(QStringLiteral("DevicesGroups")), 2);
    }

    void saveTakesLabelsVerbatimButRefusesQuotes_data()
    {
        QTest::addColumn<QByteArray>("label");
        QTest::addColumn<bool>("saved");
        QTest::newRow("unknown") << QByteArray() << true;
        QTest::newRow("plain") << QByteArray("Kitchen") << true;
        QTest::newRow("statement text") << QByteArray("x; DROP TABLE Devices; --") << true;
        QTest::newRow("double quote") << QByteArray("say \"hi\"") << true;
        QTest::newRow("utf-8") << QByteArray("K\xc3\xbc" "che") << true;
        QTest::newRow("single quote") << QByteArray("Bob's room") << false;
        QTest::newRow("quote injection") << QByteArray("x', serialNumber = 'y") << false;
    }

    void saveTakesLabelsVerbatimButRefusesQuotes()
    {
        QFETCH(QByteArray, label);
        QFETCH(bool, saved);
        const auto obj = factory()->createObject(VRNObject::DtsMotor, 8, false);
        sql(QStringLiteral("UPDATE Devices SET label = 'before', serialNumber = x'01' WHERE uuid = ?"), {obj->uuid()});
        StdConfigData config;
        config.data().label = label;
        qobject_cast<VRNStdObject*>(obj.data())->updateLocalStdConfig(config);
        QCOMPARE(obj->label(), label);
        QSignalSpy changed(factory(), &ObjectFactory::objectChanged);
        if (!saved)
            QTest::ignoreMessage(QtWarningMsg,
                                 QRegularExpression("^\\[ObjectFactory\\]: failed to create Devices database .+"));

        QCOMPARE(factory()->save(obj.data()), saved);
        // The factory writes the row; the object's flag is its own (an unknown label never set it).
        QCOMPARE(obj->isDirty(), !label.isNull());

        QCOMPARE(changed.count(), saved ? 1 : 0);
        QSqlQuery row = sql(QStringLiteral("SELECT label, serialNumber, nodeID, type FROM Devices WHERE uuid = ?"),
                            {obj->uuid()});
        QVERIFY(row.next());
        QVERIFY(!row.value(0).isNull()); // an unknown label is stored as empty text
        QCOMPARE(row.value(0).toString(), saved ? QString::fromUtf8(label) : QStringLiteral("before"));
        QCOMPARE(row.value(1).toByteArray(), QByteArray("\x01")); // never written by a save
        QCOMPARE(row.value(2).toUInt(), 8u); // the node number, not the typed address
        QCOMPARE(row.value(3).toInt(), int(VRNObject::DtsMotor));
        QCOMPARE(rows(), 1);
        QVERIFY(!factory()->save(nullptr));
    }

    void objectSaveUsesTheFactory()
    {
        const auto obj = factory()->createObject(VRNObject::DtsStd, 8, false);
        StdConfigData config;
        config.data().label = "Hall";
        qobject_cast<VRNStdObject*>(obj.data())->updateLocalStdConfig(config);
        QVERIFY(obj->isDirty());
        QVERIFY(obj->save());
        QVERIFY(!obj->isDirty());
        QCOMPARE(sqlValue(QStringLiteral("SELECT label FROM Devices")).toString(), QStringLiteral("Hall"));
        // Rebuilt from the row, the label is back in the local record.
        ObjectFactory::destroy();
        QCOMPARE(factory()->object(obj->uuid())->label(), QByteArray("Hall"));
    }

    void objectsFollowTheBus()
    {
        const auto obj = factory()->createObject(VRNObject::DtsMotor, 8, false);
        QCOMPARE(obj->node()->bus(), static_cast<Bus*>(BusFactory::instance()->bus()));
        QCOMPARE(VRN::getType(obj->address()), VRNObject::nodeType(VRNObject::DtsMotor));
        QVERIFY(BusFactory::instance()->openMCast(QStringLiteral("239.255.77.7:47717"), QStringLiteral("127.0.0.1")));
        QVERIFY(BusFactory::instance()->bus());
        QCOMPARE(obj->node()->bus(), static_cast<Bus*>(BusFactory::instance()->bus()));
        BusFactory::instance()->close();
    }

    void qmlVariantsWrapSharedObjects()
    {
        QmlSharedObject* created = factory()->createObjectQml(this, VRNObject::TX30, 9, false);
        QVERIFY(created);
        auto obj = qobject_cast<VRNObject*>(created->data());
        QVERIFY(qobject_cast<TX30Object*>(obj));
        QCOMPARE(created->parent(), this);
        QmlSharedObject* worker = factory()->objectWorkerQml(this, obj->uuid());
        QCOMPARE(qobject_cast<VRNObjectWorker*>(worker->data())->vrnObject().data(), obj);
        QCOMPARE(factory()->objectWorker(obj->uuid()).data(), worker->data());
        QVERIFY(!factory()->createObjectQml(this, VRNObject::TX30, 9, false));
        delete created;
        delete worker;
    }
};

QTEST_GUILESS_MAIN(tst_ObjectFactory)
#include "tst_objectfactory.moc"
