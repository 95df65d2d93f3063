// vrnconfig end to end: simulators on their own multicast groups, the tool
// run as a user would, settings and registries in a temporary folder.

#include "clifixture.h"

#include <QElapsedTimer>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QStandardPaths>
#include <QtTest>

using namespace CliFixture;

class TstVrnConfig : public QObject
{
    Q_OBJECT

    QTemporaryDir m_home;
    QProcess m_sim;
    QString m_bus;

    void start(QProcess& p, const QStringList& args) { CliFixture::start(p, m_home, args); }
    Result run(const QStringList& args) { return CliFixture::run(m_home, args); }
    Result run(const QString& line) { return run(line.split(QLatin1Char(' '))); }

    // The registry file the tool keeps for the first simulator's bus.
    QString registryOfFirstBus() const
    {
        return QDir(m_home.filePath(QStringLiteral("data/Velmo/VRNConfigTool")))
            .entryInfoList({QStringLiteral("devices-mcast_239.255.77.3_*")}).value(0).filePath();
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_home.isValid());
        m_bus = startSim(m_sim, QStringLiteral("239.255.77.3:47703"), words("--devices std:3,motor:2,tx30:1 --duplicates 1 --seed 5"));
        QCOMPARE(m_bus, QStringLiteral("mcast:239.255.77.3:47703:127.0.0.1")); // the first line vrnsim prints
    }

    void cleanupTestCase() { stopSim(m_sim); }

    // Refused before anything is sent: exit 2 (or the code given), one error
    // line naming the value, and with --json the error document.
    void commandLine_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("error");
        auto row = [](const char* name, const QStringList& args, int code, const QString& error) {
            QTest::newRow(name) << args << code << error;
        };
        row("no command", {}, 2, QStringLiteral("no command"));
        row("unknown command", {QStringLiteral("frobnicate")}, 2, QStringLiteral("unknown command: frobnicate"));
        row("unknown option", words("--frob list"), 2, QStringLiteral("frob"));
        row("bad sort", words("list --sort colour"), 2, QStringLiteral("colour"));
        row("option of another command", words("get label 1 --desc"), 2, QStringLiteral("--desc applies to list only"));
        row("negative device", words("get label -1"), 2, QStringLiteral("not a valid device: -1"));
        row("negative group", words("set groups 1 -5"), 2, QStringLiteral("not a valid group address: -5"));
        row("bad node number", words("forget node:0x1000000"), 2, QStringLiteral("node:0x1000000"));
        row("empty --db", {QStringLiteral("--db"), QString(), QStringLiteral("list")}, 2, QStringLiteral("--db needs a file name"));
        row("port out of range", words("open mcast:239.255.1.1:99999:127.0.0.1"), 2, QStringLiteral("'99999'"));
        row("bind not literal", words("open mcast:239.255.1.1:5000:localhost"), 2, QStringLiteral("'localhost'"));
        row("group not multicast", words("open mcast:10.1.1.1:5000:127.0.0.1"), 2,
            QStringLiteral("not an IPv4 multicast group: '10.1.1.1'"));
        row("not a bus", words("open mcast:239.255.1.1:5000"), 2, QStringLiteral("not a bus identifier"));
        row("unconfirmed set all", words("set label all x"), 2, QStringLiteral("confirm with --yes"));
        row("empty registry", words("get label all"), 2, QStringLiteral("no device selected"));
        row("no bus", words("group move 0x0F0001 up"), 1, QStringLiteral("no bus"));
        row("group beyond 24 bits", words("get label group:0x1000000"), 2, QStringLiteral("0x1000000"));
        row("group 0", words("get label group:0"), 2, QStringLiteral("not a valid group address: 0"));
        row("group broadcast", words("group move 0xFFFFFF up"), 2, QStringLiteral("0xFFFFFF"));
        row("group unknown", words("get label group:0x0F0099"), 2, QStringLiteral("0x0F0099"));
        row("unknown kind", words("wink type:robot"), 2, QStringLiteral("robot"));
        row("move what", words("group move 0x0F0001 sideways"), 2, QStringLiteral("group move takes"));
        row("percent too big", words("group move 0x0F0001 to 101"), 2, QStringLiteral("percent from 0 to 100"));
        row("bad priority", words("get label all --priority -1"), 2, QStringLiteral("-1"));
        row("priority elsewhere", words("list --priority 2"), 2, QStringLiteral("--priority"));
        row("duration not a number", words("monitor --duration nan"), 2, QStringLiteral("nan"));
        row("retries above 10", words("--retries 11 get stats all"), 2, QStringLiteral("bad --retries: 11"));
        row("retries not a number", words("--retries two get stats all"), 2, QStringLiteral("bad --retries: two"));
        row("repeats above 5", words("--repeats 6 list"), 2, QStringLiteral("bad --repeats: 6"));
        row("repeats negative", words("--repeats -1 list"), 2, QStringLiteral("bad --repeats: -1 (0..5)"));
        row("repeats not a number", words("--repeats x list"), 2, QStringLiteral("bad --repeats: x"));
        row("two kinds of reset", words("reset stats all --network --errors"), 2, QStringLiteral("one of --network, --errors, --all"));
        row("reset option elsewhere", words("get stats all --network"), 2, QStringLiteral("--network applies to reset only"));
        row("diagnostics of no device", words("get diag"), 2, QStringLiteral("get diag needs at least one DEVICE"));
        row("serial port missing", words("open serial:/nonexistent/tty"), 1, QStringLiteral("cannot open"));
    }
    void commandLine()
    {
        QFETCH(QStringList, args);
        QFETCH(int, code);
        QFETCH(QString, error);
        Result r = run(args);
        QCOMPARE(r.code, code);
        QVERIFY2(r.err.startsWith("vrnconfig: ") && r.err.count('\n') == 1 && r.err.contains(error.toUtf8()), r.err.constData());
        QVERIFY(r.out.isEmpty());
        r = run(QStringList{QStringLiteral("--json")} + args);
        QCOMPARE(r.code, code);
        QCOMPARE(r.doc().value(QStringLiteral("exitCode")).toInt(), code);
        QVERIFY2(r.doc().value(QStringLiteral("error")).toString().contains(error), r.out.constData());
    }

    void helpAndVersion_data()
    {
        QTest::addColumn<QString>("args");
        QTest::addColumn<QString>("shows");
        QTest::newRow("-h") << "-h" << "Exit code:";
        QTest::newRow("--help") << "--help" << "--timeout MS";
        QTest::newRow("help COMMAND") << "help get" << "vrnconfig get label DEVICE...";
        QTest::newRow("--version") << "--version" << "vrnconfig 0.";
    }
    void helpAndVersion()
    {
        QFETCH(QString, args);
        QFETCH(QString, shows);
        const Result r = run(args);
        QCOMPARE(r.code, 0);
        QVERIFY2(r.out.contains(shows.toUtf8()), r.out.constData());
    }

    // A registry that cannot be used ends the run before anything is sent.
    // (A read-only registry: tst_vrnconfigregistry.)
    void unusableRegistry_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::newRow("random bytes") << "random";
        QTest::newRow("text file") << "text";
        QTest::newRow("folder") << "folder";
        QTest::newRow("other database") << "sqlite";
    }
    void unusableRegistry()
    {
        QFETCH(QString, kind);
        QTemporaryDir dir;
        const QString file = dir.filePath(QStringLiteral("registry"));
        if (kind == QLatin1String("folder")) {
            QVERIFY(QDir().mkpath(file));
        } else if (kind == QLatin1String("sqlite")) {
            QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("other"));
            db.setDatabaseName(file);
            QVERIFY(db.open());
            QVERIFY(QSqlQuery(db).exec(QStringLiteral("CREATE TABLE recipes(name TEXT)")));
            db.close();
        } else {
            QFile f(file);
            QVERIFY(f.open(QIODevice::WriteOnly));
            QByteArray bytes("shopping list\nmilk\n");
            if (kind != QLatin1String("text")) {
                bytes.resize(4096);
                for (int i = 0; i < 4096; ++i)
                    bytes[i] = char((i * 7919 + 13) % 251);
            }
            f.write(bytes);
            f.close();
        }
        const Result r = run({QStringLiteral("--db"), file, QStringLiteral("--bus"), m_bus, QStringLiteral("discover")});
        QCOMPARE(r.code, 1);
        QVERIFY2(r.err.startsWith("vrnconfig: ") && r.err.count('\n') == 1 && r.err.contains(file.toUtf8()), r.err.constData());
        QVERIFY(r.out.isEmpty());
    }

    void openDiscoverList()
    {
        Result r = run({QStringLiteral("open"), m_bus});
        QCOMPARE(r.code, 0);
        QCOMPARE(QString::fromLatin1(r.out).trimmed(), m_bus);

        r = run(QStringLiteral("--json discover"));
        QCOMPARE(r.code, 0);
        const QJsonArray found = r.doc().value(QStringLiteral("devices")).toArray();
        // Six nodes, one more answering with a number already present: one
        // row, flagged, and named in the summary and a warning.
        QCOMPARE(found.size(), 6);
        const QJsonArray duplicates = r.doc().value(QStringLiteral("summary")).toObject().value(QStringLiteral("duplicates")).toArray();
        QCOMPARE(duplicates.size(), 1);
        QVERIFY2(r.err.contains("answered twice") && r.err.contains(duplicates.at(0).toString().toUtf8()), r.err.constData());
        int previous = -1;
        for (const QJsonValue& v : found) {
            const QJsonObject o = v.toObject();
            QCOMPARE(o.value(QStringLiteral("status")).toString(), QStringLiteral("new"));
            QCOMPARE(o.value(QStringLiteral("duplicate")).toBool(), o.value(QStringLiteral("node")) == duplicates.at(0));
            QVERIFY(!o.value(QStringLiteral("label")).toString().isEmpty()); // read while discovering
            QVERIFY(o.value(QStringLiteral("nodeID")).toInt() > previous);   // sorted by node
            previous = o.value(QStringLiteral("nodeID")).toInt();
        }

        // Labels are listed at once; kinds as a person names them, the enum
        // key and number beside them in JSON.
        r = run(QStringLiteral("--json list --sort nodeid"));
        QCOMPARE(r.code, 0);
        const QJsonArray rows = QJsonDocument::fromJson(r.out).array();
        // The duplicated number keeps a row per device, both counted twice.
        QCOMPARE(rows.size(), 7);
        QHash<qint64, QString> labels;
        for (const QJsonValue& v : found)
            labels.insert(v.toObject().value(QStringLiteral("uuid")).toInt(), v.toObject().value(QStringLiteral("label")).toString());
        QStringList kinds;
        int doubled = 0;
        for (int i = 0; i < rows.size(); ++i) {
            const QJsonObject o = rows.at(i).toObject();
            doubled += o.value(QStringLiteral("nbOccur")).toInt() == 2;
            if (labels.contains(o.value(QStringLiteral("uuid")).toInt()))
                QCOMPARE(o.value(QStringLiteral("label")).toString(), labels.value(o.value(QStringLiteral("uuid")).toInt()));
            QVERIFY(!o.value(QStringLiteral("serialNumber")).toString().isEmpty() || o.value(QStringLiteral("nbOccur")).toInt() == 2);
            kinds << o.value(QStringLiteral("kind")).toString() + QLatin1Char('/') + o.value(QStringLiteral("typeName")).toString()
                         + QLatin1Char('/') + QString::number(o.value(QStringLiteral("type")).toInt());
        }
        QCOMPARE(doubled, 2);
        QVERIFY2(kinds.contains(QStringLiteral("standard node/DtsStd/1")) && kinds.contains(QStringLiteral("motor/DtsMotor/2"))
                     && kinds.contains(QStringLiteral("TX30/TX30/6")), qPrintable(kinds.join(QLatin1Char(' '))));
        r = run(QStringLiteral("list"));
        QVERIFY2(r.out.contains(" standard node ") && r.out.contains(" 0x000100 "), r.out.constData());

        // Again, each run a new process on the registry file: the same
        // devices, known, with the same uuids, no second row for any.
        r = run(QStringLiteral("--json discover"));
        QCOMPARE(r.code, 0);
        const QJsonArray again = r.doc().value(QStringLiteral("devices")).toArray();
        QCOMPARE(again.size(), 6);
        for (int i = 0; i < again.size(); ++i) {
            QCOMPARE(again.at(i).toObject().value(QStringLiteral("uuid")), found.at(i).toObject().value(QStringLiteral("uuid")));
            QCOMPARE(again.at(i).toObject().value(QStringLiteral("status")).toString(), QStringLiteral("known"));
        }
        QCOMPARE(QJsonDocument::fromJson(run(QStringLiteral("--json list")).out).array().size(), 7);
    }

    // Missing devices, a bus where nothing answers, late answers. (A bus that
    // cannot be opened: commandLine and tst_vrnconfigregistry.)
    void discoveryReports_data()
    {
        QTest::addColumn<QString>("args");
        QTest::addColumn<int>("found");
        QTest::addColumn<int>("missing");
        QTest::addColumn<QString>("says");
        QTest::newRow("nothing answers") << "--db :memory: --bus SILENT" << 0 << 0 << "cabling";
        QTest::newRow("registered devices missing") << "--db COPY --bus SILENT" << 0 << 7 << "cabling";
        QTest::newRow("late answers with --timeout") << "--db :memory: --bus LATE --timeout 900" << 2 << 0 << "";
    }
    void discoveryReports()
    {
        QFETCH(QString, args);
        QFETCH(int, found);
        QFETCH(int, missing);
        QFETCH(QString, says);
        QTemporaryDir dir;
        QProcess late;
        args.replace(QStringLiteral("SILENT"), QStringLiteral("mcast:239.255.77.6:47706:127.0.0.1"));
        if (args.contains(QStringLiteral("COPY"))) {
            QVERIFY(QFile::copy(registryOfFirstBus(), dir.filePath(QStringLiteral("copy.sqlite"))));
            args.replace(QStringLiteral("COPY"), dir.filePath(QStringLiteral("copy.sqlite")));
        }
        if (args.contains(QStringLiteral("LATE"))) {
            // Answers 700 ms after each request: more than the default round waits.
            const QString bus = startSim(late, QStringLiteral("239.255.77.7:47707"), words("--devices std:2 --latency 700"));
            QVERIFY(!bus.isEmpty());
            args.replace(QStringLiteral("LATE"), bus);
        }
        const Result r = run(QStringLiteral("--json %1 discover").arg(args));
        if (late.state() != QProcess::NotRunning)
            stopSim(late);
        QCOMPARE(r.code, 0);
        QVERIFY2(r.err.contains(says.toUtf8()), r.err.constData());
        const QJsonObject summary = r.doc().value(QStringLiteral("summary")).toObject();
        QCOMPARE(summary.value(QStringLiteral("found")).toInt(), found);
        QCOMPARE(summary.value(QStringLiteral("missing")).toInt(), missing);
        QCOMPARE(r.doc().contains(QStringLiteral("hint")), found == 0);
        // Missing ones too, from the registry; the row kept for the second
        // device of a duplicated number has no label of its own.
        QSet<int> nodes;
        for (const QJsonValue& v : r.doc().value(QStringLiteral("devices")).toArray())
            if (!nodes.contains(v.toObject().value(QStringLiteral("nodeID")).toInt())) {
                nodes.insert(v.toObject().value(QStringLiteral("nodeID")).toInt());
                QVERIFY(!v.toObject().value(QStringLiteral("label")).toString().isEmpty());
            }
    }

    // One registry per bus: a second network never mixes into the first.
    void registryPerBus()
    {
        QProcess other;
        const QString bus = startSim(other, QStringLiteral("239.255.77.8:47708"), words("--devices motor:2 --seed 9"));
        QVERIFY(!bus.isEmpty());
        QCOMPARE(run({QStringLiteral("--bus"), bus, QStringLiteral("discover")}).code, 0);
        Result r = run({QStringLiteral("--json"), QStringLiteral("--bus"), bus, QStringLiteral("get"), QStringLiteral("label"), QStringLiteral("all")});
        stopSim(other);
        QCOMPARE(r.code, 0);
        QCOMPARE(r.doc().value(QStringLiteral("results")).toArray().size(), 2);
        r = run(QStringLiteral("--json list"));
        QCOMPARE(QJsonDocument::fromJson(r.out).array().size(), 7);
    }

    void labels_data()
    {
        QTest::addColumn<QString>("label");
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("error");
        QTest::newRow("accepted") << "Hall 2 Süd" << 0 << "";
        QTest::newRow("single quote") << "Bob's" << 2 << "single quote";
        QTest::newRow("control character") << "Hall\t2" << 2 << "control characters";
        QTest::newRow("17 bytes of UTF-8") << "ääääääääa" << 2 << "17 bytes";
        QTest::newRow("1000 bytes") << QString(1000, QLatin1Char('x')) << 2 << "1000 bytes";
    }
    // A label the device or the registry cannot take is refused before it
    // is sent (the device keeps its name); one that fits is written, read
    // back and listed.
    void labels()
    {
        QFETCH(QString, label);
        QFETCH(int, code);
        QFETCH(QString, error);
        const QString before = run(QStringLiteral("--json get label node:0x100")).result().value(QStringLiteral("label")).toString();
        Result r = run({QStringLiteral("set"), QStringLiteral("label"), QStringLiteral("node:0x100"), label});
        QCOMPARE(r.code, code);
        QVERIFY2(r.err.contains(error.toUtf8()) && r.err.size() < 200, r.err.constData());
        r = run(QStringLiteral("--json get label node:0x100"));
        QCOMPARE(r.code, 0);
        QCOMPARE(r.result().value(QStringLiteral("label")).toString(), code == 0 ? label : before);
        r = run(QStringLiteral("--json list --sort nodeid"));
        QCOMPARE(QJsonDocument::fromJson(r.out).array().at(0).toObject().value(QStringLiteral("label")).toString(),
                 code == 0 ? label : before);
    }

    // Selections by group and kind, mixed kinds, abort on error, the group
    // list and a group move. (Slots read back as written: tst_vrnconfigline.)
    void selectionForms()
    {
        QCOMPARE(run(QStringLiteral("set groups 1 0x0F0001 7")).code, 0);
        QCOMPARE(run(words("get groups all")).code, 0);
        Result r = run(words("--json group list"));
        QCOMPARE(r.code, 0);
        QJsonArray members;
        for (const QJsonValue& g : QJsonDocument::fromJson(r.out).array())
            if (g.toObject().value(QStringLiteral("group")).toInt() == 0x0F0001)
                members = g.toObject().value(QStringLiteral("members")).toArray();
        QVERIFY2(members.contains(1), r.out.constData());

        r = run(words("--json get label group:0x0F0001"));
        QCOMPARE(r.code, 0);
        QCOMPARE(r.result().value(QStringLiteral("uuid")).toInt(), members.at(0).toInt());

        // Every row is a standard node or built on one (the second row of the
        // duplicated number too); four are motors (the DC motor and the
        // duplicated motor among them).
        const auto summary = [](const Result& r) { return QJsonDocument::fromJson(r.out).object().value(QStringLiteral("summary")).toObject(); };
        r = run(words("--json get label type:std"));
        QCOMPARE(summary(r).value(QStringLiteral("ok")).toInt(), 7);
        r = run(words("--json wink type:motor"));
        QCOMPARE(r.code, 0);
        QCOMPARE(summary(r).value(QStringLiteral("ok")).toInt(), 4);

        // Mixed kinds: the motors wink, the others fail, the run goes on.
        r = run(words("--json wink all"));
        QCOMPARE(r.code, 1);
        QCOMPARE(summary(r).value(QStringLiteral("ok")).toInt(), 4);
        QCOMPARE(summary(r).value(QStringLiteral("failed")).toInt(), 3);
        r = run(words("--json --abort-on-error --priority 5 wink all"));
        QCOMPARE(r.code, 1);
        QCOMPARE(summary(r).value(QStringLiteral("failed")).toInt(), 1);
        QCOMPARE(summary(r).value(QStringLiteral("ok")).toInt() + summary(r).value(QStringLiteral("notRun")).toInt(), 6);

        r = run(words("group move 0x0F0001 to 50"));
        QCOMPARE(r.code, 0);
        QVERIFY2(r.out.startsWith("group 0x0F0001: to sent"), r.out.constData());
    }

    // A refused slot leaves the library's job running: the tool stops it,
    // names the slot and fails.
    void refusedGroupSlotEndsTheRun()
    {
        const Result r = run(QStringLiteral("--json set groups 1 0x10 0xFFFFFF 0x30"));
        QCOMPARE(r.code, 1);
        QCOMPARE(r.result().value(QStringLiteral("ok")).toBool(), false);
        QCOMPARE(r.result().value(QStringLiteral("slot")).toInt(), 1);
        QVERIFY2(r.result().value(QStringLiteral("error")).toString().startsWith(QLatin1String("group slot 1 refused: Nack(")),
                 r.out.constData());
        QCOMPARE(r.doc().value(QStringLiteral("exitCode")).toInt(), 1);
    }

    // The monitor shows another tool's requests and the nodes' replies,
    // decoded, and writes a capture that Wireshark reads with our dissector.
    void monitorDecodesAndCaptures_data()
    {
        QTest::addColumn<bool>("json");
        QTest::newRow("text") << false;
        QTest::newRow("json") << true;
    }
    void monitorDecodesAndCaptures()
    {
        QFETCH(bool, json);
        QTemporaryDir dir;
        const QString capture = dir.filePath(QStringLiteral("frames.pcap"));
        QProcess monitor;
        QStringList args{QStringLiteral("monitor"), QStringLiteral("--count"), QStringLiteral("2"), QStringLiteral("--write"), capture};
        if (json)
            args.prepend(QStringLiteral("--json"));
        start(monitor, args);
        QVERIFY(monitor.waitForStarted(5000));
        // The monitor joins the group some time after it starts: ask until it has seen enough.
        for (int i = 0; i < 50 && !monitor.waitForFinished(100); ++i)
            QCOMPARE(run(QStringLiteral("get label node:0x101")).code, 0);
        const Result r = finished(monitor);
        QCOMPARE(r.code, 0);
        const QList<QByteArray> lines = r.out.trimmed().split('\n');
        QCOMPARE(lines.size(), 2);
        if (json) {
            const QJsonObject request = QJsonDocument::fromJson(lines.at(0)).object();
            const QJsonObject reply = QJsonDocument::fromJson(lines.at(1)).object();
            QCOMPARE(request.value(QStringLiteral("command")).toString(), QStringLiteral("GET_NODE_LABEL"));
            QCOMPARE(request.value(QStringLiteral("source")).toObject().value(QStringLiteral("nodeTypeName")).toString(), QStringLiteral("tool"));
            QCOMPARE(reply.value(QStringLiteral("source")).toObject().value(QStringLiteral("node")).toString(), QStringLiteral("0x000101"));
            QVERIFY(!reply.value(QStringLiteral("fields")).toObject().value(QStringLiteral("label")).toString().isEmpty());
        } else {
            const QRegularExpression request(QStringLiteral("^\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d\\.\\d{6} << tool 0xFE[0-9A-F]{4} > 0x000101 GET_NODE_LABEL$"));
            const QRegularExpression reply(QStringLiteral("^\\S+ \\S+ << \\S+ 0x000101 > 0xFE[0-9A-F]{4} POST_NODE_LABEL label \".+\"$"));
            QVERIFY2(request.match(QString::fromUtf8(lines.at(0))).hasMatch(), lines.at(0).constData());
            QVERIFY2(reply.match(QString::fromUtf8(lines.at(1))).hasMatch(), lines.at(1).constData());
        }

        const QString tshark = QStandardPaths::findExecutable(QStringLiteral("tshark"));
        if (tshark.isEmpty())
            QSKIP("tshark is not installed (scripts/test.sh installs it)");
        QProcess read;
        read.start(tshark, {QStringLiteral("-X"), QStringLiteral("lua_script:") + QStringLiteral(VRN_SOURCE_DIR "/tools/wireshark/vrn.lua"),
                            QStringLiteral("-r"), capture, QStringLiteral("-T"), QStringLiteral("fields"),
                            QStringLiteral("-e"), QStringLiteral("vrn.command"), QStringLiteral("-e"), QStringLiteral("vrn.label"),
                            QStringLiteral("-e"), QStringLiteral("vrn.crc.ok")});
        QVERIFY(read.waitForFinished(60000));
        const QList<QByteArray> fields = read.readAllStandardOutput().trimmed().split('\n');
        QCOMPARE(fields.size(), 2);
        QCOMPARE(fields.at(0), QByteArray("0x45\t\t1"));
        QVERIFY2(fields.at(1).startsWith("0x65\t") && fields.at(1).size() > 8 && fields.at(1).endsWith("\t1"), fields.at(1).constData());
    }

    // A serial port another program holds is named as such.
    void serialPortInUse()
    {
        QProcess sim, holder;
        sim.start(qEnvironmentVariable("VRNSIM"), words("--serial --devices std:1"));
        QVERIFY(sim.waitForReadyRead(5000));
        const QString bus = QString::fromLatin1(sim.readLine()).trimmed();
        start(holder, {QStringLiteral("--bus"), bus, QStringLiteral("monitor"), QStringLiteral("--duration"), QStringLiteral("20")});
        QVERIFY(holder.waitForStarted(5000));
        Result r;
        for (int i = 0; i < 50 && !r.err.contains("another program"); ++i) {
            QTest::qWait(100);
            r = run({QStringLiteral("--db"), QStringLiteral(":memory:"), QStringLiteral("open"), bus});
        }
        holder.terminate();
        finished(holder);
        stopSim(sim);
        QCOMPARE(r.code, 1);
        QVERIFY2(r.err.contains("used by another program") && !r.err.contains("Permission"), r.err.constData());
    }

    // Devices that do not answer fail, each with its reason.
    void failingDeviceGivesExitOne()
    {
        Result r = run({QStringLiteral("--json"), QStringLiteral("--db"), registryOfFirstBus(), QStringLiteral("--bus"), QStringLiteral("mcast:239.255.77.4:47704:127.0.0.1"),
                        QStringLiteral("get"), QStringLiteral("version"), QStringLiteral("1"), QStringLiteral("2")});
        QCOMPARE(r.code, 1);
        QCOMPARE(r.result(0).value(QStringLiteral("error")).toString(), QStringLiteral("Timeout error"));
        QCOMPARE(r.result(1).value(QStringLiteral("ok")).toBool(), false);
        // --bus served that run only: the remembered bus still answers.
        QCOMPARE(run(QStringLiteral("get version 1")).code, 0);
    }

    // When the bus falls silent the remaining devices fail at once rather
    // than each waiting out its own time.
    void silentBusEndsTheRun()
    {
        QProcess sim;
        const QString bus = startSim(sim, QStringLiteral("239.255.77.9:47709"), words("--devices std:40"));
        QVERIFY(!bus.isEmpty());
        QCOMPARE(run({QStringLiteral("--bus"), bus, QStringLiteral("discover")}).code, 0);
        stopSim(sim);
        const Result r = run({QStringLiteral("--json"), QStringLiteral("--bus"), bus, QStringLiteral("get"), QStringLiteral("label"), QStringLiteral("all")});
        QCOMPARE(r.code, 1);
        const QJsonArray results = r.doc().value(QStringLiteral("results")).toArray();
        QCOMPARE(results.size(), 40);
        int silent = 0;
        for (const QJsonValue& v : results)
            silent += v.toObject().value(QStringLiteral("error")).toString() == QLatin1String("bus not answering");
        QVERIFY2(silent >= 40 - 8, r.out.constData());
    }

    void forgetRemovesRows()
    {
        Result r = run(QStringLiteral("forget 1"));
        QCOMPARE(r.code, 0);
        r = run(QStringLiteral("--json list"));
        QCOMPARE(QJsonDocument::fromJson(r.out).array().size(), 6);
        QCOMPARE(run(QStringLiteral("get label 1")).code, 2);
        r = run(QStringLiteral("forget all"));
        QCOMPARE(r.code, 2);
        QVERIFY2(r.err.contains("confirm with --yes"), r.err.constData());
        QCOMPARE(run(QStringLiteral("forget all --yes")).code, 0);
        QCOMPARE(QJsonDocument::fromJson(run(QStringLiteral("--json list")).out).array().size(), 0);
    }

    // Not an assertion of time: the figures are printed for the record.
    void listOf100000Devices()
    {
        QTemporaryDir dir;
        const QString file = dir.filePath(QStringLiteral("big.sqlite"));
        {
            QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("big"));
            db.setDatabaseName(file);
            QVERIFY(db.open());
            QSqlQuery q(db);
            QVERIFY(q.exec(QStringLiteral("CREATE TABLE Devices(uuid INTEGER PRIMARY KEY NOT NULL, nodeID INTEGER DEFAULT 0,"
                                          "type INTEGER DEFAULT 1, label TEXT DEFAULT NULL, serialNumber BLOB DEFAULT NULL)")));
            QVERIFY(db.transaction());
            q.prepare(QStringLiteral("INSERT INTO Devices(nodeID, type, label) VALUES (?, ?, ?)"));
            for (int i = 0; i < 100000; ++i) {
                q.addBindValue(0x100 + i);
                q.addBindValue(1 + i % 7);
                q.addBindValue(QStringLiteral("Device %1").arg(i));
                QVERIFY(q.exec());
            }
            QVERIFY(db.commit());
            db.close();
        }
        QSqlDatabase::removeDatabase(QStringLiteral("big"));
        for (const bool json : {false, true}) {
            QElapsedTimer clock;
            clock.start();
            QStringList args{QStringLiteral("--db"), file, QStringLiteral("list")};
            if (json)
                args.prepend(QStringLiteral("--json"));
            const Result r = run(args);
            const qint64 ms = clock.elapsed();
            QCOMPARE(r.code, 0);
            if (json)
                QCOMPARE(QJsonDocument::fromJson(r.out).array().size(), 100000);
            else
                QCOMPARE(r.out.count('\n'), 100001);
            qInfo("vrnconfig %slist of 100000 devices: %lld ms", json ? "--json " : "", ms);
        }
    }
};

QTEST_GUILESS_MAIN(TstVrnConfig)
#include "tst_vrnconfig.moc"
