// Firmware packages: the round trip and the refusal of each kind of bad
// package (vrnfwpack end to end: tst_vrnconfigfirmware); the catalogue of
// the packages folder: its rows, signatures, the newest package per node
// type, and the rows following the folder and the setting, with the model
// tester riding along. Keys are made at run time.
#include "bpkpackage.h"
#include "cryptography.h"
#include "firmwarefixture.h"
#include "firmwareloader.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QtTest>

#include <archive.h>
#include <archive_entry.h>

namespace {

QByteArray testImage(int size)
{
    QByteArray image(size, Qt::Uninitialized);
    for (int i = 0; i < size; ++i)
        image[i] = char((i * 31 + i / 7) & 0xFF);
    return image;
}

BpkManifest motorManifest()
{
    BpkManifest m;
    m.nodeTypes = {1, 9};
    m.major = 2;
    m.minor = 1;
    m.build = 17;
    m.chunkSize = 1000; // several chunks, the last one short
    return m;
}

/// The entries of a tar archive, in order.
QList<QPair<QByteArray, QByteArray>> entries(const QByteArray& tar)
{
    QList<QPair<QByteArray, QByteArray>> out;
    archive* a = archive_read_new();
    archive_read_support_format_tar(a);
    archive_read_open_memory(a, tar.constData(), size_t(tar.size()));
    archive_entry* e = nullptr;
    while (archive_read_next_header(a, &e) == ARCHIVE_OK) {
        QByteArray data(int(archive_entry_size(e)), '\0');
        archive_read_data(a, data.data(), size_t(data.size()));
        out.append({archive_entry_pathname(e), data});
    }
    archive_read_free(a);
    return out;
}

la_ssize_t append(archive*, void* client, const void* buffer, size_t length)
{
    static_cast<QByteArray*>(client)->append(static_cast<const char*>(buffer), int(length));
    return la_ssize_t(length);
}

QByteArray tarOf(const QList<QPair<QByteArray, QByteArray>>& files)
{
    QByteArray out;
    archive* a = archive_write_new();
    archive_write_set_format_ustar(a);
    archive_write_open(a, &out, nullptr, append, nullptr);
    for (const auto& f : files) {
        archive_entry* e = archive_entry_new();
        archive_entry_set_pathname(e, f.first.constData());
        archive_entry_set_size(e, f.second.size());
        archive_entry_set_filetype(e, AE_IFREG);
        archive_entry_set_perm(e, 0644);
        archive_write_header(a, e);
        archive_write_data(a, f.second.constData(), size_t(f.second.size()));
        archive_entry_free(e);
    }
    archive_write_close(a);
    archive_write_free(a);
    return out;
}

} // namespace

class tst_BpkPackage : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void roundTrip();
    void refused_data();
    void refused();
    void catalogueListsFolder();
    void catalogueFollowsFolder();
    void catalogueFollowsSetting();

private:
    BpkKeys m_keys;
    QByteArray m_image;
    QByteArray m_package;
};

void tst_BpkPackage::initTestCase()
{
    m_keys = BpkKeys::generate();
    QVERIFY(m_keys.canSign() && m_keys.canVerify() && m_keys.canDecrypt());
    m_image = testImage(4500);
    QString error;
    m_package = BpkPackage::build(motorManifest(), m_image, m_keys, &error);
    QVERIFY2(!m_package.isEmpty(), qPrintable(error));
}

void tst_BpkPackage::roundTrip()
{
    const BpkPackage pkg = BpkPackage::read(m_package);
    QVERIFY2(pkg.isReadable(), qPrintable(pkg.errorString()));
    QCOMPARE(pkg.manifest().nodeTypes, QList<int>({1, 9}));
    QCOMPARE(pkg.manifest().versionString(), QStringLiteral("2.1.0.17"));
    QCOMPARE(pkg.manifest().size, m_image.size());
    QCOMPARE(pkg.manifest().blockCount(), (4500 + 15) / 16);
    QString error;
    QCOMPARE(pkg.image(m_keys, &error), m_image);
    // The image is not stored in the clear.
    QVERIFY(!m_package.contains(m_image.left(64)));
    // Ordinary tools list the archive: three plain files.
    const auto files = entries(m_package);
    QCOMPARE(files.size(), 3);
    QCOMPARE(files[0].first, QByteArray("manifest.json"));
}

void tst_BpkPackage::refused_data()
{
    QTest::addColumn<QByteArray>("archive");
    QTest::addColumn<bool>("otherKeys");
    QTest::addColumn<QString>("error");

    const auto files = entries(m_package);
    auto with = [&](const QByteArray& name, const QByteArray& data) {
        auto copy = files;
        for (auto& f : copy) {
            if (f.first == name)
                f.second = data;
        }
        return tarOf(copy);
    };
    QByteArray flippedImage = files[1].second;
    flippedImage[100] = char(flippedImage[100] ^ 1);
    QByteArray manifest = files[0].second;
    manifest.replace("[2,1,0,17]", "[9,1,0,17]");

    // A package signed again after the image was swapped with another
    // chunk order still fails: chunks are bound to their place.
    QTest::newRow("signed with another key") << m_package << true << "package signature does not verify";
    QTest::newRow("image byte changed") << with("image.enc", flippedImage) << false << "package signature does not verify";
    QTest::newRow("manifest changed") << with("manifest.json", manifest) << false << "package signature does not verify";
    QTest::newRow("signature cut") << with("signature", files[2].second.left(10)) << false
                                   << "package signature does not verify";
    QTest::newRow("image cut") << with("image.enc", files[1].second.left(500)) << false
                               << "package damaged: image size does not match the manifest";
    QTest::newRow("manifest not JSON") << with("manifest.json", "{nope") << false
                                       << "package damaged: manifest is not a JSON object";
    QTest::newRow("block size too large") << with("manifest.json", QByteArray(files[0].second).replace("\"blockSize\":16", "\"blockSize\":17"))
                                          << false << "package damaged: manifest block size out of range";
    QTest::newRow("entry missing") << tarOf(files.mid(0, 2)) << false
                                   << "package damaged: manifest, image or signature missing";
    QTest::newRow("extra entry") << tarOf(files + QList<QPair<QByteArray, QByteArray>>{{"../evil", "x"}}) << false
                                 << "package damaged: unexpected entry \"../evil\"";
    QTest::newRow("entry twice") << tarOf(files + files.mid(2)) << false << "package damaged: entry \"signature\" twice";
    QTest::newRow("truncated archive") << m_package.left(1700) << false << "package damaged: entry \"image.enc\" cut short";
    QTest::newRow("not an archive") << QByteArray(2048, 'x') << false << "package damaged: not an archive";
    QTest::newRow("empty") << QByteArray() << false << "package damaged: not an archive";
}

void tst_BpkPackage::refused()
{
    QFETCH(QByteArray, archive);
    QFETCH(bool, otherKeys);
    QFETCH(QString, error);
    const BpkPackage pkg = BpkPackage::read(archive);
    QString why;
    QVERIFY(pkg.image(otherKeys ? BpkKeys::generate() : m_keys, &why).isEmpty());
    QCOMPARE(why, error);
}

void tst_BpkPackage::catalogueListsFolder()
{
    FirmwareFixture::Folder folder;
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

void tst_BpkPackage::catalogueFollowsFolder()
{
    FirmwareFixture::Folder folder;
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

void tst_BpkPackage::catalogueFollowsSetting()
{
    FirmwareFixture::Folder folder;
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
        f.write(BpkPackage::build(m, FirmwareFixture::image(64, i), folder.keys, nullptr));
    }
    QSignalSpy pathChanged(&loader, &FirmwareLoader::pathChanged);
    Settings::instance()->setValue(QStringLiteral("firmwarePath"), other.path());
    QCOMPARE(pathChanged.count(), 1);
    QCOMPARE(loader.rowCount(), 40);
    QCOMPARE(loader.newestFor(9).version(), QStringLiteral("0.39.0"));
    QVERIFY(!loader.newestFor(1).isReadable());
}

QTEST_GUILESS_MAIN(tst_BpkPackage)
#include "tst_bpkpackage.moc"
