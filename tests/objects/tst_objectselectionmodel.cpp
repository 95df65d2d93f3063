#include "objectfactory.h"
#include "objectselectionmodel.h"
#include "registryfixture.h"

#include <QAbstractItemModelTester>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTest>

using namespace RegistryFixture;

class tst_ObjectSelectionModel : public QObject
{
    Q_OBJECT

private:
    // Rows straight into the table: the selection only reads it.
    VRNObject::UUID addDevice(int type, QVariant nodeID)
    {
        return sql(QStringLiteral("INSERT INTO Devices(nodeID, type) VALUES (?, ?)"), {nodeID, type})
            .lastInsertId()
            .toUInt();
    }

    QScopedPointer<ObjectSelectionModel> model;

private slots:
    void initTestCase() { RegistryFixture::initTestCase(); }

    void init()
    {
        QVERIFY(openDatabase());
        model.reset(new ObjectSelectionModel(ObjectFactory::instance()->database()));
    }

    void cleanup()
    {
        model.reset();
        closeAll();
    }

    void addTwiceKeepsOneRowPerDevice()
    {
        const auto a = addDevice(VRNObject::DtsStd, 7);
        const auto b = addDevice(VRNObject::DtsMotor, 7);
        addDevice(VRNObject::DtsMotor, 8);
        QSignalSpy counts(model.data(), &ObjectSelectionModel::rowCountChanged);

        model->addItems(ObjectFactory::NodeIDColumn, 7);
        model->addItems(ObjectFactory::NodeIDColumn, 7);

        QCOMPARE(model->count(), 2u);
        QCOMPARE(model->rowCount(), 2);
        QCOMPARE(counts.count(), 1);
        QCOMPARE(counts.first().first().toUInt(), 2u);
        QVERIFY(model->contains(a));
        QVERIFY(model->contains(b));
        QVERIFY(!model->contains(b + 1));
        QCOMPARE(model->data(0).toUInt(), a);
        QCOMPARE(model->data(1).toUInt(), b);
        QVERIFY(!model->data(2).isValid());
    }

    // Random selections over several hundred devices with Qt's model checker
    // attached; a view reading the rows when a reset ends finds the new
    // count, and the rows are the selected uuids in order.
    void holdsTheModelContract()
    {
        QRandomGenerator random(3);
        QSqlDatabase::database().transaction();
        for (int i = 0; i < 400; ++i)
            addDevice(1 + random.bounded(6), random.bounded(1, 60));
        QSqlDatabase::database().commit();
        QAbstractItemModelTester checker(model.data(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        int resets = 0;
        connect(model.data(), &QAbstractItemModel::modelReset, this, [&] {
            ++resets;
            QCOMPARE(model->rowCount(), model->toList().size());
        });
        for (int step = 0; step < 300; ++step) {
            const auto column = random.bounded(2) ? ObjectFactory::TypeColumn : ObjectFactory::NodeIDColumn;
            const QVariant value = column == ObjectFactory::TypeColumn ? random.bounded(1, 7) : random.bounded(1, 60);
            switch (random.bounded(5)) {
            case 0: model->addItems(column, value); break;
            case 1: model->removeItems(column, value); break;
            case 2: model->setItems(column, value); break;
            case 3: model->toggleItems(column, value); break;
            default: model->clear(); break;
            }
            const QList<VRNObject::UUID> selected = model->toList();
            QCOMPARE(model->rowCount(), selected.size());
            for (int row = 0; row < selected.size(); row += 17)
                QCOMPARE(model->index(row, 0).data().toUInt(), selected.at(row));
        }
        QCOMPARE(resets, 300);
    }

    void removeAndSet()
    {
        const auto a = addDevice(VRNObject::DtsStd, 1);
        const auto b = addDevice(VRNObject::DtsStd, 2);
        const auto c = addDevice(VRNObject::DtsMotor, 2);
        model->addItems(ObjectFactory::TypeColumn, int(VRNObject::DtsStd));
        QCOMPARE(model->toList(), (QList<VRNObject::UUID>{a, b}));

        model->removeItems(ObjectFactory::NodeIDColumn, 2);
        QCOMPARE(model->toList(), QList<VRNObject::UUID>{a});

        model->setItems(ObjectFactory::NodeIDColumn, 2);
        QCOMPARE(model->toList(), (QList<VRNObject::UUID>{b, c}));

        QSignalSpy counts(model.data(), &ObjectSelectionModel::rowCountChanged);
        model->clear();
        QCOMPARE(model->count(), 0u);
        QCOMPARE(counts.count(), 1);
        QVERIFY(model->toList().isEmpty());
    }

    void toggle_data()
    {
        QTest::addColumn<int>("before");  // 0: exactly the matching devices, 1: others too, 2: one of them only
        QTest::addColumn<int>("expected");
        // Selection exactly the matching devices: toggling empties it.
        QTest::newRow("exact") << 0 << 0;
        // Other devices selected too, or only some of the matching: the
        // selection becomes the matching set.
        QTest::newRow("wider") << 1 << 2;
        QTest::newRow("partial") << 2 << 2;
    }

    void toggle()
    {
        QFETCH(int, before);
        QFETCH(int, expected);
        const auto a = addDevice(VRNObject::DtsMotor, 5);
        const auto b = addDevice(VRNObject::DtsStd, 5);
        addDevice(VRNObject::DtsStd, 6);
        if (before == 2)
            model->addItems(ObjectFactory::UuidColumn, a);
        else
            model->setItems(ObjectFactory::NodeIDColumn, 5);
        if (before == 1)
            model->addItems(ObjectFactory::NodeIDColumn, 6);

        model->toggleItems(ObjectFactory::NodeIDColumn, 5);

        QCOMPARE(int(model->count()), expected);
        if (expected)
            QCOMPARE(model->toList(), (QList<VRNObject::UUID>{a, b}));
    }

    void selectedType_data()
    {
        QTest::addColumn<QList<int>>("types");
        QTest::addColumn<int>("expected");
        QTest::addColumn<bool>("motor");
        QTest::addColumn<int>("kind");
        QTest::newRow("empty") << QList<int>{} << 0 << false << 0;
        QTest::newRow("one DC motor") << QList<int>{VRNObject::DtsDcMotor} << int(VRNObject::DtsDcMotor) << true
                                      << int(VRNObject::DtsDcMotor);
        QTest::newRow("motor and DC motor")
            << QList<int>{VRNObject::DtsMotor, VRNObject::DtsDcMotor} << int(VRNObject::DtsMotor) << true << int(VRNObject::DtsMotor);
        QTest::newRow("DC motor and motor")
            << QList<int>{VRNObject::DtsDcMotor, VRNObject::DtsMotor} << int(VRNObject::DtsMotor) << true << int(VRNObject::DtsMotor);
        QTest::newRow("LRU50 and motor")
            << QList<int>{VRNObject::LRU50, VRNObject::DtsMotor} << int(VRNObject::DtsMotor) << true << int(VRNObject::DtsMotor);
        QTest::newRow("TX30 and TX50DC")
            << QList<int>{VRNObject::TX30, VRNObject::TX50DC} << int(VRNObject::DtsDcMotor) << true << int(VRNObject::DtsDcMotor);
        QTest::newRow("motor and standard")
            << QList<int>{VRNObject::DtsMotor, VRNObject::DtsStd} << int(VRNObject::DtsStd) << false << int(VRNObject::DtsStd);
        // No kind in common: the root class, whose type is the setting tool's.
        QTest::newRow("standard and setting tool")
            << QList<int>{VRNObject::DtsStd, VRNObject::SettingTool} << int(VRNObject::SettingTool) << false << 0;
        QTest::newRow("setting tool") << QList<int>{VRNObject::SettingTool} << int(VRNObject::SettingTool) << false
                                      << int(VRNObject::SettingTool);
    }

    void selectedType()
    {
        QFETCH(QList<int>, types);
        QFETCH(int, expected);
        QFETCH(bool, motor);
        QFETCH(int, kind);
        for (int type : types)
            addDevice(type, 3);
        addDevice(VRNObject::DtsStd, 4); // never selected
        model->addItems(ObjectFactory::NodeIDColumn, 3);
        QCOMPARE(int(model->selectedType()), expected);
        QCOMPARE(model->isMotor(), motor);
        QCOMPARE(int(model->commonKind()), kind);
    }

    void unknownTypeIsReported()
    {
        addDevice(42, 3);
        QTest::ignoreMessage(QtWarningMsg, "[ObjectSelectionModel]: invalid object type 1:  42");
        model->addItems(ObjectFactory::NodeIDColumn, 3);
        QCOMPARE(int(model->selectedType()), 0);
    }

    // A node id only for a single device; wider and empty selections are logged.
    void selectedNodeIdOfSingleDevice()
    {
        const char* notOne = "[ObjectSelectionModel]: query is empty, invalid, or it concerns multiple devices";
        const auto a = addDevice(VRNObject::DtsMotor, 0x123);
        addDevice(VRNObject::DtsMotor, 0x124);
        // Whoever hears of the new count reads the new node id.
        QList<VRN::Addr> heard;
        const auto c = connect(model.data(), &ObjectSelectionModel::rowCountChanged, this, [&] { heard << model->selectedNodeId(); });
        model->addItems(ObjectFactory::UuidColumn, a);
        QCOMPARE(model->selectedNodeId(), VRN::Addr(0x123));
        QCOMPARE(heard, QList<VRN::Addr>{0x123});
        disconnect(c);
        // An undefined criterion is NULL: it runs and matches nothing.
        model->addItems(ObjectFactory::NodeIDColumn, QVariant());
        model->toggleItems(ObjectFactory::LabelColumn, QVariant());
        QCOMPARE(model->count(), 0u);
        model->addItems(ObjectFactory::UuidColumn, a);
        QTest::ignoreMessage(QtWarningMsg, notOne);
        model->addItems(ObjectFactory::NodeIDColumn, 0x124);
        QCOMPARE(model->selectedNodeId(), VRN::Addr(0));
        model->removeItems(ObjectFactory::NodeIDColumn, 0x124);
        QCOMPARE(model->selectedNodeId(), VRN::Addr(0x123));
        QTest::ignoreMessage(QtWarningMsg, notOne);
        model->clear();
        QCOMPARE(model->selectedNodeId(), VRN::Addr(0));
    }

    void badColumnIsReported()
    {
        // The plain table has no nbOccur column; only the list views do.
        QTest::ignoreMessage(QtWarningMsg,
                             QRegularExpression("^\\[ObjectSelectionModel\\]: failed to execute insert query: .*NbOccur"));
        model->addItems(ObjectFactory::NbOccurColumn, 1);
        QCOMPARE(model->count(), 0u);
    }

    void tableLivesWithTheModel()
    {
        const QString table = model->tableName();
        const QString exists = QStringLiteral("SELECT COUNT(*) FROM sqlite_temp_master WHERE name = ?");
        QCOMPARE(sqlValue(exists, {table}).toInt(), 1);
        ObjectSelectionModel other(ObjectFactory::instance()->database());
        QVERIFY(other.tableName() != table);
        model.reset();
        QCOMPARE(sqlValue(exists, {table}).toInt(), 0);
    }

    void destroyObjectsDeletesRows()
    {
        ObjectFactory* factory = ObjectFactory::instance();
        const auto a = factory->createObject(VRNObject::DtsStd, 9, false)->uuid();
        const auto b = factory->createObject(VRNObject::DtsMotor, 9, false)->uuid();
        const auto keep = factory->createObject(VRNObject::DtsMotor, 10, false)->uuid();
        model->addItems(ObjectFactory::NodeIDColumn, 9);
        QSignalSpy destroyed(factory, &ObjectFactory::objectDestroyed);

        model->destroyObjectsQml();

        QCOMPARE(destroyed.count(), 2);
        QCOMPARE(destroyed.at(0).first().toUInt(), a);
        QCOMPARE(destroyed.at(1).first().toUInt(), b);
        QCOMPARE(model->count(), 0u);
        QCOMPARE(factory->nodeAddrs().size(), 1);
        QVERIFY(factory->object(keep));
    }
};

QTEST_GUILESS_MAIN(tst_ObjectSelectionModel)
#include "tst_objectselectionmodel.moc"
