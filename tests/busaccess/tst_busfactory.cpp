#include "busfactory.h"
#include "settings.h"
#include "vrnmcastbus.h"

#include <QPointer>
#include <QProcess>
#include <QSerialPort>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <cstdio>

namespace {
// Each multicast case has a group and port of its own (see port()).
const QString Group = QStringLiteral("239.255.53.%1");
const quint16 BasePort = 45310;

QString lastBusInSettings()
{
    return Settings::instance()->value(QStringLiteral("lastBusUUID"), QStringLiteral("<absent>")).toString();
}

/// Records the factory's signals by name, in the order they came.
struct SignalLog
{
    explicit SignalLog(BusFactory* f)
    {
        QObject::connect(f, &BusFactory::busChanged, f, [this](VRNBus* b) {
            names << QStringLiteral("busChanged");
            buses << b;
        });
        QObject::connect(f, &BusFactory::busUUIDChanged, f, [this](const QString& u) {
            names << QStringLiteral("busUUIDChanged:") + u;
        });
        QObject::connect(f, &BusFactory::error, f, [this](const QString& e) {
            names << QStringLiteral("error:") + e;
        });
    }
    QStringList names;
    QList<VRNBus*> buses;
};

/// A second program run: opens a bus the way a user would on start-up and
/// prints the identifier and the port's own name.
int runHelper(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const QString mode = QString::fromLocal8Bit(argv[2]);
    BusFactory* f = BusFactory::instance();
    const bool ok = mode == QLatin1String("open-serial") ? f->openSerial(QString::fromLocal8Bit(argv[3]))
                                                          : f->openUUID(f->lastBusUUID());
    const auto* port = f->bus() ? qobject_cast<QSerialPort*>(f->bus()->ioDevice()) : nullptr;
    std::printf("%s %s\n", qPrintable(f->busUUID()), port ? qPrintable(port->portName()) : "-");
    BusFactory::destroy();
    Settings::destroy();
    return ok ? 0 : 1;
}
}

class tst_BusFactory : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();
    void identifiers_data();
    void identifiers();
    void generatedIdentifiersParseBack();
    void badMulticastText_data();
    void badMulticastText();
    void openReplacesAndAnnounces();
    void failedOpenKeepsPreviousBus();
    void closeForgetsLastBus();
    void listenerFollowsTheBus();
    void rememberedSerialBusOpensInNewProcess();

private:
    /// Starts `vrnsim` on a transport and returns the bus it announces, or
    /// an empty text after skipping (no program) or failing the test.
    /// The simulator is stopped at the test's cleanup.
    QString startSimulator(const QStringList& transport);
    quint16 port(int caseNo) const { return quint16(BasePort + caseNo); }
    QString mcastUri(int caseNo) const
    {
        return Group.arg(caseNo) + QLatin1Char(':') + QString::number(port(caseNo));
    }

    QTemporaryDir m_config;
    QScopedPointer<QProcess> m_sim;
};

void tst_BusFactory::initTestCase()
{
    QVERIFY(m_config.isValid());
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(m_config.path()));
}

void tst_BusFactory::init()
{
    Settings::instance()->clear();
}

void tst_BusFactory::cleanup()
{
    BusFactory::destroy();
    if (m_sim) {
        m_sim->terminate();
        QTRY_VERIFY_WITH_TIMEOUT(m_sim->state() == QProcess::NotRunning, 5000);
        m_sim.reset();
    }
}

void tst_BusFactory::identifiers_data()
{
    QTest::addColumn<QString>("uuid");
    QTest::addColumn<bool>("serial");
    QTest::addColumn<bool>("mcast");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("group");
    QTest::addColumn<int>("port");
    QTest::addColumn<QString>("bind");

    QTest::newRow("empty") << "" << false << false << "" << "" << 0 << "";
    QTest::newRow("uri") << "vrn://239.1.2.3:5000" << false << false << "" << "" << 0 << "";
    QTest::newRow("serial") << "serial:COM3" << true << false << "COM3" << "" << 0 << "";
    QTest::newRow("serial path") << "serial:PTS/3" << true << false << "PTS/3" << "" << 0 << "";
    QTest::newRow("serial prefix has case") << "Serial:COM3" << false << false << "" << "" << 0 << "";
    QTest::newRow("mcast with bind") << "mcast:239.255.1.2:5000:127.0.0.1" << false << true << ""
                                     << "239.255.1.2" << 5000 << "127.0.0.1";
    QTest::newRow("mcast empty bind") << "mcast:239.1.2.3:5000:" << false << true << ""
                                      << "239.1.2.3" << 5000 << "";
    QTest::newRow("mcast no bind part") << "mcast:239.1.2.3:5000" << false << false << "" << "" << 0 << "";
    QTest::newRow("mcast prefix has case") << "MCAST:239.1.2.3:5000:" << false << false << "" << "" << 0 << "";
    QTest::newRow("mcast ipv6 group") << "mcast:ff05::1:5000:" << false << false << "" << "" << 0 << "";
    QTest::newRow("mcast port cut to 16 bits") << "mcast:239.1.2.3:70000:" << false << true << ""
                                               << "239.1.2.3" << (70000 & 0xFFFF) << "";
    QTest::newRow("mcast missing port") << "mcast:239.1.2.3::" << false << true << ""
                                        << "239.1.2.3" << 0 << "";
}

void tst_BusFactory::identifiers()
{
    QFETCH(QString, uuid);
    QFETCH(bool, serial);
    QFETCH(bool, mcast);
    QFETCH(QString, name);
    QFETCH(QString, group);
    QFETCH(int, port);
    QFETCH(QString, bind);

    QCOMPARE(BusFactory::isSerialUUID(uuid), serial);
    QCOMPARE(BusFactory::isMCastUUID(uuid), mcast);
    QString parsedName;
    QCOMPARE(BusFactory::parseSerialUUID(uuid, parsedName), serial);
    QCOMPARE(parsedName, name);
    QHostAddress g, b;
    quint16 p = 0;
    QCOMPARE(BusFactory::parseMCastUUID(uuid, g, p, b), mcast);
    if (!serial && !mcast) {
        // Not an identifier: opening it does nothing at all, not even an error.
        BusFactory* f = BusFactory::instance();
        SignalLog log(f);
        QVERIFY(!f->openUUID(uuid));
        QCOMPARE(log.names, QStringList());
        QCOMPARE(f->lastError(), QString());
        QCOMPARE(f->bus(), nullptr);
        QCOMPARE(lastBusInSettings(), QStringLiteral("<absent>"));
    }
    if (!mcast)
        return;
    QCOMPARE(g, QHostAddress(group));
    QCOMPARE(int(p), port);
    QCOMPARE(b, QHostAddress(bind));
    QCOMPARE(b.isNull(), bind.isEmpty());
}

void tst_BusFactory::generatedIdentifiersParseBack()
{
    QCOMPARE(BusFactory::generateSerialUUID(QStringLiteral("com3")), QStringLiteral("serial:COM3"));
    QCOMPARE(BusFactory::generateMCastUUID(QHostAddress("239.1.2.3"), 5000, QHostAddress()),
             QStringLiteral("mcast:239.1.2.3:5000:"));
    const QString uuid = BusFactory::generateMCastUUID(QHostAddress("239.255.9.9"), 65535,
                                                       QHostAddress::LocalHost);
    QHostAddress g, b;
    quint16 p = 0;
    QVERIFY(BusFactory::parseMCastUUID(uuid, g, p, b));
    QCOMPARE(BusFactory::generateMCastUUID(g, p, b), uuid);
}

void tst_BusFactory::badMulticastText_data()
{
    QTest::addColumn<QString>("uri");
    QTest::addColumn<QString>("bind");
    QTest::addColumn<QString>("expected");
    QTest::newRow("no port") << "239.1.2.3" << "" << "Failed to parse MultiCast URI: 239.1.2.3";
    QTest::newRow("no host") << ":5000" << "" << "Failed to parse MultiCast URI: :5000";
    QTest::newRow("port out of range") << "239.1.2.3:99999" << "127.0.0.1"
                                       << "Failed to parse MultiCast URI: 239.1.2.3:99999";
    QTest::newRow("bad bind") << "239.255.53.1:45311" << "localhost"
                              << "Failed to parse MultiCast bind address: localhost";
}

void tst_BusFactory::badMulticastText()
{
    QFETCH(QString, uri);
    QFETCH(QString, bind);
    QFETCH(QString, expected);
    BusFactory* f = BusFactory::instance();
    SignalLog log(f);
    QTest::ignoreMessage(QtDebugMsg, qPrintable(QStringLiteral("[BusFactory]: error \"%1\"").arg(expected)));
    QVERIFY(!f->openMCast(uri, bind));
    QCOMPARE(log.names, QStringList{QStringLiteral("error:") + expected});
    QCOMPARE(f->lastError(), expected);
    QCOMPARE(f->bus(), nullptr);
}

void tst_BusFactory::openReplacesAndAnnounces()
{
    BusFactory* f = BusFactory::instance();
    SignalLog log(f);
    QVERIFY(f->openMCast(mcastUri(2), QStringLiteral("127.0.0.1")));
    const QString first = QStringLiteral("mcast:%1:127.0.0.1").arg(mcastUri(2));
    QCOMPARE(log.names, (QStringList{"busChanged", "busUUIDChanged:" + first}));
    QCOMPARE(log.buses, QList<VRNBus*>{f->bus()});
    QVERIFY(qobject_cast<VRNMCastBus*>(f->bus()));
    QCOMPARE(f->busUUID(), first);
    QCOMPARE(f->lastBusUUID(), first);
    QCOMPARE(f->busWorker()->object(), f->bus());

    // Another bus, here through an identifier without bind address (which
    // stays on loopback): the first is deleted after the announcement.
    QPointer<VRNBus> old = f->bus();
    log.names.clear();
    const QString second = QStringLiteral("mcast:%1:").arg(mcastUri(3));
    QVERIFY(f->openUUID(second));
    QCOMPARE(log.names, (QStringList{"busChanged", "busUUIDChanged:" + second}));
    QVERIFY(old.isNull());
    QCOMPARE(f->busUUID(), second);
    QCOMPARE(lastBusInSettings(), second);
    QCOMPARE(f->busWorker()->object(), f->bus());
}

void tst_BusFactory::failedOpenKeepsPreviousBus()
{
    BusFactory* f = BusFactory::instance();
    QVERIFY(f->openMCast(mcastUri(4), QStringLiteral("127.0.0.1")));
    VRNBus* held = f->bus();
    const QString uuid = f->busUUID();
    SignalLog log(f);

    const QString missing = m_config.path() + QStringLiteral("/no-such-port");
    // The transport says why, once for the probe and once for the factory.
    const QRegularExpression busWarning(QStringLiteral("^\\[VRNBus\\]: .*no-such-port"));
    QTest::ignoreMessage(QtWarningMsg, busWarning);
    QTest::ignoreMessage(QtWarningMsg, busWarning);
    VRNBus probe(missing);
    QVERIFY(!probe.open());
    const QString expected = probe.errorString();
    QVERIFY(!expected.isEmpty());

    QTest::ignoreMessage(QtDebugMsg, qPrintable(QStringLiteral("[BusFactory]: error \"%1\"").arg(expected)));
    QVERIFY(!f->openSerial(missing));
    QCOMPARE(log.names, QStringList{QStringLiteral("error:") + expected});
    QCOMPARE(f->bus(), held);
    QCOMPARE(f->busUUID(), uuid);
    QCOMPARE(f->lastBusUUID(), uuid);
    QCOMPARE(f->busWorker()->object(), held);
    QVERIFY(held->isOpen());

    // A later success leaves the error in place.
    QVERIFY(f->openMCast(mcastUri(5), QStringLiteral("127.0.0.1")));
    QCOMPARE(f->lastError(), expected);
}

void tst_BusFactory::closeForgetsLastBus()
{
    BusFactory* f = BusFactory::instance();
    QVERIFY(f->openMCast(mcastUri(6), QStringLiteral("127.0.0.1")));
    QPointer<VRNBus> old = f->bus();
    SignalLog log(f);
    f->close();
    QCOMPARE(log.names, (QStringList{"busChanged", "busUUIDChanged:"}));
    QCOMPARE(log.buses, QList<VRNBus*>{nullptr});
    QVERIFY(old.isNull());
    QCOMPARE(f->busUUID(), QString());
    QCOMPARE(f->busWorker()->object(), nullptr);
    QCOMPARE(lastBusInSettings(), QString());
    QCOMPARE(f->lastBusUUID(), QString());

    // Closing when nothing is open is installing the bus already held:
    // nothing to announce.
    log.names.clear();
    f->close();
    QCOMPARE(log.names, QStringList());
}

void tst_BusFactory::listenerFollowsTheBus()
{
    BusFactory* f = BusFactory::instance();
    QVERIFY(f->openMCast(mcastUri(7), QStringLiteral("127.0.0.1")));
    VRNListenerViewModel* listener = f->busListener();
    QCOMPARE(f->property("listener").value<VRNListenerViewModel*>(), listener);
    QCOMPARE(listener->bus(), f->bus());

    QVERIFY(f->openMCast(mcastUri(8), QStringLiteral("127.0.0.1")));
    QCOMPARE(listener->bus(), f->bus());
    f->close();
    QCOMPARE(listener->bus(), nullptr);
    QCOMPARE(f->busListener(), listener);
}

void tst_BusFactory::rememberedSerialBusOpensInNewProcess()
{
    const QString simUuid = startSimulator({QStringLiteral("--serial")});
    if (simUuid.isEmpty())
        return; // skipped or failed, already reported
    QString name;
    QVERIFY2(BusFactory::parseSerialUUID(simUuid, name), qPrintable(simUuid));
    // The pseudo-terminal's own name is in lower case; the identifier is not.
    const QString portName = name.toLower();

    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("XDG_CONFIG_HOME"), m_config.path());
    const QString expected = BusFactory::generateSerialUUID(portName) + QLatin1Char(' ') + portName;
    const auto run = [&env, &expected](const QStringList& args) {
        QProcess p;
        p.setProcessEnvironment(env);
        p.start(QCoreApplication::applicationFilePath(), QStringList{QStringLiteral("--helper")} + args);
        QTRY_VERIFY_WITH_TIMEOUT(p.state() == QProcess::NotRunning, 5000);
        QCOMPARE(p.exitStatus(), QProcess::NormalExit);
        QCOMPARE(p.exitCode(), 0);
        QCOMPARE(QString::fromLocal8Bit(p.readAllStandardOutput()).trimmed(), expected);
    };
    run({QStringLiteral("open-serial"), portName});
    if (QTest::currentTestFailed())
        return;
    run({QStringLiteral("reopen")});

}

QString tst_BusFactory::startSimulator(const QStringList& transport)
{
    const QString vrnsim = qEnvironmentVariable("VRNSIM");
    if (vrnsim.isEmpty() || !QFileInfo(vrnsim).isExecutable()) {
        QTest::qSkip("the simulator program is not built", __FILE__, __LINE__);
        return QString();
    }
    m_sim.reset(new QProcess);
    QProcess& sim = *m_sim;
    sim.start(vrnsim, transport + QStringList{QStringLiteral("--devices"), QStringLiteral("std:1")});
    const auto lineOrExit = [&sim] { return sim.canReadLine() || sim.state() == QProcess::NotRunning; };
    if (!QTest::qWaitFor(lineOrExit, 5000) || !sim.canReadLine()) {
        QTest::qFail("the simulator announced no bus", __FILE__, __LINE__);
        return QString();
    }
    return QString::fromLocal8Bit(sim.readLine()).trimmed();
}

int main(int argc, char** argv)
{
    if (argc >= 3 && qstrcmp(argv[1], "--helper") == 0)
        return runHelper(argc, argv);
    QCoreApplication app(argc, argv);
    tst_BusFactory tc;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&tc, argc, argv);
}

#include "tst_busfactory.moc"
