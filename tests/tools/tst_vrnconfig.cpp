// vrnconfig end to end: the simulator on its own multicast group, the tool
// run as a user would, settings and registry in a temporary folder.

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

class TstVrnConfig : public QObject
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
    QString m_bus;

    void start(QProcess& p, const QStringList& args)
    {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("XDG_CONFIG_HOME"), m_home.filePath(QStringLiteral("config")));
        env.insert(QStringLiteral("XDG_DATA_HOME"), m_home.filePath(QStringLiteral("data")));
        p.setProcessEnvironment(env);
        p.start(qEnvironmentVariable("VRNCONFIG"), QStringList{QStringLiteral("--timeout"), QStringLiteral("200")} + args);
    }

    Result run(const QStringList& args)
    {
        QProcess p;
        start(p, args);
        if (!p.waitForFinished(30000))
            p.kill();
        return {p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1, p.readAllStandardOutput(),
                p.readAllStandardError()};
    }

    QJsonArray jsonArray(const QByteArray& out) { return QJsonDocument::fromJson(out).array(); }
    // One device's result in a run's document.
    QJsonObject result(const QByteArray& out, int i = 0)
    {
        return QJsonDocument::fromJson(out).object().value(QStringLiteral("results")).toArray().at(i).toObject();
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_home.isValid());
        m_sim.start(qEnvironmentVariable("VRNSIM"),
                    {QStringLiteral("--mcast"), QStringLiteral("239.255.77.3:47703"), QStringLiteral("--bind"),
                     QStringLiteral("127.0.0.1"), QStringLiteral("--devices"), QStringLiteral("std:3,motor:2,tx30:1"),
                     QStringLiteral("--duplicates"), QStringLiteral("1"), QStringLiteral("--seed"), QStringLiteral("5")});
        QVERIFY(m_sim.waitForStarted(5000));
        QVERIFY(m_sim.waitForReadyRead(5000));
        m_bus = QString::fromLatin1(m_sim.readLine()).trimmed();
        QVERIFY(m_bus.startsWith(QLatin1String("mcast:")));
    }

    void cleanupTestCase()
    {
        m_sim.terminate();
        m_sim.waitForFinished(5000);
    }

    // Runs in declaration order: each step works on what the previous left.
    void withoutBusEveryDeviceCommandFailsCleanly()
    {
        // An empty registry selects nothing: a usage error that points at discovery.
        Result r = run({QStringLiteral("get"), QStringLiteral("label"), QStringLiteral("all")});
        QCOMPARE(r.code, 2);
        QVERIFY2(r.err.startsWith("vrnconfig: no device selected") && r.err.contains("discover"), r.err.constData());
        r = run({QStringLiteral("group"), QStringLiteral("move"), QStringLiteral("0x0F0001"), QStringLiteral("up")});
        QCOMPARE(r.code, 1);
        QVERIFY(r.err.startsWith("vrnconfig: no bus"));

        // A port that cannot open: one line of ours, not the library's log as well.
        r = run({QStringLiteral("open"), QStringLiteral("serial:/nonexistent/tty")});
        QCOMPARE(r.code, 1);
        QVERIFY2(r.err.startsWith("vrnconfig: cannot open") && r.err.count('\n') == 1, r.err.constData());
    }

    void usageErrors_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::newRow("no command") << QStringList();
        QTest::newRow("unknown command") << QStringList{QStringLiteral("frobnicate")};
        QTest::newRow("unknown option") << QStringList{QStringLiteral("--frob"), QStringLiteral("list")};
        QTest::newRow("bad sort") << QStringList{QStringLiteral("list"), QStringLiteral("--sort"), QStringLiteral("colour")};
        QTest::newRow("bad node number") << QStringList{QStringLiteral("get"), QStringLiteral("label"), QStringLiteral("node:0xZZ")};
        QTest::newRow("node number too big") << QStringList{QStringLiteral("forget"), QStringLiteral("node:0x1000000")};
        QTest::newRow("unknown device") << QStringList{QStringLiteral("forget"), QStringLiteral("4242")};
        QTest::newRow("label too long") << QStringList{QStringLiteral("set"), QStringLiteral("label"), QStringLiteral("1"),
                                                       QStringLiteral("seventeen bytes!!")};
        QTest::newRow("bad group") << QStringList{QStringLiteral("set"), QStringLiteral("groups"), QStringLiteral("1"),
                                                  QStringLiteral("0x1000000")};
        QTest::newRow("option of another command") << QStringList{QStringLiteral("get"), QStringLiteral("label"),
                                                                   QStringLiteral("1"), QStringLiteral("--desc")};
        QTest::newRow("duration not a number") << QStringList{QStringLiteral("monitor"), QStringLiteral("--duration"),
                                                              QStringLiteral("nan")};
        QTest::newRow("not a bus") << QStringList{QStringLiteral("open"), QStringLiteral("mcast:239.255.1.1:5000")};
        const auto words = [](const char* line) { return QString::fromLatin1(line).split(QLatin1Char(' ')); };
        QTest::newRow("group beyond 24 bits") << words("get label group:0x1000000");
        QTest::newRow("group 0") << words("get label group:0");
        QTest::newRow("group broadcast") << words("group move 0xFFFFFF up");
        QTest::newRow("group unknown") << words("get label group:0x0F0099");
        QTest::newRow("unknown kind") << words("wink type:robot");
        QTest::newRow("move what") << words("group move 0x0F0001 sideways");
        QTest::newRow("percent too big") << words("group move 0x0F0001 to 101");
        QTest::newRow("bad priority") << words("get label all --priority -1");
        QTest::newRow("priority elsewhere") << words("list --priority 2");
    }
    void usageErrors()
    {
        QFETCH(QStringList, args);
        const Result r = run(args);
        QCOMPARE(r.code, 2);
        QVERIFY2(r.err.startsWith("vrnconfig: ") && r.err.count('\n') == 1, r.err.constData());
    }

    void openDiscoverList()
    {
        Result r = run({QStringLiteral("open"), m_bus});
        QCOMPARE(r.code, 0);
        QCOMPARE(QString::fromLatin1(r.out).trimmed(), m_bus);

        r = run({QStringLiteral("--json"), QStringLiteral("discover")});
        QCOMPARE(r.code, 0);
        const QJsonArray found = jsonArray(r.out);
        // Six nodes, one more answering with a number already present: one row.
        QCOMPARE(found.size(), 6);

        r = run({QStringLiteral("--json"), QStringLiteral("list"), QStringLiteral("--sort"), QStringLiteral("nodeid")});
        QCOMPARE(r.code, 0);
        const QJsonArray rows = jsonArray(r.out);
        QCOMPARE(rows.size(), 6);
        int previous = -1;
        for (const QJsonValue& row : rows) {
            const QJsonObject o = row.toObject();
            for (const char* key : {"uuid", "nodeID", "type", "typeName", "label", "serialNumber", "nbOccur"})
                QVERIFY2(o.contains(QLatin1String(key)), key);
            QVERIFY(o.value(QStringLiteral("nodeID")).toInt() > previous);
            previous = o.value(QStringLiteral("nodeID")).toInt();
        }

        // A second discovery of the same network registers nothing new and
        // still names every device, as listed before.
        r = run({QStringLiteral("--json"), QStringLiteral("discover")});
        QCOMPARE(r.code, 0);
        const QJsonArray again = jsonArray(r.out);
        QCOMPARE(again.size(), 6);
        for (int i = 0; i < again.size(); ++i) {
            QCOMPARE(again.at(i).toObject().value(QStringLiteral("uuid")), found.at(i).toObject().value(QStringLiteral("uuid")));
            QCOMPARE(again.at(i).toObject().value(QStringLiteral("new")).toBool(), false);
        }
        r = run({QStringLiteral("--json"), QStringLiteral("list")});
        QCOMPARE(jsonArray(r.out).size(), 6);
    }

    void getAndSetLabel()
    {
        const QJsonObject first = jsonArray(run({QStringLiteral("--json"), QStringLiteral("list"), QStringLiteral("--sort"),
                                                 QStringLiteral("nodeid")}).out).first().toObject();
        const QString uuid = QString::number(first.value(QStringLiteral("uuid")).toInt());
        const QString node = QStringLiteral("node:0x%1").arg(first.value(QStringLiteral("nodeID")).toInt(), 0, 16);

        Result r = run({QStringLiteral("--json"), QStringLiteral("get"), QStringLiteral("label"), uuid});
        QCOMPARE(r.code, 0);
        QJsonObject o = result(r.out);
        QCOMPARE(o.value(QStringLiteral("ok")).toBool(), true);
        const QString before = o.value(QStringLiteral("label")).toString();
        QVERIFY(!before.isEmpty());

        r = run({QStringLiteral("set"), QStringLiteral("label"), node, QStringLiteral("Hall 2")});
        QCOMPARE(r.code, 0);
        r = run({QStringLiteral("--json"), QStringLiteral("get"), QStringLiteral("label"), node});
        QCOMPARE(r.code, 0);
        QCOMPARE(result(r.out).value(QStringLiteral("label")).toString(), QStringLiteral("Hall 2"));

        // The registry keeps what was read.
        r = run({QStringLiteral("--json"), QStringLiteral("list"), QStringLiteral("--sort"), QStringLiteral("label")});
        bool listed = false;
        for (const QJsonValue& row : jsonArray(r.out))
            listed |= row.toObject().value(QStringLiteral("label")).toString() == QLatin1String("Hall 2");
        QVERIFY(listed);
    }

    void groupsRoundTrip()
    {
        Result r = run({QStringLiteral("set"), QStringLiteral("groups"), QStringLiteral("1"), QStringLiteral("0x0F0001"),
                        QStringLiteral("7")});
        QCOMPARE(r.code, 0);
        r = run({QStringLiteral("--json"), QStringLiteral("get"), QStringLiteral("groups"), QStringLiteral("1")});
        QCOMPARE(r.code, 0);
        const QJsonArray groups = result(r.out).value(QStringLiteral("groups")).toArray();
        QCOMPARE(groups.size(), 16);
        QCOMPARE(groups.at(0).toInt(), 0x0F0001);
        QCOMPARE(groups.at(1).toInt(), 7);
    }

    // Selections by group and kind, mixed kinds, abort on error, the group list and a group move.
    void selectionForms()
    {
        QCOMPARE(run({QStringLiteral("get"), QStringLiteral("groups"), QStringLiteral("all")}).code, 0);
        Result r = run({QStringLiteral("--json"), QStringLiteral("group"), QStringLiteral("list")});
        QCOMPARE(r.code, 0);
        QJsonArray members;
        for (const QJsonValue& g : jsonArray(r.out))
            if (g.toObject().value(QStringLiteral("group")).toInt() == 0x0F0001)
                members = g.toObject().value(QStringLiteral("members")).toArray();
        QVERIFY2(members.contains(1), r.out.constData());

        r = run({QStringLiteral("--json"), QStringLiteral("get"), QStringLiteral("label"), QStringLiteral("group:0x0F0001")});
        QCOMPARE(r.code, 0);
        QCOMPARE(result(r.out).value(QStringLiteral("uuid")).toInt(), members.at(0).toInt());

        // Every row is a standard node or built on one; three are motors (the DC motor among them).
        const auto summary = [](const Result& r) { return QJsonDocument::fromJson(r.out).object().value(QStringLiteral("summary")).toObject(); };
        r = run({QStringLiteral("--json"), QStringLiteral("get"), QStringLiteral("label"), QStringLiteral("type:std")});
        QCOMPARE(summary(r).value(QStringLiteral("ok")).toInt(), 6);
        r = run({QStringLiteral("--json"), QStringLiteral("wink"), QStringLiteral("type:motor")});
        QCOMPARE(r.code, 0);
        QCOMPARE(summary(r).value(QStringLiteral("ok")).toInt(), 3);

        // Mixed kinds: the motors wink, the others fail, the run goes on.
        r = run({QStringLiteral("--json"), QStringLiteral("wink"), QStringLiteral("all")});
        QCOMPARE(r.code, 1);
        QCOMPARE(summary(r).value(QStringLiteral("ok")).toInt(), 3);
        QCOMPARE(summary(r).value(QStringLiteral("failed")).toInt(), 3);
        r = run({QStringLiteral("--json"), QStringLiteral("--abort-on-error"), QStringLiteral("--priority"), QStringLiteral("5"),
                 QStringLiteral("wink"), QStringLiteral("all")});
        QCOMPARE(r.code, 1);
        QCOMPARE(summary(r).value(QStringLiteral("failed")).toInt(), 1);
        QCOMPARE(summary(r).value(QStringLiteral("ok")).toInt() + summary(r).value(QStringLiteral("notRun")).toInt(), 5);

        r = run({QStringLiteral("group"), QStringLiteral("move"), QStringLiteral("0x0F0001"), QStringLiteral("to"), QStringLiteral("50")});
        QCOMPARE(r.code, 0);
        QVERIFY2(r.out.startsWith("group 0x0F0001: to sent"), r.out.constData());
    }

    // A refused slot leaves the library's job running: the tool stops it,
    // names the slot and fails.
    void refusedGroupSlotEndsTheRun()
    {
        const Result r = run({QStringLiteral("--json"), QStringLiteral("set"), QStringLiteral("groups"), QStringLiteral("1"),
                              QStringLiteral("0x10"), QStringLiteral("0xFFFFFF"), QStringLiteral("0x30")});
        QCOMPARE(r.code, 1);
        const QJsonObject o = result(r.out);
        QCOMPARE(o.value(QStringLiteral("ok")).toBool(), false);
        QCOMPARE(o.value(QStringLiteral("slot")).toInt(), 1);
        QVERIFY2(o.value(QStringLiteral("error")).toString().startsWith(QLatin1String("group slot 1 refused: Nack(")), r.out.constData());
    }

    // The monitor shows the nodes' answers to another process's requests
    // (its own requests would be dropped as echo), then stops at --count.
    void monitorCountsFrames_data()
    {
        QTest::addColumn<bool>("json");
        QTest::newRow("text") << false;
        QTest::newRow("json") << true;
    }
    void monitorCountsFrames()
    {
        QFETCH(bool, json);
        QProcess monitor;
        QStringList args{QStringLiteral("monitor"), QStringLiteral("--count"), QStringLiteral("2")};
        if (json)
            args.prepend(QStringLiteral("--json"));
        start(monitor, args);
        QVERIFY(monitor.waitForStarted(5000));
        // The monitor joins the group some time after it starts: ask until it has seen enough.
        for (int i = 0; i < 50 && !monitor.waitForFinished(100); ++i)
            QCOMPARE(run({QStringLiteral("get"), QStringLiteral("label"), QStringLiteral("2")}).code, 0);
        QCOMPARE(monitor.state(), QProcess::NotRunning);
        QCOMPARE(monitor.exitCode(), 0);
        const QList<QByteArray> lines = monitor.readAllStandardOutput().trimmed().split('\n');
        QCOMPARE(lines.size(), 2);
        for (const QByteArray& line : lines) {
            if (json) {
                const QJsonObject o = QJsonDocument::fromJson(line).object();
                QCOMPARE(o.value(QStringLiteral("direction")).toString(), QStringLiteral("received"));
                QCOMPARE(o.value(QStringLiteral("valid")).toBool(), true);
                QVERIFY(!o.value(QStringLiteral("command")).toString().isEmpty());
            } else {
                const QRegularExpression form(QStringLiteral("^\\(\\d+\\.\\d{6}\\) 0x[0-9A-F]{8} > 0x[0-9A-F]{6} \\S+ [0-9A-F ]*$"));
                QVERIFY2(form.match(QString::fromUtf8(line)).hasMatch(), line.constData());
            }
        }
    }

    // One device that no longer answers fails; the others are still read.
    void failingDeviceGivesExitOne()
    {
        Result r = run({QStringLiteral("--json"), QStringLiteral("--bus"), QStringLiteral("mcast:239.255.77.4:47704:127.0.0.1"),
                        QStringLiteral("get"), QStringLiteral("version"), QStringLiteral("1"), QStringLiteral("2")});
        QCOMPARE(r.code, 1);
        QCOMPARE(result(r.out, 0).value(QStringLiteral("error")).toString(), QStringLiteral("Timeout error"));
        QCOMPARE(result(r.out, 1).value(QStringLiteral("ok")).toBool(), false);
        // --bus served that run only: the remembered bus still answers.
        r = run({QStringLiteral("get"), QStringLiteral("version"), QStringLiteral("1")});
        QCOMPARE(r.code, 0);
    }

    void forgetRemovesRows()
    {
        Result r = run({QStringLiteral("forget"), QStringLiteral("1")});
        QCOMPARE(r.code, 0);
        r = run({QStringLiteral("--json"), QStringLiteral("list")});
        QCOMPARE(jsonArray(r.out).size(), 5);
        QCOMPARE(run({QStringLiteral("get"), QStringLiteral("label"), QStringLiteral("1")}).code, 2);
    }
};

QTEST_GUILESS_MAIN(TstVrnConfig)
#include "tst_vrnconfig.moc"
