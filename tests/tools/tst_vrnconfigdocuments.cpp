// vrnconfig's documents end to end against vrnsim: a network of every kind
// backed up, changed behind the tool's back, compared and restored; bad
// documents refused before a frame is sent; a factory-reset motor given a
// backed-up motor's settings; the commissioning report read back as text.

#include "clifixture.h"

#include <QtTest>

using CliFixture::Result;
using CliFixture::words;

class TstVrnConfigDocuments : public QObject
{
    Q_OBJECT

    QTemporaryDir m_home;
    QProcess m_sim;
    QString m_backup;
    QJsonObject m_document;

    Result run(const QStringList& args) { return CliFixture::run(m_home, args, 300); }
    Result run(const QString& line) { return run(line.split(QLatin1Char(' '))); }
    QString file(const QString& name) const { return m_home.filePath(name); }

    QJsonObject entryOf(const QJsonObject& document, int node) const
    {
        for (const QJsonValue& d : document.value(QStringLiteral("devices")).toArray())
            if (d.toObject().value(QStringLiteral("node")).toInt() == node)
                return d.toObject();
        return {};
    }
    QJsonObject readJson(const QString& name) const
    {
        QFile f(file(name));
        return f.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(f.readAll()).object() : QJsonObject();
    }
    void writeJson(const QString& name, const QJsonObject& o) const
    {
        QFile f(file(name));
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write(QJsonDocument(o).toJson());
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_home.isValid());
        // Nodes 0x100.. in this order: std, motor, motor, dcmotor, lru50, tx50dc, tx30, settingtool.
        QVERIFY(!CliFixture::discoverSim(m_sim, m_home, QStringLiteral("239.255.78.21:47821"),
                                         words("--devices std:1,motor:2,dcmotor:1,lru50:1,tx50dc:1,tx30:1,settingtool:1 --time-scale 10"), 300).isEmpty());
        m_backup = file(QStringLiteral("site.json"));
        const Result r = run({QStringLiteral("backup"), QStringLiteral("--output"), m_backup});
        QVERIFY2(r.code == 0, r.err.constData());
        m_document = readJson(QStringLiteral("site.json"));
        QCOMPARE(m_document.value(QStringLiteral("devices")).toArray().size(), 8);
        // Every kind's settings were read: nothing is left unread.
        for (const QJsonValue& d : m_document.value(QStringLiteral("devices")).toArray())
            QVERIFY2(d.toObject().value(QStringLiteral("unread")).toArray().isEmpty(),
                     QJsonDocument(d.toObject()).toJson().constData());
        QVERIFY(entryOf(m_document, 0x106).contains(QStringLiteral("ramp")));
    }

    void cleanupTestCase() { CliFixture::stopSim(m_sim); }

    void backupChangeRestore()
    {
        const QJsonObject motor = entryOf(m_document, 0x101);
        const QJsonObject limits = motor.value(QStringLiteral("limits")).toObject();
        const int up = limits.value(QStringLiteral("up")).toInt(), down = limits.value(QStringLiteral("down")).toInt();
        const int ip = (up + down) / 2 + 7;
        QCOMPARE(run(QStringLiteral("set label node:0x101 Elsewhere")).code, 0);
        QCOMPARE(run(QStringLiteral("set limits node:0x101 up %1").arg(up + 3)).code, 0);
        QCOMPARE(run(QStringLiteral("set ip node:0x101 5 %1").arg(ip)).code, 0);

        Result r = run({QStringLiteral("diff"), m_backup, QStringLiteral("--json")});
        QCOMPARE(r.code, 1);
        QStringList fields;
        for (const QJsonValue& d : r.doc().value(QStringLiteral("differences")).toArray()) {
            QCOMPARE(d.toObject().value(QStringLiteral("node")).toInt(), 0x101);
            fields << d.toObject().value(QStringLiteral("field")).toString();
        }
        QCOMPARE(fields, (words("/label /limits/up /ips/5")));

        // Without --yes and without a terminal nothing is written.
        QCOMPARE(run({QStringLiteral("apply"), m_backup}).code, 2);
        r = run({QStringLiteral("apply"), m_backup, QStringLiteral("--dry-run")});
        QCOMPARE(r.code, 0);
        QVERIFY(r.out.contains("/ips/5"));
        const QString beforeApply = QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs);
        r = run({QStringLiteral("apply"), m_backup, QStringLiteral("--yes")});
        QVERIFY2(r.code == 0, r.err.constData());
        QVERIFY2(r.out.trimmed() == "4 0x000101 ok", r.out.constData());
        r = run({QStringLiteral("diff"), m_backup});
        QVERIFY2(r.code == 0 && r.out.isEmpty(), r.out.constData());

        // Each write is in the log, the tool's own "set" commands too, with
        // the value before and after.
        r = run(words("log node:0x101 --json"));
        QCOMPARE(QJsonDocument::fromJson(r.out).array().size(), 6);
        r = run({QStringLiteral("log"), QStringLiteral("node:0x101"), QStringLiteral("--since"), beforeApply,
                 QStringLiteral("--json")});
        const QJsonArray log = QJsonDocument::fromJson(r.out).array();
        QCOMPARE(log.size(), 3);
        QCOMPARE(log.at(0).toObject().value(QStringLiteral("old")).toString(), QStringLiteral("Elsewhere"));
        QCOMPARE(log.at(0).toObject().value(QStringLiteral("new")).toString(), motor.value(QStringLiteral("label")).toString());
        QVERIFY(log.at(2).toObject().value(QStringLiteral("new")).isNull());
        for (const QJsonValue& e : log)
            QCOMPARE(e.toObject().value(QStringLiteral("outcome")).toString(), QStringLiteral("ok"));
    }

    // A document that moves an end limit out and puts an intermediate
    // position beyond the old limit: the device takes the position only
    // after the limit, so limits are written first.
    void limitsBeforePositions()
    {
        QJsonObject doc = m_document;
        QJsonArray devices = doc.value(QStringLiteral("devices")).toArray();
        for (int i = 0; i < devices.size(); ++i) {
            QJsonObject e = devices.at(i).toObject();
            if (e.value(QStringLiteral("node")).toInt() != 0x102)
                continue;
            QJsonObject limits = e.value(QStringLiteral("limits")).toObject();
            const int down = limits.value(QStringLiteral("down")).toInt();
            QVERIFY(down > limits.value(QStringLiteral("up")).toInt() && down < 60000);
            limits.insert(QStringLiteral("down"), down + 1000);
            QJsonArray ips = e.value(QStringLiteral("ips")).toArray();
            ips[7] = down + 500;
            e.insert(QStringLiteral("limits"), limits);
            e.insert(QStringLiteral("ips"), ips);
            devices[i] = e;
        }
        doc.insert(QStringLiteral("devices"), devices);
        writeJson(QStringLiteral("wider.json"), doc);
        const QString wider = file(QStringLiteral("wider.json"));
        Result r = run({QStringLiteral("apply"), wider, QStringLiteral("--yes")});
        QVERIFY2(r.code == 0, r.out + r.err);
        QCOMPARE(run({QStringLiteral("diff"), wider}).code, 0);
        QCOMPARE(run({QStringLiteral("apply"), m_backup, QStringLiteral("--yes")}).code, 0);
    }

    void badDocuments_data()
    {
        QTest::addColumn<QString>("change");
        QTest::addColumn<QByteArray>("place");
        QTest::newRow("not JSON") << "notjson" << QByteArray("/: not JSON");
        QTest::newRow("format version") << "version" << QByteArray("/formatVersion:");
        QTest::newRow("limit 70000") << "limit" << QByteArray("/devices/1/limits/up: 70000");
        QTest::newRow("label of 40 bytes") << "label" << QByteArray("/devices/0/label:");
        QTest::newRow("kind of another device") << "kind" << QByteArray("/devices/1/kind:");
        QTest::newRow("another bus") << "bus" << QByteArray("/bus:");
    }
    // Refused in one line naming the place, before a frame is sent.
    void badDocuments()
    {
        QFETCH(QString, change);
        QFETCH(QByteArray, place);
        QJsonObject doc = m_document;
        QJsonArray devices = doc.value(QStringLiteral("devices")).toArray();
        // The motor at node 0x101 stands in the place "/devices/1".
        int at = 0;
        while (devices.at(at).toObject().value(QStringLiteral("node")).toInt() != 0x101)
            ++at;
        const QJsonValue moved = devices.at(at);
        devices[at] = devices.at(1);
        devices[1] = moved;
        QJsonObject first = devices.at(0).toObject(), second = devices.at(1).toObject();
        if (change == QLatin1String("version"))
            doc.insert(QStringLiteral("formatVersion"), 2);
        if (change == QLatin1String("limit"))
            second.insert(QStringLiteral("limits"), QJsonObject{{QStringLiteral("up"), 70000}, {QStringLiteral("down"), 10}});
        if (change == QLatin1String("label"))
            first.insert(QStringLiteral("label"), QString(40, QLatin1Char('x')));
        if (change == QLatin1String("kind")) {
            second.insert(QStringLiteral("kind"), QStringLiteral("DtsStd"));
            for (const char* s : {"direction", "limits", "ips"})
                second.remove(QLatin1String(s));
        }
        if (change == QLatin1String("bus"))
            doc.insert(QStringLiteral("bus"), QStringLiteral("mcast:239.255.77.99:47799:127.0.0.1"));
        devices[0] = first;
        devices[1] = second;
        doc.insert(QStringLiteral("devices"), devices);
        writeJson(QStringLiteral("bad.json"), doc);
        if (change == QLatin1String("notjson")) {
            QFile f(file(QStringLiteral("bad.json")));
            QVERIFY(f.open(QIODevice::WriteOnly));
            f.write("{\"format\": ");
        }
        const int logged = QJsonDocument::fromJson(run(QStringLiteral("log --json")).out).array().size();
        const Result r = run({QStringLiteral("apply"), file(QStringLiteral("bad.json")), QStringLiteral("--yes")});
        QCOMPARE(r.code, 2);
        QVERIFY2(r.err.contains(place) && r.err.count('\n') == 1, r.err.constData());
        QVERIFY(r.out.isEmpty());
        QCOMPARE(QJsonDocument::fromJson(run(QStringLiteral("log --json")).out).array().size(), logged);
        if (change == QLatin1String("bus"))
            QCOMPARE(run({QStringLiteral("diff"), file(QStringLiteral("bad.json")), QStringLiteral("--other-bus")}).code, 0);
    }

    void report()
    {
        if (QStandardPaths::findExecutable(QStringLiteral("pdftotext")).isEmpty())
            QSKIP("pdftotext (poppler-utils) is not installed; scripts/test.sh installs it");
        const QString pdf = file(QStringLiteral("site.pdf")), html = file(QStringLiteral("site.html"));
        const Result r = run({QStringLiteral("report"), QStringLiteral("--pdf"), pdf, QStringLiteral("--html"), html});
        QVERIFY2(r.code == 0, r.err.constData());
        QProcess text;
        text.start(QStringLiteral("pdftotext"), {QStringLiteral("-layout"), pdf, QStringLiteral("-")});
        QVERIFY(text.waitForFinished(20000));
        QCOMPARE(text.exitCode(), 0);
        const QString out = QString::fromUtf8(text.readAllStandardOutput());
        for (const QJsonValue& d : m_document.value(QStringLiteral("devices")).toArray()) {
            const QString label = d.toObject().value(QStringLiteral("label")).toString();
            QVERIFY2(label.isEmpty() || out.contains(label), qPrintable(label));
        }
        QVERIFY(out.contains(QStringLiteral("Motors")) && out.contains(QStringLiteral("Groups")));
    }

    // Last: it changes the registry.
    void replacement()
    {
        QCOMPARE(run(QStringLiteral("factory-default node:0x102 --yes")).code, 0);
        // Both by serial number: the old one's from the document, the new
        // one's as the registry's last backup read it.
        const QString oldSerial = entryOf(m_document, 0x101).value(QStringLiteral("serialNumber")).toString();
        const QString newSerial = entryOf(m_document, 0x102).value(QStringLiteral("serialNumber")).toString();
        Result r = run({QStringLiteral("replace"), oldSerial, newSerial, QStringLiteral("--from"), m_backup,
                        QStringLiteral("--yes")});
        QVERIFY2(r.code == 0, r.err.constData());
        const QString copy = file(QStringLiteral("new.json"));
        r = run({QStringLiteral("backup"), QStringLiteral("node:0x102"), QStringLiteral("--output"), copy});
        QVERIFY2(r.code == 0, r.err.constData());
        const QJsonObject old = entryOf(m_document, 0x101), now = entryOf(readJson(QStringLiteral("new.json")), 0x102);
        for (const char* s : {"label", "groups", "direction", "limits", "ips"})
            QVERIFY2(now.value(QLatin1String(s)) == old.value(QLatin1String(s)), s);
        // The registry knows the new motor in the old one's place.
        QCOMPARE(now.value(QStringLiteral("uuid")), old.value(QStringLiteral("uuid")));
        r = run(QStringLiteral("list --json"));
        const QJsonArray list = QJsonDocument::fromJson(r.out).array();
        QCOMPARE(list.size(), 7);
        for (const QJsonValue& d : list)
            if (d.toObject().value(QStringLiteral("uuid")) == old.value(QStringLiteral("uuid")))
                QCOMPARE(d.toObject().value(QStringLiteral("nodeID")).toInt(), 0x102);
    }
};

QTEST_GUILESS_MAIN(TstVrnConfigDocuments)
#include "tst_vrnconfigdocuments.moc"
