// vrnfwpack and vrnconfig's firmware family end to end against vrnsim:
// packages built and signed with keys made for the test, the catalogue, the
// check, updates of a motor and a standard node cut off by a power loss, the
// recovery of both through their bootloader, and a second update that finds
// nothing to do; updates and recoveries over a noisy line. Settings and
// registry in a temporary folder.

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QtTest>

class TstVrnConfigFirmware : public QObject
{
    Q_OBJECT

    struct Result
    {
        int code = -1;
        QByteArray out;
        QByteArray err;
    };

    QTemporaryDir m_home;
    QProcess m_sim;

    Result exec(const QString& program, const QStringList& args)
    {
        QProcess p;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("XDG_CONFIG_HOME"), m_home.filePath(QStringLiteral("config")));
        env.insert(QStringLiteral("XDG_DATA_HOME"), m_home.filePath(QStringLiteral("data")));
        p.setProcessEnvironment(env);
        p.setWorkingDirectory(m_home.path());
        p.start(program, args);
        if (!p.waitForFinished(60000))
            p.kill();
        return {p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1, p.readAllStandardOutput(),
                p.readAllStandardError()};
    }
    Result run(const QString& line)
    {
        return exec(qEnvironmentVariable("VRNCONFIG"),
                    QStringList{QStringLiteral("--timeout"), QStringLiteral("100")} + line.split(QLatin1Char(' ')));
    }
    Result pack(const QString& line) { return exec(QStringLiteral(VRNFWPACK), line.split(QLatin1Char(' '))); }
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
        QCOMPARE(pack(QStringLiteral("build --key release.secret --types motor --version 7.0.0 image.bin packages/motor-7.bpk")).code, 0);
        QCOMPARE(pack(QStringLiteral("build --key release.secret --types keypad --version 7.0.0 image.bin packages/keypad-7.bpk")).code, 0);
        QCOMPARE(pack(QStringLiteral("build --key stranger.secret --types motor --version 8.0.0 image.bin forged.bpk")).code, 0);
        QCOMPARE(pack(QStringLiteral("inspect --json forged.bpk")).code, 0);

        // Motors 0x100 and 0x101, a standard node 0x102; every node loses
        // power once, at block 20 of an update.
        m_sim.start(qEnvironmentVariable("VRNSIM"),
                    {QStringLiteral("--mcast"), QStringLiteral("239.255.77.14:47714"), QStringLiteral("--devices"),
                     QStringLiteral("motor:2,std:1"), QStringLiteral("--time-scale"), QStringLiteral("20"),
                     QStringLiteral("--power-loss-at"), QStringLiteral("20")});
        QVERIFY(m_sim.waitForStarted(5000));
        QVERIFY(m_sim.waitForReadyRead(5000));
        const QString bus = QString::fromLatin1(m_sim.readLine()).trimmed();
        QCOMPARE(run(QStringLiteral("open ") + bus).code, 0);
        QCOMPARE(run(QStringLiteral("discover")).code, 0);
    }

    void cleanupTestCase()
    {
        m_sim.terminate();
        m_sim.waitForFinished(5000);
    }

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
        QCOMPARE(waiting, (QStringList{QStringLiteral("0x000100"), QStringLiteral("0x000102")}));

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
        noisy.start(qEnvironmentVariable("VRNSIM"),
                    {QStringLiteral("--mcast"), QStringLiteral("239.255.77.15:47715"), QStringLiteral("--devices"),
                     QStringLiteral("motor:2,std:1"), QStringLiteral("--corrupt-blocks"), QStringLiteral("0.3"),
                     QStringLiteral("--loss"), QStringLiteral("0.2"), QStringLiteral("--seed"), QStringLiteral("5")});
        QVERIFY(noisy.waitForStarted(5000));
        QVERIFY(noisy.waitForReadyRead(5000));
        const auto stop = qScopeGuard([&noisy] {
            noisy.terminate();
            noisy.waitForFinished(5000);
        });
        QCOMPARE(run(QStringLiteral("open ") + QString::fromLatin1(noisy.readLine()).trimmed()).code, 0);
        QCOMPARE(run(QStringLiteral("discover --json")).code, 0);
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
