// vrnfwpack and vrnconfig's firmware family end to end against vrnsim:
// packages built and signed with keys made for the test, the catalogue, the
// check, updates of a motor and a standard node cut off by a power loss, the
// recovery of both through their bootloader, and a second update that finds
// nothing to do; updates and recoveries over a noisy line. Settings and
// registry in a temporary folder.

#include "clifixture.h"

#include <QScopeGuard>
#include <QtTest>

using CliFixture::Result;
using CliFixture::words;

class TstVrnConfigFirmware : public QObject
{
    Q_OBJECT

    QTemporaryDir m_home;
    QProcess m_sim;

    Result run(const QString& line) { return CliFixture::run(m_home, line.split(QLatin1Char(' ')), 100); }
    Result pack(const QString& line)
    {
        QProcess p;
        CliFixture::startIn(p, m_home, QStringLiteral(VRNFWPACK), line.split(QLatin1Char(' ')));
        return CliFixture::finished(p);
    }
    static QJsonObject firstResult(const QByteArray& out)
    {
        return QJsonDocument::fromJson(out).object().value(QStringLiteral("results")).toArray().first().toObject();
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_home.isValid());
        QDir(m_home.path()).mkpath(QStringLiteral("packages"));
        QFile image(m_home.filePath(QStringLiteral("image.bin")));
        QVERIFY(image.open(QIODevice::WriteOnly));
        for (int i = 0; i < 800; ++i)
            image.write(QByteArray(1, char(i * 7)));
        image.close();
        QCOMPARE(pack(QStringLiteral("keygen release.secret release.keys")).code, 0);
        QCOMPARE(pack(QStringLiteral("keygen stranger.secret stranger.keys")).code, 0);
        QFile keys(m_home.filePath(QStringLiteral("release.keys")));  // the public half only
        QVERIFY(keys.open(QIODevice::ReadOnly) && !keys.readAll().contains("sign-key"));
        QCOMPARE(pack(QStringLiteral("build --key release.secret --types motor --version 7.0.0 image.bin packages/motor-7.bpk")).code, 0);
        QCOMPARE(pack(QStringLiteral("build --key release.secret --types keypad --version 7.0.0 image.bin packages/keypad-7.bpk")).code, 0);
        QCOMPARE(pack(QStringLiteral("build --key stranger.secret --types motor,tx30 --version 8.0.0 image.bin forged.bpk")).code, 0);
        Result r = pack(QStringLiteral("inspect --json forged.bpk"));
        QCOMPARE(r.code, 0);
        QCOMPARE(r.doc().value(QStringLiteral("kinds")).toArray(), QJsonArray({QStringLiteral("motor"), QStringLiteral("tx30")}));
        QCOMPARE(r.doc().value(QStringLiteral("version")).toString(), QStringLiteral("8.0.0"));
        QCOMPARE(pack(QStringLiteral("verify --key release.keys packages/motor-7.bpk")).code, 0);
        r = pack(QStringLiteral("verify --key release.keys forged.bpk"));
        QCOMPARE(r.code, 1);
        QCOMPARE(r.err, QByteArray("vrnfwpack: forged.bpk: package signature does not verify\n"));
        // A public key signs nothing; an unknown kind and a missing package are usage errors.
        QCOMPARE(pack(QStringLiteral("build --key release.keys --types motor --version 7.0.0 image.bin x.bpk")).code, 1);
        QCOMPARE(pack(QStringLiteral("build --key release.secret --types toaster --version 7.0.0 image.bin x.bpk")).code, 2);
        QCOMPARE(pack(QStringLiteral("inspect")).code, 2);

        // Motors 0x100 and 0x101, a standard node 0x102; every node loses
        // power once, at block 20 of an update.
        QVERIFY(!CliFixture::discoverSim(m_sim, m_home, QStringLiteral("239.255.77.14:47714"),
                                         words("--devices motor:2,std:1 --time-scale 20 --power-loss-at 20"), 100).isEmpty());
    }

    void cleanupTestCase() { CliFixture::stopSim(m_sim); }

    void listAndCheck()
    {
        Result r = run(QStringLiteral("firmware list --folder packages --keys release.keys --json"));
        QCOMPARE(r.code, 0);
        const QJsonObject row = QJsonDocument::fromJson(r.out).array().at(1).toObject();
        QCOMPARE(row.value(QStringLiteral("version")).toString(), QStringLiteral("7.0.0"));
        QCOMPARE(row.value(QStringLiteral("verified")).toBool(), true);
        r = run(QStringLiteral("firmware check node:0x100 --json"));
        QCOMPARE(r.code, 0);
        QCOMPARE(firstResult(r.out).value(QStringLiteral("status")).toString(), QStringLiteral("updateAvailable"));
    }

    void refused_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<int>("code");
        QTest::addColumn<QByteArray>("text");
        QTest::newRow("forged package") << "firmware update node:0x101 --package forged.bpk" << 1
                                        << QByteArray("package signature does not verify");
        QTest::newRow("recover nothing") << "firmware recover" << 2 << QByteArray("vrnconfig: ");
        QTest::newRow("list with argument") << "firmware list x" << 2 << QByteArray("vrnconfig: ");
    }
    void refused()
    {
        QFETCH(QString, command);
        QFETCH(int, code);
        QFETCH(QByteArray, text);
        const Result r = run(command);
        QCOMPARE(r.code, code);
        QVERIFY2((r.out + r.err).contains(text), (r.out + r.err).constData());
    }

    void powerLossThenRecover()
    {
        Result r = run(QStringLiteral("--yes firmware update node:0x100 node:0x102"));
        QCOMPARE(r.code, 1);
        for (const char* node : {"0x000100", "0x000102"}) {
            const QByteArray hint = QByteArray("device waits in its bootloader: run `vrnconfig firmware recover node:") + node + '`';
            QVERIFY2(r.out.contains(hint), r.out.constData());
        }
        QVERIFY2(r.out.contains("report: 0 updated, 0 skipped, 2 failed, 0 recovered"), r.out.constData());
        // In its bootloader the node answers nothing else; discovery says where it is.
        QCOMPARE(run(QStringLiteral("get version node:0x100")).code, 1);
        r = run(QStringLiteral("discover --json"));
        QCOMPARE(r.code, 0);
        QStringList waiting;
        for (const QJsonValue& v : QJsonDocument::fromJson(r.out).object().value(QStringLiteral("devices")).toArray()) {
            if (v.toObject().value(QStringLiteral("status")).toString() == QLatin1String("in bootloader"))
                waiting << v.toObject().value(QStringLiteral("node")).toString();
        }
        QCOMPARE(waiting, (words("0x000100 0x000102")));

        r = run(QStringLiteral("--yes firmware recover node:0x100 node:0x102 --json"));
        QVERIFY2(r.code == 0, r.out.constData());
        for (const QJsonValue& v : QJsonDocument::fromJson(r.out).object().value(QStringLiteral("results")).toArray()) {
            QCOMPARE(v.toObject().value(QStringLiteral("version")).toString(), QStringLiteral("7.0.0"));
            QCOMPARE(v.toObject().value(QStringLiteral("outcome")).toString(), QStringLiteral("recovered"));
        }
        r = run(QStringLiteral("firmware check node:0x100 --json"));
        QCOMPARE(firstResult(r.out).value(QStringLiteral("status")).toString(), QStringLiteral("upToDate"));

        // Up to date: nothing is sent again, unless forced.
        r = run(QStringLiteral("--yes firmware update node:0x100 node:0x102"));
        QCOMPARE(r.code, 0);
        QVERIFY2(r.out.contains("report: 0 updated, 2 skipped, 0 failed, 0 recovered"), r.out.constData());
        QVERIFY2(r.out.contains("skipped: already runs 7.0.0"), r.out.constData());
        r = run(QStringLiteral("firmware update node:0x100 --force --json"));
        QCOMPARE(r.code, 0);
        QCOMPARE(firstResult(r.out).value(QStringLiteral("blocks")).toInt(), 50);
    }

    // A noisy line (30 % of the blocks arrive damaged, 20 % of the frames
    // lost each way): every update and every recovery gets through, the
    // damaged and lost blocks sent again. Runs last: the tool moves to the
    // noisy simulator's bus.
    void noisyLine()
    {
        QProcess noisy;
        const auto stop = qScopeGuard([&noisy] { CliFixture::stopSim(noisy); });
        QVERIFY(!CliFixture::discoverSim(noisy, m_home, QStringLiteral("239.255.77.15:47715"),
                                         words("--devices motor:2,std:1 --corrupt-blocks 0.3 --loss 0.2 --seed 5"), 100).isEmpty());
        for (const QString& command : {QStringLiteral("update"), QStringLiteral("recover")}) {
            const Result r = run(QStringLiteral("--yes firmware %1 --force node:0x100 node:0x102 --json").arg(command));
            QVERIFY2(r.code == 0, r.out + r.err);
            int retries = 0;
            for (const QJsonValue& v : QJsonDocument::fromJson(r.out).object().value(QStringLiteral("results")).toArray()) {
                QCOMPARE(v.toObject().value(QStringLiteral("version")).toString(), QStringLiteral("7.0.0"));
                QCOMPARE(v.toObject().value(QStringLiteral("outcome")).toString(), command == QLatin1String("update") ? QStringLiteral("updated") : QStringLiteral("recovered"));
                retries += v.toObject().value(QStringLiteral("retries")).toInt();
            }
            QVERIFY2(retries > 0, r.out.constData());
        }
    }
};

QTEST_GUILESS_MAIN(TstVrnConfigFirmware)
#include "tst_vrnconfigfirmware.moc"
