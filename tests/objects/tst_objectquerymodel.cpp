#include "nullvariant.h"
#include "objectfactory.h"
#include "objectquerymodel.h"
#include "objectselectionmodel.h"
#include "registryfixture.h"

#include "vrnstdobject.h"

#include <QAbstractItemModelTester>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace RegistryFixture;

namespace {
const char* PageQuery = "LIMIT 100 OFFSET";

// The row position as the original counting statement gives it: the rows of
// Devices before the device in (raw column value, uuid) order.
int referenceIndexOf(const QString& column, VRNObject::UUID uuid)
{
    const QString c = column;
    const QString u = QString::number(uuid);
    const QString statement = QStringLiteral("SELECT COUNT(*) FROM Devices, ")
        + QStringLiteral("(SELECT %1 AS orderVal FROM Devices WHERE uuid=%2)").arg(c, u)
        + QStringLiteral(" AS item WHERE CASE WHEN item.orderVal ISNULL ")
        + QStringLiteral("THEN %1 ISNULL AND uuid <= %2 ELSE %1 < item.orderVal OR (%1 = item.orderVal AND uuid <= %2) END")
              .arg(c, u);
    const int count = sqlValue(statement).toInt();
    return count > 0 ? count - 1 : -1;
}

void insertDevices(int count, int firstNode = 1)
{
    QSqlDatabase db = QSqlDatabase::database();
    db.transaction();
    QSqlQuery insert(db);
    insert.prepare(QStringLiteral("INSERT INTO Devices(nodeID, type) VALUES (?, 1)"));
    for (int i = 0; i < count; ++i) {
        insert.addBindValue(firstNode + i);
        insert.exec();
    }
    db.commit();
}
} // namespace

class tst_ObjectQueryModel : public QObject
{
    Q_OBJECT

private:
    ObjectFactory* factory = nullptr;
    QScopedPointer<QObject> owner;
    ObjectQueryModel* model = nullptr;

    ObjectQueryModel* makeModel()
    {
        model = factory->createQueryModel(owner.data());
        return model;
    }

    QVariant at(int row, ObjectQueryModel::Role role) const { return model->data(model->index(row, 0), role); }

    QList<VRNObject::UUID> shownUuids() const
    {
        QList<VRNObject::UUID> uuids;
        for (int row = 0; row < model->rowCount(); ++row)
            uuids.append(at(row, ObjectQueryModel::UuidRole).toUInt());
        return uuids;
    }

    static void sortColumnRows(int last)
    {
        QTest::addColumn<int>("column");
        for (int c = ObjectFactory::UuidColumn; c <= last; ++c)
            QTest::newRow(qPrintable(ObjectFactory::columnName(ObjectFactory::DevicesTableColumn(c)))) << c;
    }

private slots:
    void initTestCase() { RegistryFixture::initTestCase(); }

    void init()
    {
        QVERIFY(openDatabase());
        factory = ObjectFactory::instance();
        owner.reset(new QObject);
    }

    void cleanup()
    {
        owner.reset();
        closeAll();
    }

    void sortByLabelIsCaseBlindWithUuidTieBreak()
    {
        const QStringList labels{QStringLiteral("abd"), QStringLiteral("ABC"), QStringLiteral("abc"),
                                 QStringLiteral("b"), QString()};
        QList<VRNObject::UUID> uuids;
        for (int i = 0; i < labels.size(); ++i) {
            uuids.append(factory->createObject(VRNObject::DtsStd, unsigned(10 - i), false)->uuid());
            sql(QStringLiteral("UPDATE Devices SET label = ? WHERE uuid = ?"), {labels.at(i), uuids.last()});
        }
        makeModel();
        QSignalSpy sortBy(model, &ObjectQueryModel::sortByChanged);
        QSignalSpy reset(model, &QAbstractItemModel::modelReset);

        model->setSortBy(ObjectQueryModel::LabelRole);

        QCOMPARE(sortBy.count(), 1);
        QCOMPARE(reset.count(), 1);
        // NULL first, then abc and ABC in uuid order, abd, b.
        const QList<VRNObject::UUID> expected{uuids[4], uuids[1], uuids[2], uuids[0], uuids[3]};
        QCOMPARE(model->toList(), expected);
        QCOMPARE(shownUuids(), expected);
        QCOMPARE(at(3, ObjectQueryModel::LabelRole).toString(), QStringLiteral("abd"));
        QCOMPARE(model->get(1).value(QStringLiteral("label")).toString(), QStringLiteral("ABC"));
        QCOMPARE(model->get(1).size(), 6);
    }

    void sortOrderMirrorsRowsWithoutSql()
    {
        insertDevices(5);
        makeModel();
        const QList<VRNObject::UUID> ascending = shownUuids();
        StatementCounter statements(factory->database(), "");
        QSignalSpy order(model, &ObjectQueryModel::sortOrderChanged);
        QSignalSpy reset(model, &QAbstractItemModel::modelReset);

        model->setSortOrder(Qt::DescendingOrder);

        QCOMPARE(statements.count(), 0);
        QCOMPARE(order.count(), 1);
        QCOMPARE(reset.count(), 1);
        QList<VRNObject::UUID> descending = shownUuids();
        std::reverse(descending.begin(), descending.end());
        QCOMPARE(descending, ascending);
        model->setSort(ObjectQueryModel::NodeIDRole, Qt::DescendingOrder);
        QCOMPARE(reset.count(), 1);
    }

    void pageFollowsTheWantedRow_data()
    {
        QTest::addColumn<Qt::SortOrder>("order");
        QTest::addColumn<QList<int>>("reads");
        QTest::addColumn<QList<int>>("offsets");
        QTest::newRow("jump then back") << Qt::AscendingOrder << QList<int>{500, 449, 449, 520} << QList<int>{450, 399, 399, 470};
        QTest::newRow("near the start") << Qt::AscendingOrder << QList<int>{99, 100, 149, 30} << QList<int>{0, 50, 50, 0};
        QTest::newRow("descending") << Qt::DescendingOrder << QList<int>{0, 500} << QList<int>{949, 449};
    }

    void pageFollowsTheWantedRow()
    {
        QFETCH(Qt::SortOrder, order);
        QFETCH(QList<int>, reads);
        QFETCH(QList<int>, offsets);
        insertDevices(1000);
        makeModel();
        model->setSortOrder(order);
        for (int i = 0; i < reads.size(); ++i) {
            const int row = reads.at(i);
            const int viewRow = order == Qt::AscendingOrder ? row : 999 - row;
            // Node ids were given in uuid order, so a row shows node id row + 1.
            QCOMPARE(at(row, ObjectQueryModel::NodeIDRole).toInt(), viewRow + 1);
            QCOMPARE(model->pageOffset(), offsets.at(i));
        }
    }

    void creationsKeepRowsRight()
    {
        insertDevices(1000, 1000);
        makeModel();
        QCOMPARE(at(500, ObjectQueryModel::NodeIDRole).toInt(), 1500);
        StatementCounter pages(factory->database(), PageQuery);
        QSignalSpy inserted(model, &QAbstractItemModel::rowsInserted);

        // Before the page: the held rows only move down by one.
        auto before = factory->createObject(VRNObject::DtsStd, 5, false);
        QCOMPARE(pages.count(), 0);
        QCOMPARE(model->pageOffset(), 451);
        QCOMPARE(model->rowCount(), 1001);
        QCOMPARE(inserted.count(), 1);
        QCOMPARE(inserted.first().at(1).toInt(), 0);
        QCOMPARE(at(501, ObjectQueryModel::NodeIDRole).toInt(), 1500);
        QCOMPARE(pages.count(), 0);

        // Inside the page: re-read.
        auto inside = factory->createObject(VRNObject::DtsMotor, 1500, false);
        QVERIFY(pages.count() > 0);
        QCOMPARE(inserted.last().at(1).toInt(), 502);
        QCOMPARE(at(502, ObjectQueryModel::UuidRole).toUInt(), inside->uuid());

        // After the page: nothing to read.
        pages.reset();
        factory->createObject(VRNObject::DtsStd, 99999, false);
        QCOMPARE(pages.count(), 0);
        QCOMPARE(inserted.last().at(1).toInt(), 1002);
        QCOMPARE(model->rowCount(), 1003);
        QCOMPARE(at(0, ObjectQueryModel::UuidRole).toUInt(), before->uuid());
        QCOMPARE(model->toList(), shownUuids());
    }

    // Duplicates are counted by node number, whatever the device's type.
    void duplicatesCountAndAnnounce()
    {
        makeModel();
        auto first = factory->createObject(VRNObject::DtsStd, 0x42, false);
        factory->createObject(VRNObject::DtsStd, 0x41, false);
        QSignalSpy changed(model, &QAbstractItemModel::dataChanged);
        auto second = factory->createObject(VRNObject::DtsMotor, 0x42, false);
        QVERIFY(second);
        QCOMPARE(VRN::getNumber(second->address()), 0x42u);

        QCOMPARE(model->rowCount(), 3);
        QCOMPARE(at(0, ObjectQueryModel::NbOccurRole).toInt(), 1);
        QCOMPARE(at(1, ObjectQueryModel::NbOccurRole).toInt(), 2);
        QCOMPARE(at(2, ObjectQueryModel::NbOccurRole).toInt(), 2);
        // Only the first device of the node id is announced.
        QCOMPARE(changed.count(), 1);
        QCOMPARE(changed.first().at(0).toModelIndex().row(), 1);
        QCOMPARE(changed.first().at(2).value<QVector<int>>(), QVector<int>{ObjectQueryModel::NbOccurRole});

        QVERIFY(factory->destroyObject(second->uuid()));
        QCOMPARE(changed.count(), 2);
        QCOMPARE(changed.last().at(0).toModelIndex().row(), 1);
        QCOMPARE(at(1, ObjectQueryModel::UuidRole).toUInt(), first->uuid());
        QCOMPARE(at(1, ObjectQueryModel::NbOccurRole).toInt(), 1);
    }

    void selectedCreationSelectsTheNodeId()
    {
        makeModel();
        auto first = factory->createObject(VRNObject::DtsStd, 0x43, false);
        factory->createObject(VRNObject::DtsStd, 7, false);
        QSignalSpy selectionChanged(model, &ObjectQueryModel::selectionChanged);
        auto second = factory->createObject(VRNObject::LRU50, 0x43, true);
        ObjectSelectionModel* selection = model->selectionModel();
        QCOMPARE(selection->deviceTable(), model->viewName());
        QCOMPARE(selection->toList(), (QList<VRNObject::UUID>{first->uuid(), second->uuid()}));
        QCOMPARE(selectionChanged.count(), 2); // cleared, then filled
    }

    void changeAnnouncesTheLabel()
    {
        insertDevices(3);
        makeModel();
        QCOMPARE(at(1, ObjectQueryModel::LabelRole).toString(), QString());
        auto obj = factory->object(2);
        QSignalSpy changed(model, &QAbstractItemModel::dataChanged);
        sql(QStringLiteral("UPDATE Devices SET label = 'x' WHERE uuid = 2"));
        QVERIFY(factory->save(obj.data()));
        QCOMPARE(changed.count(), 1);
        QCOMPARE(changed.first().at(0).toModelIndex().row(), 1);
        QCOMPARE(changed.first().at(2).value<QVector<int>>(), QVector<int>{ObjectQueryModel::LabelRole});
        // The page was read again: it shows what save wrote over the 'x'.
        QCOMPARE(at(1, ObjectQueryModel::LabelRole).toString(), QString::fromUtf8(obj->label()));
        QVERIFY(!at(1, ObjectQueryModel::LabelRole).isNull());
    }

    void destructionsKeepRowsRight()
    {
        insertDevices(300);
        makeModel();
        QCOMPARE(at(200, ObjectQueryModel::NodeIDRole).toInt(), 201); // page at 150
        QSignalSpy removed(model, &QAbstractItemModel::rowsRemoved);
        StatementCounter pages(factory->database(), PageQuery);

        QVERIFY(factory->destroyObject(1));
        QCOMPARE(pages.count(), 0);
        QCOMPARE(model->pageOffset(), 149);
        QCOMPARE(removed.count(), 1);
        QCOMPARE(removed.first().at(1).toInt(), 0);
        QCOMPARE(model->rowCount(), 299);
        QCOMPARE(at(199, ObjectQueryModel::NodeIDRole).toInt(), 201);

        QVERIFY(factory->destroyObject(202));
        QVERIFY(pages.count() > 0);
        QCOMPARE(at(199, ObjectQueryModel::NodeIDRole).toInt(), 201);
        QCOMPARE(at(200, ObjectQueryModel::NodeIDRole).toInt(), 203);
        QCOMPARE(model->toList(), shownUuids());
    }

    void destructionOutOfOrderIsAnInternalError()
    {
        insertDevices(2);
        makeModel();
        QSignalSpy removed(model, &QAbstractItemModel::rowsRemoved);
        QTest::ignoreMessage(QtWarningMsg, "[ObjectQueryModel]: internal error, endObjectDestroyed called without index");
        QMetaObject::invokeMethod(model, "onEndObjectDestroyed", Q_ARG(VRNObject::UUID, 1), Q_ARG(VRN::Addr, 1));
        QCOMPARE(removed.count(), 0);
        QCOMPARE(model->rowCount(), 2);

        // Deleting a device that has no row: the model sees no begin either.
        QTest::ignoreMessage(QtWarningMsg, "[ObjectQueryModel]: internal error, endObjectDestroyed called without index");
        QVERIFY(!factory->destroyObject(77));
        QCOMPARE(model->rowCount(), 2);
    }

    // Scrolling on reads each next page by the sort key of its first row;
    // the rows must be exactly those of the view, in its order, whatever
    // the data: NULL keys, keys equal but for case, long runs of one key.
    void scrollingShowsTheViewInOrder_data() { sortColumnRows(ObjectFactory::NbOccurColumn); }

    void scrollingShowsTheViewInOrder()
    {
        QFETCH(int, column);
        const QStringList labels{QStringLiteral("Hall"), QStringLiteral("hall"), QStringLiteral("HALL"),
                                 QStringLiteral("attic"), QString()};
        QSqlDatabase::database().transaction();
        for (int i = 0; i < 450; ++i) {
            const QVariant node = i % 7 == 0 ? nullVariant<int>() : QVariant(i % 40);
            const QVariant serial = i % 3 == 0 ? nullVariant<QByteArray>() : QVariant(QByteArray(1, char(i % 5)));
            sql(QStringLiteral("INSERT INTO Devices(nodeID, type, label, serialNumber) VALUES (?, ?, ?, ?)"),
                {node, i % 8, labels.at(i % labels.size()).isNull() ? nullVariant<QString>() : labels.at(i % 5), serial});
        }
        QSqlDatabase::database().commit();
        makeModel();
        model->setSortBy(ObjectQueryModel::Role(ObjectQueryModel::UuidRole + column));
        QCOMPARE(shownUuids(), model->toList());
    }

    void indexOfAgreesWithTheCountingStatement_data() { sortColumnRows(ObjectFactory::SerialNumberColumn); }

    void indexOfAgreesWithTheCountingStatement()
    {
        QFETCH(int, column);
        // NULL node ids, labels and serial numbers, labels equal but for case,
        // duplicated node ids and labels.
        const QList<QVariantList> rows{
            {nullVariant<int>(), 1, QStringLiteral("Kitchen"), QByteArray("\x01")},
            {5, 2, QStringLiteral("kitchen"), nullVariant<QByteArray>()},
            {5, 3, nullVariant<QString>(), QByteArray("\x01")},
            {nullVariant<int>(), 2, QStringLiteral("KITCHEN"), QByteArray("\x00\x02", 2)},
            {3, 1, QStringLiteral("attic"), QByteArray()},
            {5, 1, QStringLiteral("kitchen"), QByteArray("\x01")},
            {0, 7, QStringLiteral("Attic"), nullVariant<QByteArray>()},
        };
        for (const QVariantList& row : rows)
            sql(QStringLiteral("INSERT INTO Devices(nodeID, type, label, serialNumber) VALUES (?, ?, ?, ?)"), row);
        makeModel();
        const auto c = ObjectFactory::DevicesTableColumn(column);
        model->setSortBy(ObjectQueryModel::Role(ObjectQueryModel::UuidRole + column));
        for (VRNObject::UUID uuid = 1; uuid <= VRNObject::UUID(rows.size()) + 1; ++uuid)
            QCOMPARE(model->indexOf(uuid), referenceIndexOf(ObjectFactory::columnName(c), uuid));
        // The row count is read from the table, not from the view.
        QCOMPARE(model->rowCount(), sqlValue(QStringLiteral("SELECT COUNT(*) FROM ") + model->viewName()).toInt());
    }

    // A registry file that another tool writes too: the length of the list
    // follows the rows that tool adds and removes. A file made before the
    // database kept the count is counted at open; one that keeps none (read
    // only, made elsewhere) is counted by the list itself.
    void rowCountFollowsAnotherTool()
    {
        closeAll();
        QTemporaryDir dir;
        const QString file = dir.filePath(QStringLiteral("devices.sqlite"));
        // Statements of another tool on the file, on a connection of its own.
        auto otherTool = [&](const QStringList& statements) {
            {
                QSqlDatabase other = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("other"));
                other.setDatabaseName(file);
                QVERIFY(other.open());
                QSqlQuery q(other);
                for (const QString& statement : statements)
                    QVERIFY2(q.exec(statement), qPrintable(q.lastError().text()));
            }
            QSqlDatabase::removeDatabase(QStringLiteral("other"));
        };
        const QString insertRows = QStringLiteral("WITH RECURSIVE n(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM n WHERE x < %1) "
                                                  "INSERT INTO Devices(nodeID) SELECT %2 + x FROM n");
        otherTool({QStringLiteral("CREATE TABLE Devices(uuid INTEGER PRIMARY KEY NOT NULL,nodeID INTEGER DEFAULT 0,"
                                  "type INTEGER DEFAULT 1,label TEXT DEFAULT NULL,serialNumber BLOB DEFAULT NULL)"),
                   insertRows.arg(25).arg(0)});
        QString error;
        QVERIFY2(ObjectFactory::openRegistry(file, &error), qPrintable(error));
        factory = ObjectFactory::instance();
        makeModel();
        QAbstractItemModelTester tester(model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        QCOMPARE(model->rowCount(), 25);
        otherTool({insertRows.arg(130).arg(100), QStringLiteral("DELETE FROM Devices WHERE uuid % 3 = 0")});
        const int rows = sqlValue(QStringLiteral("SELECT COUNT(*) FROM Devices")).toInt();
        QCOMPARE(rows, 155 - 51);
        model->setSortBy(ObjectQueryModel::LabelRole);
        QCOMPARE(model->rowCount(), rows);
        QCOMPARE(model->toList().size(), rows);
        sql(QStringLiteral("DROP TABLE DevicesCount"));
        model->setSortBy(ObjectQueryModel::NodeIDRole);
        QCOMPARE(model->rowCount(), rows);
        QCOMPARE(at(rows - 1, ObjectQueryModel::NodeIDRole).toInt(), 230);
    }

    // Positions of rows created and destroyed through the factory, at
    // several thousand rows, NULL node ids and shared node ids among them,
    // are what the counting statement gives.
    void indexOfFollowsCreationsAndDestructions_data() { sortColumnRows(ObjectFactory::TypeColumn); }

    void indexOfFollowsCreationsAndDestructions()
    {
        QFETCH(int, column);
        insertDevices(3000);
        makeModel();
        model->setSortBy(ObjectQueryModel::Role(ObjectQueryModel::UuidRole + column));
        QRandomGenerator random(quint32(column + 11));
        QCOMPARE(model->indexOf(1), 0);
        for (int i = 0; i < 600; ++i) {
            if (i % 3 == 2) {
                factory->destroyObject(1 + random.bounded(3000 + i));
                continue;
            }
            const unsigned node = i % 10 == 0 ? 0u : i % 7 == 0 ? 1500u : random.bounded(1u, 4000u);
            factory->createObject(VRNObject::Type(1 + i % 6), node, false);
        }
        const QList<VRNObject::UUID> uuids = model->toList();
        QCOMPARE(model->rowCount(), uuids.size());
        const QString c = ObjectFactory::columnName(ObjectFactory::DevicesTableColumn(column));
        for (VRNObject::UUID uuid : uuids)
            QCOMPARE(model->indexOf(uuid), referenceIndexOf(c, uuid));
        // Rows written past the factory, without its signals: positions
        // are still what the statement counts.
        insertDevices(300, 2);
        sql(QStringLiteral("DELETE FROM Devices WHERE uuid % 37 = 0"), {});
        for (VRNObject::UUID uuid : model->toList())
            QCOMPARE(model->indexOf(uuid), referenceIndexOf(c, uuid));
    }

    // Qt's model checker rides along while devices are created (a quarter
    // of them on a node id already taken), destroyed and renamed, the sort
    // changes, the selection changes and a view scrolls to random rows;
    // after every step the rows are exactly the view's, in the model's
    // order. The rows' positions come from a count over Devices that
    // compares raw values, while the view sorts labels without regard to
    // case and puts NULLs first: the data keeps to where both agree (node
    // ids never NULL, serial numbers all NULL, labels lower case and set
    // at once), and the duplicate count, which Devices has no column for,
    // is not sorted on.
    void holdsTheModelContract_data()
    {
        QTest::addColumn<int>("column");
        QTest::addColumn<Qt::SortOrder>("order");
        QTest::addColumn<bool>("filtering");
        QTest::newRow("ascending by label") << int(ObjectFactory::LabelColumn) << Qt::AscendingOrder << false;
        QTest::newRow("descending by node id") << int(ObjectFactory::NodeIDColumn) << Qt::DescendingOrder << false;
        QTest::newRow("filtered, ascending by node id") << int(ObjectFactory::NodeIDColumn) << Qt::AscendingOrder << true;
        QTest::newRow("filtered, descending by label") << int(ObjectFactory::LabelColumn) << Qt::DescendingOrder << true;
    }

    // The devices a filter lets through, counted by other means than the
    // model's: substring search with instr() instead of LIKE, so that a
    // wildcard typed by the user must match itself only.
    static int matching(QString search, const QVariantList& kinds)
    {
        // No text yet is a null string, which Qt 6's driver binds as NULL.
        if (search.isNull())
            search = QLatin1String("");
        QString hex = search;
        if (hex.startsWith(QLatin1String("0x"), Qt::CaseInsensitive))
            hex = hex.mid(2);
        const bool isHex = !hex.isEmpty() && hex.size() <= 6 && QRegularExpression(QStringLiteral("^[0-9A-Fa-f]+$")).match(hex).hasMatch();
        QStringList types;
        for (const QVariant& k : kinds)
            types << QString::number(k.toInt());
        return sqlValue(QStringLiteral("SELECT COUNT(*) FROM Devices WHERE (? = '' OR instr(lower(label), lower(?)) > 0"
                                       " OR (? AND instr(printf('%06X', nodeID), ?) > 0))")
                            + (types.isEmpty() ? QString() : QStringLiteral(" AND type IN (%1)").arg(types.join(QLatin1Char(',')))),
                        {search, search, isHex, hex.toUpper()})
            .toInt();
    }

    void holdsTheModelContract()
    {
        QFETCH(int, column);
        QFETCH(Qt::SortOrder, order);
        QFETCH(bool, filtering);
        QRandomGenerator random(quint32(column * 2 + order + 1 + (filtering ? 7 : 0)));
        makeModel();
        model->setSort(ObjectQueryModel::Role(ObjectQueryModel::UuidRole + column), order);
        ObjectSelectionModel* selection = model->selectionModel();

        QList<VRNObject::UUID> devices;
        QList<unsigned> nodes;
        const auto label = [&random] { return QByteArray("room ") + QByteArray::number(random.bounded(60)); };
        const auto rename = [&](VRNObject::UUID uuid) {
            const QSharedPointer<VRNObject> obj = factory->object(uuid);
            StdConfigData config;
            config.data().label = label();
            qobject_cast<VRNStdObject*>(obj.data())->updateLocalStdConfig(config);
            return factory->save(obj.data());
        };
        const auto create = [&] {
            const bool duplicate = !nodes.isEmpty() && random.bounded(4) == 0;
            const unsigned node = duplicate ? nodes.at(random.bounded(nodes.size())) : random.bounded(1u, 0xFFFFFFu);
            const auto type = VRNObject::Type(random.bounded(int(VRNObject::DtsStd), int(VRNObject::TX30) + 1));
            const auto obj = factory->createObject(type, node, random.bounded(10) == 0);
            // The factory refuses a second device of one kind on a node.
            if (!obj)
                return duplicate;
            devices.append(obj->uuid());
            nodes.append(node);
            return rename(obj->uuid());
        };
        const auto scroll = [&] {
            const int first = random.bounded(qMax(1, model->rowCount()));
            for (int row = first; row < qMin(model->rowCount(), first + 40); ++row)
                at(row, ObjectQueryModel::LabelRole);
        };
        const auto criteria = [&](ObjectFactory::DevicesTableColumn& c) -> QVariant {
            if (random.bounded(2)) {
                c = ObjectFactory::TypeColumn;
                return random.bounded(1, 7);
            }
            c = ObjectFactory::NodeIDColumn;
            return nodes.isEmpty() ? 1u : nodes.at(random.bounded(nodes.size()));
        };

        const auto showsTheView = [&] {
            QCOMPARE(model->rowCount(), model->isFiltered() ? matching(model->searchText(), model->kindFilter()) : devices.size());
            QList<VRNObject::UUID> expected = model->toList();
            if (model->sortOrder() == Qt::DescendingOrder)
                std::reverse(expected.begin(), expected.end());
            QCOMPARE(shownUuids(), expected);
        };

        // Each check of the model checker costs: fill the first pages without.
        while (devices.size() < 300) {
            QVERIFY(create());
            if (devices.size() % 40 == 0)
                scroll();
        }
        showsTheView();
        QAbstractItemModelTester checker(model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        QAbstractItemModelTester selectionChecker(selection, QAbstractItemModelTester::FailureReportingMode::QtTest);
        for (int step = 0; step < 300; ++step) {
            const int what = random.bounded(100);
            if (what < 30) {
                QVERIFY(create());
            } else if (what < 50) {
                const VRNObject::UUID uuid = devices.takeAt(random.bounded(devices.size()));
                QVERIFY(factory->destroyObject(uuid));
            } else if (what < 70) {
                QVERIFY(rename(devices.at(random.bounded(devices.size()))));
            } else if (what < 75) {
                model->setSortOrder(random.bounded(2) ? Qt::AscendingOrder : Qt::DescendingOrder);
            } else if (what < 80) {
                model->setSortBy(ObjectQueryModel::Role(
                    ObjectQueryModel::UuidRole + random.bounded(int(ObjectFactory::SerialNumberColumn) + 1)));
            } else if (filtering && what >= 90) {
                // Typed texts: a label, a node number's digits, SQL's own
                // wildcards and quotes, which must find themselves only.
                static const char* const texts[] = {"", "room 1", "ROOM 2", "0", "0xF", "%", "_", "'; DROP TABLE Devices; --"};
                static const QVariantList kindSets[] = {{}, {2}, {1, 3, 6}};
                if (random.bounded(2))
                    model->setSearchText(QString::fromLatin1(texts[random.bounded(8)]));
                else
                    model->setKindFilter(kindSets[random.bounded(3)]);
                if (model->isFiltered() && random.bounded(3) == 0) {
                    selection->clear();
                    model->selectAll();
                    QCOMPARE(int(selection->count()), model->rowCount());
                }
            } else if (what < 90) {
                ObjectFactory::DevicesTableColumn c;
                const QVariant value = criteria(c);
                switch (random.bounded(5)) {
                case 0: selection->addItems(c, value); break;
                case 1: selection->removeItems(c, value); break;
                case 2: selection->setItems(c, value); break;
                case 3: selection->toggleItems(c, value); break;
                default: selection->clear(); break;
                }
                QCOMPARE(int(selection->count()), selection->toList().size());
            }
            showsTheView();
            if (QTest::currentTestFailed())
                return;
            scroll();
        }
    }
};

QTEST_GUILESS_MAIN(tst_ObjectQueryModel)
#include "tst_objectquerymodel.moc"
