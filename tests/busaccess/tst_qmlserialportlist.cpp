#include "qmlserialportlist.h"
#include "qmlserialportlist_p.h"

#include <QAbstractItemModelTester>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QtTest>

namespace {
SerialPortEntry port(const QString& name, const QString& description = QString(), bool valid = true)
{
    SerialPortEntry e;
    e.portName = name;
    e.description = description;
    e.systemLocation = QStringLiteral("/dev/") + name;
    e.valid = valid;
    return e;
}

/// A list over ports the test chooses, changed between reloads.
class FakePortList : public QMLSerialPortList
{
public:
    explicit FakePortList(QList<SerialPortEntry>* present)
        : QMLSerialPortList(*new QMLSerialPortListPrivate([present] { return *present; }), nullptr)
    {
    }
};

QStringList names(const QAbstractItemModel& model)
{
    QStringList out;
    for (int r = 0; r < model.rowCount(); ++r)
        out << model.index(r, 0).data(QMLSerialPortList::NameRole).toString();
    return out;
}
}

class tst_QMLSerialPortList : public QObject
{
    Q_OBJECT
private slots:
    void displayText();
    void invalidPortsWaitForReload();
    void reloadRemovesVanishedAndAppendsNew();
    void reloadKeepsRowsOfPortsStillThere();
    void holdsTheModelContract();
};

void tst_QMLSerialPortList::displayText()
{
    QList<SerialPortEntry> present{port("ttyUSB0", "USB serial"), port("ttyS0")};
    FakePortList list(&present);
    const QModelIndex usb = list.index(0, 0);
    QCOMPARE(usb.data(QMLSerialPortList::NameRole).toString(), QStringLiteral("ttyUSB0"));
    QCOMPARE(usb.data(QMLSerialPortList::DescriptionRole).toString(), QStringLiteral("ttyUSB0 (USB serial)"));
    QCOMPARE(usb.data(Qt::DisplayRole), usb.data(QMLSerialPortList::DescriptionRole));
    QCOMPARE(usb.data(Qt::EditRole), usb.data(QMLSerialPortList::DescriptionRole));
    QCOMPARE(usb.data(QMLSerialPortList::DevicePathRole).toString(), QStringLiteral("/dev/ttyUSB0"));
    QVERIFY(!usb.data(Qt::ToolTipRole).isValid());
    QCOMPARE(list.index(1, 0).data(Qt::DisplayRole).toString(), QStringLiteral("ttyS0"));
    // Beyond the rows (siblings within them: the model checker below).
    QVERIFY(!list.sibling(-1, 0, usb).isValid());
    QVERIFY(!list.sibling(0, 0, QModelIndex()).isValid());
    QVERIFY(!list.data(list.index(5, 0), QMLSerialPortList::NameRole).isValid());
    QCOMPARE(QMLSerialPortList::findPortName(QStringLiteral("a"), {}), -1);
}

void tst_QMLSerialPortList::invalidPortsWaitForReload()
{
    QList<SerialPortEntry> present{port("ttyS0"), port("ttyACM0", QString(), false), port("ttyS1")};
    FakePortList list(&present);
    QCOMPARE(names(list), (QStringList{"ttyS0", "ttyS1"}));
    list.reload();
    QCOMPARE(names(list), (QStringList{"ttyS0", "ttyS1", "ttyACM0"}));
}

void tst_QMLSerialPortList::reloadRemovesVanishedAndAppendsNew()
{
    QList<SerialPortEntry> present{port("a"), port("b"), port("c"), port("d")};
    FakePortList list(&present);
    QSignalSpy removed(&list, &QAbstractItemModel::rowsRemoved);
    QSignalSpy inserted(&list, &QAbstractItemModel::rowsInserted);
    QSignalSpy count(&list, &QMLSerialPortList::countChanged);

    // Two neighbours vanish (the second moves into the first's row), and
    // two ports appear, listed before the survivors.
    present = {port("e"), port("f"), port("a"), port("d")};
    list.reload();
    QCOMPARE(names(list), (QStringList{"a", "d", "e", "f"}));
    QCOMPARE(removed.count(), 2);
    for (const auto& args : removed) {
        QCOMPARE(args.at(1).toInt(), 1);
        QCOMPARE(args.at(2).toInt(), 1);
    }
    QCOMPARE(inserted.count(), 2);
    QCOMPARE(inserted.at(0).at(1).toInt(), 2);
    QCOMPARE(inserted.at(1).at(1).toInt(), 3);
    QCOMPARE(count.count(), 0); // four rows before and after

    present.clear();
    list.reload();
    QCOMPARE(list.count(), 0);
    QCOMPARE(count.count(), 1);
}

void tst_QMLSerialPortList::reloadKeepsRowsOfPortsStillThere()
{
    QList<SerialPortEntry> present{port("a", "old"), port("b")};
    FakePortList list(&present);
    QSignalSpy changed(&list, &QAbstractItemModel::rowsRemoved);
    present = {port("b"), port("a", "new")};
    list.reload();
    QCOMPARE(names(list), (QStringList{"a", "b"}));
    QCOMPARE(changed.count(), 0);
    // Matched by name only: the row keeps what it knew.
    QCOMPARE(list.index(0, 0).data().toString(), QStringLiteral("a (old)"));
    // Names are compared with case.
    present = {port("A"), port("b")};
    list.reload();
    QCOMPARE(names(list), (QStringList{"b", "A"}));
}

// Ports come and go at random between reloads, with Qt's model checker
// attached: survivors keep their order, newcomers follow in the order the
// machine lists them.
void tst_QMLSerialPortList::holdsTheModelContract()
{
    QRandomGenerator random(11);
    QList<SerialPortEntry> present;
    FakePortList list(&present);
    QAbstractItemModelTester checker(&list, QAbstractItemModelTester::FailureReportingMode::QtTest);
    QStringList expected;
    for (int step = 0; step < 300; ++step) {
        present.clear();
        for (int i = 0; i < 40; ++i)
            if (random.bounded(3) == 0)
                present.append(port(QStringLiteral("tty%1%2").arg(i % 2 ? "S" : "s").arg(i)));
        std::shuffle(present.begin(), present.end(), random);
        list.reload();
        QStringList next;
        for (const QString& name : qAsConst(expected))
            if (std::any_of(present.cbegin(), present.cend(), [&](const SerialPortEntry& e) { return e.portName == name; }))
                next << name;
        for (const SerialPortEntry& e : qAsConst(present))
            if (!next.contains(e.portName))
                next << e.portName;
        expected = next;
        QCOMPARE(names(list), expected);
    }
}

QTEST_GUILESS_MAIN(tst_QMLSerialPortList)
#include "tst_qmlserialportlist.moc"
