// vrnconfig's motor commands end to end: a standard node, a motor and a DC
// motor (TX30) simulated on their own multicast group at ten times real
// time; settings and registry in a temporary folder.

#include "clifixture.h"

#include <QtTest>

using CliFixture::Result;
using CliFixture::words;

class TstVrnConfigMotor : public QObject
{
    Q_OBJECT

    QTemporaryDir m_home;
    QProcess m_sim;

    Result run(const QStringList& args) { return CliFixture::run(m_home, args); }
    Result run(const QString& line) { return run(line.split(QLatin1Char(' '))); }
    static QJsonObject json(const QByteArray& out) { return CliFixture::result(out); }
    static QJsonObject jsonLine(const QByteArray& out, int line)
    {
        return QJsonDocument::fromJson(out.trimmed().split('\n').value(line)).object();
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_home.isValid());
        // Nodes 0x100 (standard), 0x101 (motor), 0x102 (TX30) become devices 2, 1, 3.
        QVERIFY(!CliFixture::discoverSim(m_sim, m_home, QStringLiteral("239.255.77.10:47710"),
                                         words("--devices std:1,motor:1,tx30:1 --time-scale 10")).isEmpty());
    }

    void cleanupTestCase() { CliFixture::stopSim(m_sim); }

    void badValues_data()
    {
        QTest::addColumn<QString>("command");
        QTest::newRow("percent above 100") << "move node:0x101 to 101";
        QTest::newRow("index above 15") << "move node:0x101 to-ip 16";
        QTest::newRow("no move") << "move node:0x101";
        QTest::newRow("speed out of range") << "set speed node:0x102 10 29 7";
        QTest::newRow("speed not a byte") << "set speed node:0x102 10 256 7";
        QTest::newRow("ramp out of range") << "set ramp node:0x102 101 off";
        QTest::newRow("ip index above 15") << "set ip node:0x101 16 here";
        QTest::newRow("direction") << "set direction node:0x101 sideways";
        QTest::newRow("watch two") << "watch position node:0x101 node:0x102";
        QTest::newRow("unconfirmed factory default") << "factory-default node:0x101";
        QTest::newRow("--yes elsewhere") << "wink node:0x101 --yes";
        QTest::newRow("stop nothing") << "stop";
        QTest::newRow("stop group 0") << "stop group 0";
        QTest::newRow("stop all and more") << "stop all node:0x101";
    }
    // Refused by the tool, in one line, before a frame is sent.
    void badValues()
    {
        QFETCH(QString, command);
        const Result r = run(command);
        QCOMPARE(r.code, 2);
        QVERIFY2(r.err.startsWith("vrnconfig: ") && r.err.count('\n') == 1, r.err.constData());
        QVERIFY(r.out.isEmpty());
    }

    void notAMotorAndNack()
    {
        Result r = run(QStringLiteral("wink node:0x100 --json"));
        QCOMPARE(r.code, 1);
        QCOMPARE(json(r.out).value(QStringLiteral("error")).toString(), QStringLiteral("not a motor"));
        r = run(QStringLiteral("get speed node:0x101"));
        QCOMPARE(r.code, 1);
        QVERIFY2(r.out.contains("FAILED not a DC motor"), r.out.constData());

        // The seeded motors have at most three intermediate positions: 9 is unset.
        r = run(QStringLiteral("move node:0x101 to-ip 9"));
        QCOMPARE(r.code, 1);
        QVERIFY2(r.out.contains("Nack(intermediate position not defined)"), r.out.constData());
        QCOMPARE(run(QStringLiteral("wink node:0x101")).code, 0);
    }

    void moveAndWatch()
    {
        QCOMPARE(run(QStringLiteral("move node:0x102 to 0")).code, 0);
        QCOMPARE(run(QStringLiteral("watch position node:0x102")).code, 0);
        QCOMPARE(run(QStringLiteral("move node:0x102 to 50")).code, 0);
        const Result r = run(QStringLiteral("watch position node:0x102 --json"));
        QCOMPARE(r.code, 0);
        const QList<QByteArray> lines = r.out.trimmed().split('\n');
        QVERIFY2(lines.size() >= 2, r.out.constData());  // it was seen moving, climbing towards the target
        for (int i = 1; i < lines.size(); ++i)
            QVERIFY(jsonLine(r.out, i).value(QStringLiteral("percent")).toInt() >= jsonLine(r.out, i - 1).value(QStringLiteral("percent")).toInt());
        QCOMPARE(jsonLine(r.out, lines.size() - 1).value(QStringLiteral("percent")).toInt(), 50);
        QCOMPARE(json(run(QStringLiteral("get position node:0x102 --json")).out)
                     .value(QStringLiteral("position")).toObject().value(QStringLiteral("percent")).toInt(), 50);
    }

    // One frame stops the motor in its move, without asking.
    void stopAll()
    {
        QCOMPARE(run(QStringLiteral("move node:0x102 to 0")).code, 0);
        const Result r = run(QStringLiteral("stop all"));
        QCOMPARE(r.code, 0);
        QVERIFY2(r.out.contains("stop sent to every motor (one frame"), r.out.constData());
        auto percent = [this] {
            return json(run(QStringLiteral("get position node:0x102 --json")).out)
                .value(QStringLiteral("position")).toObject().value(QStringLiteral("percent")).toInt();
        };
        const int stoodAt = percent();
        QVERIFY2(stoodAt > 0, qPrintable(QString::number(stoodAt)));
        QTest::qWait(300);
        QCOMPARE(percent(), stoodAt);
    }

    void settingsWrittenAndRead()
    {
        QCOMPARE(run(QStringLiteral("set speed node:0x102 10 12 7")).code, 0);
        Result r = run(QStringLiteral("get speed node:0x102 --json"));
        QCOMPARE(json(r.out).value(QStringLiteral("speed")).toObject(),
                 (QJsonObject{{QStringLiteral("up"), 10}, {QStringLiteral("down"), 12}, {QStringLiteral("slow"), 7}}));
        QCOMPARE(run(QStringLiteral("set ramp node:0x102 40 off")).code, 0);
        r = run(QStringLiteral("get ramp node:0x102"));
        QVERIFY2(r.out.contains("start on 40, stop off"), r.out.constData());
        QCOMPARE(run(QStringLiteral("set direction node:0x101 reversed")).code, 0);
        QVERIFY(run(QStringLiteral("get direction node:0x101")).out.contains("reversed"));
        r = run(QStringLiteral("set limits node:0x101 up 120 --json"));
        QCOMPARE(r.code, 0);
        QCOMPARE(json(r.out).value(QStringLiteral("limits")).toObject().value(QStringLiteral("up")).toInt(), 120);
        r = run(QStringLiteral("set ip node:0x101 5 50%"));
        QCOMPARE(r.code, 0);
        QVERIFY2(r.out.contains("5=") && r.out.contains("(50 %)"), r.out.constData());

        QCOMPARE(run(QStringLiteral("factory-default node:0x101 --ips-only --yes")).code, 0);
        r = run(QStringLiteral("get ips node:0x101"));
        QCOMPARE(r.code, 0);
        QVERIFY2(r.out.contains("none set"), r.out.constData());
    }
};

QTEST_MAIN(TstVrnConfigMotor)
#include "tst_vrnconfigmotor.moc"
