// The transports: the serial bus (its stream reader, pseudo-terminals) and the
// multicast bus on a loopback group against a peer socket.
#include "testframes.h"

#include "buspendingcallwatcher.h"
#include "vrnloopbackbus.h"
#include "vrnmcastbus.h"

#include <QNetworkDatagram>
#include <QNetworkInterface>
#include <QRegularExpression>
#include <QSerialPort>
#include <QSignalSpy>
#include <QSocketNotifier>
#include <QTest>
#include <QTimer>
#include <QUdpSocket>

#include <fcntl.h>
#include <pty.h>
#include <unistd.h>

using namespace TestFrames;

Q_DECLARE_METATYPE(QList<QByteArray>)
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

class tst_VRNBus : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void streamResynchronises_data();
    void streamResynchronises();
    void longestFrameIsTaken();
    void ownFramesAreNotReported();
    void pseudoTerminal_data();
    void pseudoTerminal();
    void pseudoTerminalHangUpEndsCalls();
    void multicastExchangeOnLoopback();
    void multicastOpenRefused_data();
    void multicastOpenRefused();

private:
    bool openPty();
    void writeMaster(const QByteArray& bytes);

    VRNLoopbackBus* loopback = nullptr;
    int master = -1;
    int slave = -1;
    QString slavePath;
};

void tst_VRNBus::init()
{
    loopback = new VRNLoopbackBus;
    loopback->setTimeout(200);
    QVERIFY(loopback->open());
}

void tst_VRNBus::cleanup()
{
    delete loopback;
    if (slave >= 0)
        ::close(slave);
    if (master >= 0)
        ::close(master);
    master = slave = -1;
}

void tst_VRNBus::streamResynchronises_data()
{
    QTest::addColumn<QList<QByteArray>>("chunks");
    QTest::addColumn<bool>("answered");
    QTest::addColumn<int>("invalid"); // reports of dropped bytes

    const QByteArray frame = reply(0x42);
    QList<QByteArray> bytes;
    for (char c : frame)
        bytes.append(QByteArray(1, c));

    QTest::newRow("whole frame") << QList<QByteArray>{frame} << true << 0;
    QTest::newRow("one byte at a time") << bytes << true << 0;
    QTest::newRow("garbage, then frame in one chunk")
        << QList<QByteArray>{QByteArray("\x00\xFF\x13\x37", 4) + frame} << true << 1;
    QTest::newRow("garbage and frame cut across chunks")
        << QList<QByteArray>{QByteArray("\xAA\x55", 2), QByteArray("\x01") + frame.left(3),
                             frame.mid(3, 5), frame.mid(8)}
        << true << 1;
    // 0x1F claims a 31-byte frame: the whole frame behind it must not wait
    // for bytes that never come.
    QTest::newRow("stray length byte claiming a long frame")
        << QList<QByteArray>{QByteArray("\x45\x1F", 2) + frame} << true << 1;
    QTest::newRow("truncated frame, then frame")
        << QList<QByteArray>{frame.left(7), frame} << true << 1;
    QTest::newRow("corrupted frame is ignored") << QList<QByteArray>{corrupted(frame)} << false << 1;
    QTest::newRow("frame cut short") << QList<QByteArray>{frame.left(frame.size() - 1)} << false << 1;
    QTest::newRow("length below minimum")
        << QList<QByteArray>{QByteArray("\x65\x0A", 2) + frame.mid(2)} << false << 1;
}

void tst_VRNBus::streamResynchronises()
{
    QFETCH(QList<QByteArray>, chunks);
    QFETCH(bool, answered);
    QFETCH(int, invalid);

    connect(loopback, &VRNLoopbackBus::transmitted, this, [&] {
        for (const QByteArray& chunk : chunks)
            QTimer::singleShot(1, loopback, [this, chunk] { loopback->inject(chunk); });
    });
    QList<VRNMessage> received;
    connect(loopback, &Bus::messageReceived, this,
            [&](const BusMessage& m) { received.append(VRNMessage(m)); });
    BusPendingCallWatcher watcher(loopback->call(request(0x42)));
    QSignalSpy finished(&watcher, &BusPendingCallWatcher::finished);

    QTRY_COMPARE(finished.count(), 1);
    QCOMPARE(watcher.error(), answered ? BusPendingCall::NoError : BusPendingCall::TimeoutError);
    if (answered)
        QCOMPARE(watcher.reply().data(), reply(0x42));

    // The next exchange works, whatever the first left in the stream; bytes
    // that started no frame are reported, once, by the time it ends.
    disconnect(loopback, &VRNLoopbackBus::transmitted, this, nullptr);
    connect(loopback, &VRNLoopbackBus::transmitted, this, [this] { loopback->inject(reply(7, "next")); });
    watcher = loopback->call(request(7));
    QTRY_COMPARE(finished.count(), 2);
    QCOMPARE(watcher.error(), BusPendingCall::NoError);
    QCOMPARE(watcher.reply().data(), reply(7, "next"));

    const int valid = std::count_if(received.cbegin(), received.cend(),
                                    [](const VRNMessage& m) { return m.isValid(); });
    QCOMPARE(valid, answered ? 2 : 1);
    QCOMPARE(received.size() - valid, invalid);
}

void tst_VRNBus::ownFramesAreNotReported()
{
    QSignalSpy received(loopback, &Bus::messageReceived);
    loopback->inject(request(0x42).data());
    loopback->inject(broadcast().data());
    QCOMPARE(received.count(), 0);
    loopback->inject(reply(0x42));
    QCOMPARE(received.count(), 1);
}

bool tst_VRNBus::openPty()
{
    if (::openpty(&master, &slave, nullptr, nullptr, nullptr) != 0)
        return false;
    slavePath = QString::fromLocal8Bit(::ttyname(slave));
    ::fcntl(master, F_SETFL, ::fcntl(master, F_GETFL) | O_NONBLOCK);
    return slavePath.startsWith(QLatin1String("/dev/"));
}

void tst_VRNBus::writeMaster(const QByteArray& bytes)
{
    QCOMPARE(::write(master, bytes.constData(), size_t(bytes.size())), ssize_t(bytes.size()));
}

// A frame of the largest size the length byte allows is a frame, not noise.
void tst_VRNBus::longestFrameIsTaken()
{
    const QByteArray longest = reply(0x42, QByteArray(21, 'x'));
    QCOMPARE(longest.size(), int(VRNMessage::MaxFrameSize));
    connect(loopback, &VRNLoopbackBus::transmitted, this, [&] { loopback->inject(longest); });
    BusPendingCallWatcher watcher(loopback->call(request(0x42)));
    QSignalSpy finished(&watcher, &BusPendingCallWatcher::finished);
    QTRY_COMPARE(finished.count(), 1);
    QCOMPARE(watcher.error(), BusPendingCall::NoError);
    QCOMPARE(watcher.reply().data(), longest);
}

void tst_VRNBus::pseudoTerminal_data()
{
    QTest::addColumn<bool>("relative");
    QTest::newRow("absolute path in upper case") << false;
    QTest::newRow("name below /dev in upper case") << true;
}

void tst_VRNBus::pseudoTerminal()
{
    QFETCH(bool, relative);
    QVERIFY(openPty());
    // Identifiers keep port names in upper case.
    const QString name = (relative ? slavePath.mid(5) : slavePath).toUpper();
    VRNBus bus(name);
    bus.setTimeout(1000);
    QVERIFY2(bus.open(), qPrintable(bus.errorString()));
    auto port = qobject_cast<QSerialPort*>(bus.ioDevice());
    QVERIFY(port);
    QCOMPARE(QStringLiteral("/dev/") + port->portName(), slavePath);

    // The node on the other end answers with garbage first and its frame in
    // pieces, as a pseudo-terminal may deliver it.
    QByteArray heard;
    QSocketNotifier notifier(master, QSocketNotifier::Read);
    connect(&notifier, &QSocketNotifier::activated, this, [&] {
        char buf[64];
        const ssize_t n = ::read(master, buf, sizeof buf);
        if (n <= 0)
            return;
        heard.append(buf, int(n));
        if (VRNMessage::frameLength(heard.constData(), heard.size()) != heard.size())
            return;
        const QByteArray frame = reply(0x123456);
        writeMaster(QByteArray("\x13\x00\xFE", 3) + frame.left(4));
        QTimer::singleShot(5, this, [this, frame] { writeMaster(frame.mid(4)); });
    });
    QSignalSpy received(&bus, &Bus::messageReceived);
    const BusPendingCall call = bus.call(request(0x123456));
    BusPendingCallWatcher watcher(call);
    QSignalSpy finished(&watcher, &BusPendingCallWatcher::finished);

    QTRY_COMPARE(finished.count(), 1);
    // The request as built, with the sequence number the bus gave it.
    QCOMPARE(heard, call.request().data());
    VRNMessage unnumbered{BusMessage(heard)};
    QVERIFY(unnumbered.seq() != 0);
    unnumbered.setSeq(0);
    unnumbered.prepare();
    QCOMPARE(unnumbered.data(), request(0x123456).data());
    QCOMPARE(watcher.error(), BusPendingCall::NoError);
    QCOMPARE(watcher.reply().data(), reply(0x123456));
    QCOMPARE(received.count(), 2); // the dropped bytes, then the frame
    QVERIFY(!VRNMessage(received.first().first().value<BusMessage>()).isValid());
}

void tst_VRNBus::pseudoTerminalHangUpEndsCalls()
{
    QVERIFY(openPty());
    VRNBus bus(slavePath);
    bus.setTimeout(5000);
    QVERIFY2(bus.open(), qPrintable(bus.errorString()));
    ::close(slave); // the bus holds its own descriptor
    slave = -1;
    BusPendingCallWatcher watcher(bus.call(request(0x101)));
    QSignalSpy finished(&watcher, &BusPendingCallWatcher::finished);
    QSignalSpy closed(&bus, &Bus::closed);
    QTest::qWait(10);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^\\[VRNBus\\]: port lost:"));
    ::close(master);
    master = -1;

    QTRY_COMPARE(finished.count(), 1);
    QCOMPARE(watcher.error(), BusPendingCall::BusNotAvailableError);
    QCOMPARE(closed.count(), 1);
    QVERIFY(!bus.isOpen());
    QVERIFY(!bus.errorString().isEmpty());
}

void tst_VRNBus::multicastExchangeOnLoopback()
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

void tst_VRNBus::multicastOpenRefused_data()
{
    QTest::addColumn<QHostAddress>("group");
    QTest::addColumn<QHostAddress>("bindAddress");
    QTest::newRow("not a multicast group") << QHostAddress(QHostAddress::LocalHost) << QHostAddress();
    QTest::newRow("IPv6 group") << QHostAddress(QStringLiteral("ff15::1")) << QHostAddress();
    // An address of no local interface: the group cannot be joined there.
    QTest::newRow("bind address not local") << refusedGroup << QHostAddress(QStringLiteral("192.0.2.1"));
}

void tst_VRNBus::multicastOpenRefused()
{
    QFETCH(QHostAddress, group);
    QFETCH(QHostAddress, bindAddress);
    VRNMCastBus bus(group, refusedPort, bindAddress);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^\\[VRNMCastBus\\]: "));
    QVERIFY(!bus.open());
    QVERIFY(!bus.isOpen());
    QVERIFY(!bus.errorString().isEmpty());
}

QTEST_GUILESS_MAIN(tst_VRNBus)
#include "tst_vrnbus.moc"
