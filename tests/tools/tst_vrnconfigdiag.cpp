// vrnconfig's diagnostics commands and --retries end to end: a standard node
// and two motors simulated on their own multicast group; settings and
// registry in a temporary folder.

#include "clifixture.h"

#include <QtTest>

#include <csignal>

class TstVrnConfigDiag : public QObject
{
    Q_OBJECT

    struct Result
    {
        int code = -1;
        QJsonArray results;  // with --json
        QByteArray err;
    };

    QTemporaryDir m_home;
    QProcess m_sim;

    Result run(const QString& line)
    {
        const CliFixture::Result r = CliFixture::run(m_home, line.split(QLatin1Char(' ')), 100);
        return {r.code, QJsonDocument::fromJson(r.out).object().value(QStringLiteral("results")).toArray(), r.err};
    }
    static QJsonObject device(const Result& r, const QString& node)
    {
        for (const QJsonValue& v : r.results) {
            if (v.toObject().value(QStringLiteral("node")).toString() == node)
                return v.toObject();
        }
        return {};
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_home.isValid());
        QVERIFY(!CliFixture::discoverSim(m_sim, m_home, QStringLiteral("239.255.77.31:47731"),
                                         CliFixture::words("--devices std:1,motor:2"), 100).isEmpty());
    }

    void cleanupTestCase() { CliFixture::stopSim(m_sim); }

    void diagnosticsAndStatistics()
    {
        // Diagnostics are a motor's: the standard node says so, the motors answer.
        const Result diag = run(QStringLiteral("--json get diag all"));
        QCOMPARE(diag.code, 1);
        QCOMPARE(diag.results.size(), 3);
        QCOMPARE(device(diag, "0x000100").value("error").toString(), QStringLiteral("not a motor"));
        const QJsonObject counters = device(diag, "0x000101").value("diagnostics").toObject();
        QCOMPARE(counters.keys().size(), 9);
        QVERIFY(counters.value("moves").toInt() > 0);

        const Result stats = run(QStringLiteral("--json get stats all"));
        QCOMPARE(stats.code, 0);
        for (const QJsonValue& v : stats.results) {
            QVERIFY(v.toObject().value("traffic").toObject().value("received").toInt() > 0);
            QCOMPARE(v.toObject().value("errors").toObject().keys().size(), 9);
        }
    }

    // The motor counts what happens to it: a move, a power cut, a restart.
    void countersMove()
    {
        const auto counters = [this] {
            return device(run(QStringLiteral("--json get diag node:0x000101")), "0x000101").value("diagnostics").toObject();
        };
        const QJsonObject before = counters();
        QCOMPARE(run(QStringLiteral("move node:0x000101 up")).code, 0);
        ::kill(pid_t(m_sim.processId()), SIGUSR1);
        ::kill(pid_t(m_sim.processId()), SIGUSR2);
        QTRY_COMPARE(counters().value("resets").toInt(), before.value("resets").toInt() + 1);
        const QJsonObject after = counters();
        QCOMPARE(after.value("powerCuts").toInt(), before.value("powerCuts").toInt() + 1);
        QCOMPARE(after.value("moves").toInt(), before.value("moves").toInt() + 1);
        QCOMPARE(after.value("movesSinceObstacle").toInt(), before.value("movesSinceObstacle").toInt() + 1);
    }

    void resetStats_data()
    {
        QTest::addColumn<QString>("option");
        QTest::addColumn<bool>("traffic");
        QTest::addColumn<bool>("errors");
        QTest::newRow("network") << "--network" << true << false;
        QTest::newRow("errors") << "--errors" << false << true;
        QTest::newRow("all") << "--all" << true << true;
        QTest::newRow("both by default") << "" << true << true;
    }

    void resetStats()
    {
        QFETCH(QString, option);
        QFETCH(bool, traffic);
        QFETCH(bool, errors);
        const Result r = run(QStringLiteral("--json reset stats node:0x000102 %1").arg(option).trimmed());
        QCOMPARE(r.code, 0);
        const QJsonObject d = r.results.at(0).toObject();
        QCOMPARE(d.contains("traffic"), traffic);
        QCOMPARE(d.contains("errors"), errors);
        if (traffic)  // the reset and the read back, nothing older
            QVERIFY(d.value("traffic").toObject().value("seen").toInt() <= 2);
        for (const QJsonValue& v : d.value("errors").toObject())
            QCOMPARE(v.toInt(), 0);
    }

    // Last: stops the simulator, so every request times out.
    void retriesAfterTimeout_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<int>("tries");
        QTest::newRow("default") << "get label node:0x000101" << 3;
        QTest::newRow("none") << "--retries 0 get label node:0x000101" << 1;
        QTest::newRow("five") << "--retries 5 get label node:0x000101" << 6;
        QTest::newRow("two steps, each tried") << "--retries 1 set label node:0x000101 X" << 2;
        // A lost acknowledgement may hide a change made: a relative one runs once.
        QTest::newRow("limit adjustment once") << "set limits node:0x000101 up adjust 10" << 1;
    }

    void retriesAfterTimeout()
    {
        QFETCH(QString, line);
        QFETCH(int, tries);
        if (m_sim.state() != QProcess::NotRunning) {
            m_sim.terminate();
            QVERIFY(m_sim.waitForFinished(5000));
        }
        const Result r = run(QStringLiteral("--json ") + line);
        QCOMPARE(r.code, 1);
        const QJsonObject d = r.results.at(0).toObject();
        QCOMPARE(d.value("error").toString(), QStringLiteral("Timeout error"));
        QCOMPARE(d.value("tries").toInt(1), tries);
    }
};

QTEST_GUILESS_MAIN(TstVrnConfigDiag)
#include "tst_vrnconfigdiag.moc"
