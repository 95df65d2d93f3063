#include "testframes.h"

#include "buspendingcallwatcher.h"
#include "vrnmcastbus.h"

#include <QNetworkDatagram>
#include <QRegularExpression>
#include <QNetworkInterface>
#include <QSignalSpy>
#include <QTest>
#include <QUdpSocket>

using namespace TestFrames;

Q_DECLARE_METATYPE(QHostAddress)

// Every test function has a group and a port of its own: Linux hands a
// socket every group joined on its port by anyone.
namespace {
const QHostAddress exchangeGroup(QStringLiteral("239.255.73.11"));
const quint16 exchangePort = 47311;
const QHostAddress refusedGroup(QStringLiteral("239.255.73.12"));
const quint16 refusedPort = 47312;
}

// A node set on the group, on the loopback interface only.
class Peer : public QObject
{
    Q_OBJECT
public:
    bool start(const QHostAddress& group, quint16 port)
    {
        m_group = group;
        m_port = port;
        QNetworkInterface loopback;
        const auto all = QNetworkInterface::allInterfaces();
        for (const QNetworkInterface& iface : all)
            if (iface.flags() & QNetworkInterface::IsLoopBack)
                loopback = iface;
        if (!socket.bind(group, port, QUdpSocket::ShareAddress | QUdpSocket::ReuseAddressHint)
            || !socket.joinMulticastGroup(group, loopback))
            return false;
        socket.setMulticastInterface(loopback);
        socket.setSocketOption(QAbstractSocket::MulticastTtlOption, 0);
        connect(&socket, &QUdpSocket::readyRead, this, [this] {
            while (socket.hasPendingDatagrams()) {
                const VRNMessage frame{BusMessage(socket.receiveDatagram().data())};
                if (frame.isValid() && frame.srcAddr() == VRN::ToolAddr)
                    heard.append(frame);
                if (frame.isValid() && frame.srcAddr() == VRN::ToolAddr && answer)
                    answer(frame);
            }
        });
        return true;
    }
    void send(const QByteArray& datagram) { socket.writeDatagram(datagram, m_group, m_port); }

    QUdpSocket socket;
    QList<VRNMessage> heard;
    std::function<void(const VRNMessage&)> answer;

private:
    QHostAddress m_group;
    quint16 m_port = 0;
};

class tst_VRNMCastBus : public QObject
{
    Q_OBJECT

private slots:
    void exchangeOnLoopback();
    void openRefused_data();
    void openRefused();
};

void tst_VRNMCastBus::exchangeOnLoopback()
{
    Peer peer;
    QVERIFY(peer.start(exchangeGroup, exchangePort));
    peer.answer = [&peer](const VRNMessage& request) {
        if (!request.isBroadcast()) {
            peer.send("not a frame");
            peer.send(reply(request.dstAddr(), "from " + QByteArray::number(request.dstAddr())));
            return;
        }
        for (quint32 node = 0x101; node <= 0x103; ++node)
            peer.send(reply(node, QByteArray(), DTS::PostNodeAddr));
    };

    VRNMCastBus bus(exchangeGroup, exchangePort, QHostAddress());
    bus.setTimeout(1000);
    bus.setBroadcastWindow(300);
    QVERIFY2(bus.open(), qPrintable(bus.errorString()));
    QCOMPARE(bus.ioDevice(), static_cast<QIODevice*>(bus.findChild<QUdpSocket*>()));
    QList<VRNMessage> received;
    connect(&bus, &Bus::messageReceived, this,
            [&received](const BusMessage& m) { received.append(VRNMessage(m)); });

    const BusPendingCall asked = bus.call(request(0x2A));
    BusPendingCallWatcher unicast(asked);
    QSignalSpy unicastDone(&unicast, &BusPendingCallWatcher::finished);
    QTRY_COMPARE(unicastDone.count(), 1);
    QCOMPARE(unicast.error(), BusPendingCall::NoError);
    QCOMPARE(unicast.reply().data(), reply(0x2A, "from 42"));

    BusPendingCallWatcher everyone(bus.call(broadcast()));
    QSignalSpy everyoneDone(&everyone, &BusPendingCallWatcher::finished);
    QTRY_COMPARE(everyoneDone.count(), 1);
    QCOMPARE(everyone.error(), BusPendingCall::NoError);
    QCOMPARE(everyone.replies().size(), 3);

    QCOMPARE(peer.heard.size(), 2);
    QCOMPARE(peer.heard.at(0).data(), asked.request().data());
    // The bus hears its own two requests come back and keeps them quiet: it
    // reports the garbage datagram and the four replies only.
    QCOMPARE(received.size(), 5);
    QVERIFY(!received.at(0).isValid());
    for (const VRNMessage& m : qAsConst(received))
        QVERIFY(m.srcAddr() != VRN::ToolAddr);
}

void tst_VRNMCastBus::openRefused_data()
{
    QTest::addColumn<QHostAddress>("group");
    QTest::addColumn<QHostAddress>("bindAddress");
    QTest::newRow("not a multicast group") << QHostAddress(QHostAddress::LocalHost) << QHostAddress();
    QTest::newRow("IPv6 group") << QHostAddress(QStringLiteral("ff15::1")) << QHostAddress();
    // An address of no local interface: the group cannot be joined there.
    QTest::newRow("bind address not local") << refusedGroup << QHostAddress(QStringLiteral("192.0.2.1"));
}

void tst_VRNMCastBus::openRefused()
{
    QFETCH(QHostAddress, group);
    QFETCH(QHostAddress, bindAddress);
    VRNMCastBus bus(group, refusedPort, bindAddress);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^\\[VRNMCastBus\\]: "));
    QVERIFY(!bus.open());
    QVERIFY(!bus.isOpen());
    QVERIFY(!bus.errorString().isEmpty());
}

QTEST_GUILESS_MAIN(tst_VRNMCastBus)
#include "tst_vrnmcastbus.moc"
