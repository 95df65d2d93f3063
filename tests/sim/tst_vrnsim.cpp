// The vrnsim program: command line, first line, and the pseudo-terminal
// answering a raw peer. Both real transports against it, through
// vrnconfig: the multicast bus in every tools test, the serial bus in
// tst_vrnconfigline.
#include "dts.h"
#include "vrnmessage.h"

#include <QtTest>

#include <csignal>
#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

namespace {

const int Wait = 3000;

QString program() { return qEnvironmentVariable("VRNSIM"); }

VRNMessage request(quint8 cmd, quint32 dst, VRN::AddrType type)
{
    VRNMessage m(cmd, VRN::ToolAddr, dst, type);
    m.setAck(type == VRN::AddrNode);
    m.prepare();
    return m;
}

QByteArray labelRequest(quint32 dst) { return request(DTS::GetNodeLabel, dst, VRN::AddrNode).data(); }
QByteArray broadcastWho() { return request(DTS::GetNodeAddr, VRN::BroadcastNumber, VRN::AddrBroadcast).data(); }

} // namespace

class tst_VrnSim : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();
    void badOptions_data();
    void badOptions();
    void serial();

private:
    // Starts vrnsim and returns its first line; empty on failure.
    QString start(const QStringList& args);
    void stop();

    QScopedPointer<QProcess> m_sim;
};

void tst_VrnSim::initTestCase()
{
    QVERIFY2(QFileInfo(program()).isExecutable(), qPrintable("VRNSIM=" + program()));
}

void tst_VrnSim::cleanup()
{
    if (m_sim && m_sim->state() != QProcess::NotRunning) {
        m_sim->kill();
        m_sim->waitForFinished(Wait);
    }
    m_sim.reset();
}

QString tst_VrnSim::start(const QStringList& args)
{
    m_sim.reset(new QProcess);
    m_sim->start(program(), args);
    if (!m_sim->waitForStarted(Wait))
        return QString();
    QDeadlineTimer deadline(Wait);
    while (!m_sim->canReadLine() && !deadline.hasExpired() && m_sim->state() == QProcess::Running)
        m_sim->waitForReadyRead(100);
    return QString::fromUtf8(m_sim->readLine()).trimmed();
}

// SIGTERM ends the program cleanly: exit code 0, statistics on stderr.
void tst_VrnSim::stop()
{
    QVERIFY(m_sim);
    ::kill(pid_t(m_sim->processId()), SIGTERM);
    QVERIFY(m_sim->waitForFinished(Wait));
    QCOMPARE(m_sim->exitStatus(), QProcess::NormalExit);
    QCOMPARE(m_sim->exitCode(), 0);
    QVERIFY(m_sim->readAllStandardError().contains("frames in"));
}

void tst_VrnSim::badOptions_data()
{
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<QString>("message");
    const QString mc = QStringLiteral("--mcast");
    QTest::newRow("no transport") << QStringList{} << "choose one transport";
    QTest::newRow("both transports") << QStringList{mc, "239.255.0.1:5000", "--serial"} << "choose one transport";
    QTest::newRow("unknown option") << QStringList{"--serial", "--frobnicate"} << "frobnicate";
    QTest::newRow("group outside") << QStringList{mc, "239.1.2.3:5000"} << "239.255.0.0/16";
    QTest::newRow("not multicast") << QStringList{mc, "127.0.0.1:5000"} << "239.255.0.0/16";
    QTest::newRow("no port") << QStringList{mc, "239.255.0.1"} << "GROUP:PORT";
    QTest::newRow("port 0") << QStringList{mc, "239.255.0.1:0"} << "GROUP:PORT";
    QTest::newRow("bind not loopback") << QStringList{mc, "239.255.0.1:5000", "--bind", "192.168.1.2"} << "loopback";
    QTest::newRow("bind garbage") << QStringList{mc, "239.255.0.1:5000", "--bind", "nowhere"} << "not an address";
    QTest::newRow("bind with serial") << QStringList{"--serial", "--bind", "127.0.0.1"} << "--bind";
    QTest::newRow("bad devices") << QStringList{"--serial", "--devices", "std:2,curtain:1"} << "curtain";
    QTest::newRow("loss above 1") << QStringList{"--serial", "--loss", "1.5"} << "--loss";
    QTest::newRow("negative latency") << QStringList{"--serial", "--latency", "-3"} << "--latency";
    QTest::newRow("baud text") << QStringList{"--serial", "--baud", "fast"} << "--baud";
    QTest::newRow("silent text") << QStringList{"--serial", "--silent", "x"} << "--silent";
    QTest::newRow("stray argument") << QStringList{"--serial", "extra"} << "extra";
}

void tst_VrnSim::badOptions()
{
    QFETCH(QStringList, args);
    QFETCH(QString, message);
    QProcess sim;
    sim.start(program(), args);
    QVERIFY(sim.waitForFinished(Wait));
    QCOMPARE(sim.exitCode(), 2);
    QVERIFY(sim.readAllStandardOutput().isEmpty());
    const QString err = QString::fromLocal8Bit(sim.readAllStandardError());
    QVERIFY2(err.startsWith("vrnsim: ") && err.contains(message), qPrintable(err));
}

// Through the pseudo-terminal: a request written in two pieces after some
// noise is answered once, whole.
void tst_VrnSim::serial()
{
    const QString id = start({"--serial", "--devices", "dcmotor:1", "--seed", "2"});
    QVERIFY2(id.startsWith("serial:PTS/"), qPrintable(id));
    const QByteArray path = "/dev/" + id.mid(7).toLower().toLatin1();
    const int fd = ::open(path.constData(), O_RDWR | O_NOCTTY | O_NONBLOCK);
    QVERIFY2(fd >= 0, path.constData());
    termios tio;
    ::tcgetattr(fd, &tio);
    ::cfmakeraw(&tio);
    ::tcsetattr(fd, TCSANOW, &tio);

    QByteArray received;
    auto readAll = [&] {
        char buffer[256];
        ssize_t n;
        while ((n = ::read(fd, buffer, sizeof buffer)) > 0)
            received.append(buffer, int(n));
        return received.size();
    };
    QVERIFY(::write(fd, "\x00\x01", 2) == 2);
    QVERIFY(::write(fd, broadcastWho().constData(), 11) == 11);
    QTRY_COMPARE_WITH_TIMEOUT(readAll(), 11, Wait);
    const VRNMessage who{BusMessage(received)};
    QVERIFY(who.isValid());
    QCOMPARE(VRN::getType(who.srcAddr()), VRN::NodeDCMotor);

    received.clear();
    const QByteArray rq = labelRequest(who.srcAddr(false));
    QVERIFY(::write(fd, rq.constData(), 4) == 4);
    QTest::qWait(20);
    QVERIFY(::write(fd, rq.constData() + 4, rq.size() - 4) == rq.size() - 4);
    QTRY_VERIFY_WITH_TIMEOUT(readAll() >= 11 && VRNMessage(BusMessage(received)).isValid(), Wait);
    QCOMPARE(VRNMessage(BusMessage(received)).payload(), QByteArray("DC motor 1"));
    ::close(fd);
    stop();
}

QTEST_MAIN(tst_VrnSim)
#include "tst_vrnsim.moc"
