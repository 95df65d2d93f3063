// The firmware catalogue: the rows of the folder, signatures, the newest
// package per node type, and the rows following changes of the folder and
// of the setting, with the model tester riding along.
#include "firmwarefixture.h"
#include "firmwareloader.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>

using namespace FirmwareFixture;

class tst_FirmwareLoader : public QObject
{
    Q_OBJECT

private slots:
    void listsFolder();
    void followsFolder();
    void followsSetting();
};

void tst_FirmwareLoader::listsFolder()
{
    Folder folder;
    const BpkKeys stranger = BpkKeys::generate();
    folder.add(QStringLiteral("a-motor-2.0.0.bpk"), {1}, QStringLiteral("2.0.0"));
    folder.add(QStringLiteral("b-motor-2.10.0.bpk"), {1, 9}, QStringLiteral("2.10.0"));
    folder.add(QStringLiteral("c-motor-9.0.0-forged.bpk"), {1}, QStringLiteral("9.0.0"), 200, &stranger);
    QFile junk(QDir(folder.packages).filePath(QStringLiteral("d-junk.bpk")));
    QVERIFY(junk.open(QIODevice::WriteOnly));
    junk.write("not a package");
    junk.close();

    FirmwareLoader loader;
    QAbstractItemModelTester tester(&loader, QAbstractItemModelTester::FailureReportingMode::QtTest);
    QCOMPARE(loader.rowCount(), 4);
    const FirmwareInfo b = loader.at(1);
    QCOMPARE(b.version(), QStringLiteral("2.10.0"));
    QCOMPARE(b.kinds(), QStringList({QStringLiteral("motor"), QStringLiteral("dcmotor")}));
    QCOMPARE(b.size(), 200);
    QVERIFY(b.isVerified());
    QCOMPARE(loader.data(loader.index(2), FirmwareLoader::VerifiedRole).toBool(), false);
    QCOMPARE(loader.data(loader.index(3), FirmwareLoader::ReadableRole).toBool(), false);
    QVERIFY(!loader.data(loader.index(3), FirmwareLoader::ErrorRole).toString().isEmpty());
    // Newest by number, the forged 9.0.0 not offered; nothing for a keypad.
    QCOMPARE(loader.newestFor(1).fileName(), QStringLiteral("b-motor-2.10.0.bpk"));
    QVERIFY(!loader.newestFor(3).isReadable());
}

void tst_FirmwareLoader::followsFolder()
{
    Folder folder;
    folder.add(QStringLiteral("b.bpk"), {1}, QStringLiteral("1.0.0"));
    FirmwareLoader loader;
    QAbstractItemModelTester tester(&loader, QAbstractItemModelTester::FailureReportingMode::QtTest);
    QSignalSpy inserted(&loader, &QAbstractItemModel::rowsInserted);
    QSignalSpy removed(&loader, &QAbstractItemModel::rowsRemoved);
    QSignalSpy changed(&loader, &QAbstractItemModel::dataChanged);
    QSignalSpy reset(&loader, &QAbstractItemModel::modelReset);

    folder.add(QStringLiteral("a.bpk"), {1}, QStringLiteral("1.1.0"));
    folder.add(QStringLiteral("c.bpk"), {1}, QStringLiteral("1.2.0"));
    QTRY_COMPARE(loader.rowCount(), 3);
    QCOMPARE(loader.at(0).fileName(), QStringLiteral("a.bpk"));
    QCOMPARE(inserted.count(), 2);

    // Replaced in place: the row changes, it is not removed.
    folder.add(QStringLiteral("b.bpk"), {1}, QStringLiteral("1.5.0"));
    QTRY_COMPARE(loader.at(1).version(), QStringLiteral("1.5.0"));
    QVERIFY(changed.count() >= 1);

    QVERIFY(QFile::remove(QDir(folder.packages).filePath(QStringLiteral("a.bpk"))));
    QTRY_COMPARE(loader.rowCount(), 2);
    QCOMPARE(removed.count(), 1);
    QCOMPARE(loader.at(0).fileName(), QStringLiteral("b.bpk"));
    QCOMPARE(reset.count(), 0);
}

void tst_FirmwareLoader::followsSetting()
{
    Folder folder;
    folder.add(QStringLiteral("a.bpk"), {1}, QStringLiteral("1.0.0"));
    FirmwareLoader loader;
    QAbstractItemModelTester tester(&loader, QAbstractItemModelTester::FailureReportingMode::QtTest);
    QCOMPARE(loader.rowCount(), 1);

    // Another folder with more packages than a page of a list view.
    QTemporaryDir other;
    for (int i = 0; i < 40; ++i) {
        BpkManifest m;
        m.nodeTypes = {9};
        m.minor = quint8(i);
        QFile f(other.filePath(QStringLiteral("p%1.bpk").arg(i, 2, 10, QLatin1Char('0'))));
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write(BpkPackage::build(m, image(64, i), folder.keys, nullptr));
    }
    QSignalSpy pathChanged(&loader, &FirmwareLoader::pathChanged);
    Settings::instance()->setValue(QStringLiteral("firmwarePath"), other.path());
    QCOMPARE(pathChanged.count(), 1);
    QCOMPARE(loader.rowCount(), 40);
    QCOMPARE(loader.newestFor(9).version(), QStringLiteral("0.39.0"));
    QVERIFY(!loader.newestFor(1).isReadable());
}

QTEST_GUILESS_MAIN(tst_FirmwareLoader)
#include "tst_firmwareloader.moc"
