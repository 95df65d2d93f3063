// Both real transports against the vrnsim program: the multicast bus on a
// loopback group, and the serial bus on the pseudo-terminal vrnsim opens.
#include "dts.h"
#include "vrnbus.h"
#include "vrnmcastbus.h"
#include "vrnmessage.h"

#include <QtTest>

#include <csignal>
#include <sys/types.h>

namespace {

const int Wait = 3000;

VRNMessage request(quint8 cmd, quint32 dst, VRN::AddrType type)
{
    VRNMessage m(cmd, VRN::ToolAddr, dst, type);
    m.setAck(type == VRN::AddrNode);
    m.prepare();
    return m;
}

} // namespace

class tst_TransportsE2E : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();
    void multicast();
    void serial();

private:
    QString startSim(const QStringList& args);
    // Finds the nodes by broadcast, then reads one label; checks both.
    void exchange(Bus& bus, int nodeCount);
    void stopSim();

    QScopedPointer<QProcess> m_sim;
};

void tst_TransportsE2E::initTestCase()
{
    QVERIFY2(QFileInfo(qEnvironmentVariable("VRNSIM")).isExecutable(), "VRNSIM not set");
}

void tst_TransportsE2E::cleanup()
{
    if (m_sim && m_sim->state() != QProcess::NotRunning) {
        m_sim->kill();
        m_sim->waitForFinished(Wait);
    }
    m_sim.reset();
}

QString tst_TransportsE2E::startSim(const QStringList& args)
{
    m_sim.reset(new QProcess);
    m_sim->start(qEnvironmentVariable("VRNSIM"), args + QStringList{"--reply-window", "20"});
    QDeadlineTimer deadline(Wait);
    while (!m_sim->canReadLine() && !deadline.hasExpired() && m_sim->state() != QProcess::NotRunning)
        m_sim->waitForReadyRead(100);
    return QString::fromUtf8(m_sim->readLine()).trimmed();
}

void tst_TransportsE2E::stopSim()
{
    ::kill(pid_t(m_sim->processId()), SIGTERM);
    QVERIFY(m_sim->waitForFinished(Wait));
    QCOMPARE(m_sim->exitCode(), 0);
}

void tst_TransportsE2E::exchange(Bus& bus, int nodeCount)
{
    bus.setTimeout(1000);
    bus.setBroadcastWindow(300);
    const BusPendingCall who = bus.call(request(DTS::GetNodeAddr, VRN::BroadcastNumber, VRN::AddrBroadcast));
    QTRY_VERIFY_WITH_TIMEOUT(who.isFinished(), Wait);
    QCOMPARE(int(who.error()), 0);
    QCOMPARE(who.replies().size(), nodeCount);
    VRN::Addr motor = 0;
    for (const BusMessage& reply : who.replies()) {
        const VRNMessage m(reply);
        QVERIFY(m.isValid());
        QCOMPARE(m.cmd(), quint8(DTS::PostNodeAddr));
        if (VRN::getType(m.srcAddr()) == VRN::NodeDCMotor)
            motor = m.srcAddr();
    }
    QVERIFY(motor);

    const BusPendingCall label = bus.call(request(DTS::GetNodeLabel, VRN::getNumber(motor), VRN::AddrNode));
    QTRY_VERIFY_WITH_TIMEOUT(label.isFinished(), Wait);
    QCOMPARE(int(label.error()), 0);
    const VRNMessage reply(label.reply());
    QCOMPARE(reply.srcAddr(), motor);
    QCOMPARE(reply.payload(), QByteArray("DC motor 1"));
}

void tst_TransportsE2E::multicast()
{
    const QString id = startSim({"--mcast", "239.255.52.3:47533", "--devices", "std:2,dcmotor:1"});
    QCOMPARE(id, QStringLiteral("mcast:239.255.52.3:47533:127.0.0.1"));
    VRNMCastBus bus(QHostAddress(QStringLiteral("239.255.52.3")), 47533,
                    QHostAddress(QHostAddress::LocalHost));
    QVERIFY2(bus.open(), qPrintable(bus.errorString()));
    exchange(bus, 3);
    bus.close();
    stopSim();
}

void tst_TransportsE2E::serial()
{
    const QString id = startSim({"--serial", "--devices", "dcmotor:1,motor:2", "--baud", "19200"});
    QVERIFY2(id.startsWith(QLatin1String("serial:")), qPrintable(id));
    VRNBus bus(id.mid(7));
    QVERIFY2(bus.open(), qPrintable(bus.errorString()));
    exchange(bus, 3);
    bus.close();
    stopSim();
}

QTEST_MAIN(tst_TransportsE2E)
#include "tst_transports_e2e.moc"
