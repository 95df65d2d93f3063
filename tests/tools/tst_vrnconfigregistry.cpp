// The registry shared by several tools at once, end to end: vrnconfig
// processes against vrnsim, the registry file read by this process as the
// application would, another program holding its write lock.

#include "clifixture.h"

#include <QSet>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QtTest>

#include <algorithm>

#include <unistd.h>

using namespace CliFixture;

class TstVrnConfigRegistry : public QObject
{
    Q_OBJECT

    QTemporaryDir m_home;

    Result run(const QStringList& args) { return CliFixture::run(m_home, args); }
    // `vrnconfig --db file --bus bus ARGS...` with --json.
    Result on(const QString& file, const QString& bus, const QStringList& args)
    {
        return run(QStringList{QStringLiteral("--json"), QStringLiteral("--db"), file, QStringLiteral("--bus"), bus} + args);
    }
    static QJsonArray rows(const Result& r) { return QJsonDocument::fromJson(r.out).array(); }

    // The registry file opened beside the tools, as the application keeps it open.
    static QSqlDatabase beside(const QString& file, const QString& name)
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(file);
        db.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=5000"));
        db.open();
        return db;
    }

private slots:
    void initTestCase() { QVERIFY(m_home.isValid()); }

    // Every kind gets its own kind and serial number; a DC motor answers as
    // one; a number two devices answer to keeps two rows until a discovery
    // hears it once; a write over many devices needs --yes off a terminal.
    void everyKind()
    {
        QProcess twin, single;
        const QString devices = QStringLiteral("std:1,motor:1,dcmotor:1,lru50:1,tx50dc:1,tx30:1,settingtool:1");
        const QString busTwin = startSim(twin, QStringLiteral("239.255.77.21:47721"),
                                         {QStringLiteral("--devices"), devices, QStringLiteral("--duplicates"), QStringLiteral("1")});
        QVERIFY(!busTwin.isEmpty());
        const QString file = m_home.filePath(QStringLiteral("kinds.sqlite"));
        Result r = on(file, busTwin, {QStringLiteral("discover")});
        QCOMPARE(r.code, 0);
        QCOMPARE(r.doc().value(QStringLiteral("bus")).toString(), busTwin);
        QCOMPARE(r.doc().value(QStringLiteral("registry")).toString(), file);
        // Every label is read, and the setting tool is not asked for one.
        for (const QJsonValue& v : r.doc().value(QStringLiteral("devices")).toArray())
            QVERIFY2(!v.toObject().contains(QStringLiteral("labelError")), r.out.constData());

        r = on(file, busTwin, {QStringLiteral("list")});
        QSet<QString> kinds;
        int doubled = 0;
        quint32 dcMotor = 0;
        for (const QJsonValue& v : rows(r)) {
            const QJsonObject o = v.toObject();
            const QString kind = o.value(QStringLiteral("typeName")).toString();
            kinds.insert(kind);
            doubled += o.value(QStringLiteral("nbOccur")).toInt() == 2;
            if (kind == QLatin1String("DtsDcMotor"))
                dcMotor = quint32(o.value(QStringLiteral("nodeID")).toInt());
            // A setting tool is no network node: nothing to read from it.
            if (kind != QLatin1String("SettingTool") && o.value(QStringLiteral("nbOccur")).toInt() == 1)
                QVERIFY2(!o.value(QStringLiteral("serialNumber")).toString().isEmpty(), r.out.constData());
        }
        QCOMPARE(kinds, (QSet<QString>{QStringLiteral("DtsStd"), QStringLiteral("DtsMotor"), QStringLiteral("DtsDcMotor"),
                                        QStringLiteral("LRU50"), QStringLiteral("TX50DC"), QStringLiteral("TX30"),
                                        QStringLiteral("SettingTool")}));
        QCOMPARE(rows(r).size(), 8);
        QCOMPARE(doubled, 2);
        r = on(file, busTwin, {QStringLiteral("get"), QStringLiteral("speed"), QStringLiteral("node:%1").arg(dcMotor)});
        QVERIFY2(r.code == 0, r.out.constData());

        // type:std covers every kind: without --yes and a terminal, nothing changes.
        r = on(file, busTwin, words("set label type:std Same"));
        QCOMPARE(r.code, 2);
        QVERIFY2(r.err.contains(" devices (") && r.err.contains("--yes"), r.err.constData());
        r = on(file, busTwin, words("get label type:motor"));
        for (const QJsonValue& v : r.doc().value(QStringLiteral("results")).toArray())
            QVERIFY(v.toObject().value(QStringLiteral("label")).toString() != QLatin1String("Same"));
        stopSim(twin);

        // The same network without the second device: one row per number again.
        const QString busSingle = startSim(single, QStringLiteral("239.255.77.22:47722"), {QStringLiteral("--devices"), devices});
        QCOMPARE(on(file, busSingle, {QStringLiteral("discover")}).code, 0);
        stopSim(single);
        r = on(file, busSingle, {QStringLiteral("list")});
        QCOMPARE(rows(r).size(), 7);
        for (const QJsonValue& v : rows(r))
            QCOMPARE(v.toObject().value(QStringLiteral("nbOccur")).toInt(), 1);

        // A setting tool on a line of its own, listed by hand, once.
        r = on(file, busSingle, words("add node:0x7000 --kind settingtool"));
        QCOMPARE(r.doc().value(QStringLiteral("type")).toInt(), 7);
        QCOMPARE(on(file, busSingle, words("add node:0x7000 --kind settingtool")).code, 1);
        QCOMPARE(rows(on(file, busSingle, {QStringLiteral("list")})).size(), 8);
    }

    // Four tools share the bus and write one registry at once while it is
    // open beside them: each takes only the replies to its own requests,
    // every write is there, nobody met a locked database, and the file is whole.
    void concurrentTools()
    {
        QProcess sim;
        const QString bus = startSim(sim, QStringLiteral("239.255.77.23:47723"), words("--devices std:12"));
        QVERIFY(!bus.isEmpty());
        const QString file = m_home.filePath(QStringLiteral("shared.sqlite"));
        QCOMPARE(on(file, bus, {QStringLiteral("discover")}).code, 0);
        QSqlDatabase app = beside(file, QStringLiteral("app"));
        QProcess tools[4];
        const QStringList commands[4] = {
            {QStringLiteral("discover")},
            {QStringLiteral("set"), QStringLiteral("label"), QStringLiteral("node:0x100"), QStringLiteral("Hall A")},
            {QStringLiteral("set"), QStringLiteral("label"), QStringLiteral("node:0x101"), QStringLiteral("Hall B")},
            words("get groups all"),
        };
        for (int i = 0; i < 4; ++i)
            start(tools[i], m_home, QStringList{QStringLiteral("--db"), file, QStringLiteral("--bus"), bus} + commands[i]);
        int reads = 0;
        while (std::any_of(std::begin(tools), std::end(tools), [](QProcess& p) { return p.state() != QProcess::NotRunning; })) {
            QSqlQuery query(app);
            QVERIFY2(query.exec(QStringLiteral("SELECT COUNT(*) FROM Devices")) && query.next(), qPrintable(query.lastError().text()));
            QCOMPARE(query.value(0).toInt(), 12);
            ++reads;
            QTest::qWait(20);
        }
        for (QProcess& p : tools) {
            const Result r = finished(p);
            QVERIFY2(r.code == 0 && !r.err.contains("locked"), r.err.constData());
        }
        QVERIFY(reads > 0);
        stopSim(sim);
        QSqlQuery query(app);
        QVERIFY(query.exec(QStringLiteral("SELECT label FROM Devices WHERE nodeID IN (256, 257) ORDER BY nodeID")));
        QStringList labels;
        while (query.next())
            labels << query.value(0).toString();
        QCOMPARE(labels, (QStringList{QStringLiteral("Hall A"), QStringLiteral("Hall B")}));
        QVERIFY(query.exec(QStringLiteral("PRAGMA integrity_check")) && query.next());
        QCOMPARE(query.value(0).toString(), QStringLiteral("ok"));
        query = QSqlQuery();
        app.close();
        app = QSqlDatabase();
        QSqlDatabase::removeDatabase(QStringLiteral("app"));
    }

    // Another program holds the write lock beyond the busy timeout: one line
    // naming it, exit 1, and nothing reported as done. Two discoveries into
    // one empty registry leave one row per device.
    void lockedAndRacing()
    {
        QProcess sim;
        const QString bus = startSim(sim, QStringLiteral("239.255.77.24:47724"), words("--devices motor:20"));
        QVERIFY(!bus.isEmpty());
        const QString file = m_home.filePath(QStringLiteral("locked.sqlite"));
        QCOMPARE(on(file, bus, {QStringLiteral("list")}).code, 0);
        {
            QSqlDatabase holder = beside(file, QStringLiteral("holder"));
            QSqlQuery lock(holder);
            QVERIFY(lock.exec(QStringLiteral("BEGIN IMMEDIATE")));
            Result r = on(file, bus, {QStringLiteral("discover")});
            QVERIFY2(r.code == 1, r.out + r.err);
            QVERIFY2(r.err.contains("locked by another program") && !r.err.contains("found"), r.err.constData());
            lock.exec(QStringLiteral("ROLLBACK"));
            QCOMPARE(on(file, bus, {QStringLiteral("discover")}).code, 0);
            QVERIFY(lock.exec(QStringLiteral("BEGIN IMMEDIATE")));
            r = on(file, bus, words("set groups node:0x100 0x0F0007"));
            lock.exec(QStringLiteral("ROLLBACK"));
            QCOMPARE(r.code, 1);
            QCOMPARE(r.result().value(QStringLiteral("ok")).toBool(), false);
            QVERIFY2(r.result().value(QStringLiteral("error")).toString().contains(QLatin1String("locked by another program")), r.out.constData());
            r = on(file, bus, words("group list"));
            QVERIFY2(!r.out.contains(QByteArray::number(0x0F0007)), r.out.constData());
            lock = QSqlQuery();
            holder.close();
        }
        QSqlDatabase::removeDatabase(QStringLiteral("holder"));

        const QString empty = m_home.filePath(QStringLiteral("race.sqlite"));
        QProcess a, b;
        start(a, m_home, {QStringLiteral("--db"), empty, QStringLiteral("--bus"), bus, QStringLiteral("discover")});
        start(b, m_home, {QStringLiteral("--db"), empty, QStringLiteral("--bus"), bus, QStringLiteral("discover")});
        const Result ra = finished(a), rb = finished(b);
        stopSim(sim);
        QVERIFY2(ra.code == 0 && rb.code == 0, ra.err + rb.err);
        const Result r = on(empty, bus, {QStringLiteral("list")});
        QCOMPARE(rows(r).size(), 20);
    }

    // Answers later than a round waits arrive in the next round beside the
    // answers to it: the same devices, not two on each number.
    void lateAnswersAreNoDuplicates()
    {
        QProcess sim;
        const QString bus = startSim(sim, QStringLiteral("239.255.77.25:47725"), words("--devices std:4 --latency 400"));
        QVERIFY(!bus.isEmpty());
        QProcess tool;
        // The default timeout (500 ms), not the fixture's.
        startIn(tool, m_home, qEnvironmentVariable("VRNCONFIG"), {QStringLiteral("--json"), QStringLiteral("--db"),
                m_home.filePath(QStringLiteral("late.sqlite")), QStringLiteral("--bus"), bus, QStringLiteral("discover")});
        const Result r = finished(tool);
        stopSim(sim);
        QCOMPARE(r.code, 0);
        const QJsonObject summary = r.doc().value(QStringLiteral("summary")).toObject();
        QCOMPARE(summary.value(QStringLiteral("found")).toInt(), 4);
        QCOMPARE(summary.value(QStringLiteral("duplicates")).toArray().size(), 0);
    }

    // A mistyped or unopenable bus leaves no registry file; a read-only one
    // lists but refuses changes; a damaged one is refused before use.
    void filesLeftAndRefused()
    {
        QTemporaryDir dir;
        Result r = run(words("--bus serial:/nonexistent/tty discover"));
        QCOMPARE(r.code, 1);
        QVERIFY2(r.err.contains("cannot open"), r.err.constData());
        QVERIFY(QDir(m_home.filePath(QStringLiteral("data/Velmo/VRNConfigTool")))
                    .entryList({QStringLiteral("devices-serial*")}).isEmpty());

        const QString file = dir.filePath(QStringLiteral("reg.sqlite"));
        {
            QSqlDatabase db = beside(file, QStringLiteral("make"));
            QSqlQuery q(db);
            QVERIFY(q.exec(QStringLiteral("CREATE TABLE Devices(uuid INTEGER PRIMARY KEY NOT NULL, nodeID INTEGER DEFAULT 0,"
                                          "type INTEGER DEFAULT 1, label TEXT DEFAULT NULL, serialNumber BLOB DEFAULT NULL)")));
            QVERIFY(db.transaction());
            for (int i = 0; i < 2000; ++i)
                q.exec(QStringLiteral("INSERT INTO Devices(nodeID, label) VALUES (%1, 'Device %1')").arg(0x100 + i));
            QVERIFY(db.commit());
            q = QSqlQuery();
            db.close();
        }
        QSqlDatabase::removeDatabase(QStringLiteral("make"));
        QFile::setPermissions(file, QFileDevice::ReadOwner);
        if (access(file.toLocal8Bit().constData(), W_OK) != 0) {
            r = run({QStringLiteral("--json"), QStringLiteral("--db"), file, QStringLiteral("list")});
            QCOMPARE(r.code, 0);
            QCOMPARE(rows(r).size(), 2000);
            r = run({QStringLiteral("--db"), file, QStringLiteral("forget"), QStringLiteral("node:0x100")});
            QCOMPARE(r.code, 1);
            QVERIFY2(r.err.contains("read-only") && r.err.count('\n') == 1, r.err.constData());
        }
        QFile::setPermissions(file, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
        // Damage inside a page of rows: refused at open, with the reason.
        QFile f(file);
        QVERIFY(f.open(QIODevice::ReadWrite));
        f.seek(f.size() / 2);
        f.write(QByteArray(3000, '\x5a'));
        f.close();
        r = run({QStringLiteral("--db"), file, QStringLiteral("list")});
        QCOMPARE(r.code, 1);
        QVERIFY2(r.err.contains("damaged") || r.err.contains("not a device registry"), r.err.constData());
        QVERIFY(r.out.isEmpty());
    }
};

QTEST_GUILESS_MAIN(TstVrnConfigRegistry)
#include "tst_vrnconfigregistry.moc"
