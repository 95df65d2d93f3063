#include "vrnmcastbus.h"
#include "vrnmcastbus_p.h"

#include <QDebug>
#include <QNetworkDatagram>
#include <QUdpSocket>

#ifdef Q_OS_UNIX
#include <netinet/in.h>
#include <sys/socket.h>
#include <cerrno>
#include <cstring>
#else
#include <QNetworkInterface>
#endif

QHostAddress VRNMCastBusPrivate::interfaceAddress() const
{
    return bindAddress.isNull() ? QHostAddress(QHostAddress::LocalHost) : bindAddress;
}

bool VRNMCastBusPrivate::fail(const QString& text)
{
    Q_Q(VRNMCastBus);
    q->setErrorString(text);
    qWarning().noquote() << logPrefix() << text;
    socket->close();
    return false;
}

bool VRNMCastBusPrivate::setUpSocket()
{
    bool isIPv4 = false;
    group.toIPv4Address(&isIPv4);
    if (!isIPv4 || !group.isMulticast())
        return fail(VRNMCastBus::tr("Not an IPv4 multicast group: %1").arg(group.toString()));
    const QHostAddress iface = interfaceAddress();
    const quint32 ifaceIPv4 = iface.toIPv4Address(&isIPv4);
    if (!isIPv4)
        return fail(VRNMCastBus::tr("Not an IPv4 bind address: %1").arg(iface.toString()));

    // Bound to the group itself, the socket receives that group only (a
    // socket bound to a unicast address would receive no multicast at all).
    // Elsewhere binding to a group is refused: the wildcard and the check of
    // each datagram's destination do the filtering.
#ifdef Q_OS_UNIX
    const QHostAddress local = group;
#else
    const QHostAddress local(QHostAddress::AnyIPv4);
#endif
    if (!socket->bind(local, port, QUdpSocket::ShareAddress | QUdpSocket::ReuseAddressHint))
        return fail(VRNMCastBus::tr("Cannot bind to port %1: %2").arg(port).arg(socket->errorString()));

#ifdef Q_OS_UNIX
    // Membership and the outgoing interface are given by address, so the
    // interface is exactly the one holding the bind address.
    ip_mreq membership;
    std::memset(&membership, 0, sizeof membership);
    membership.imr_multiaddr.s_addr = htonl(group.toIPv4Address());
    membership.imr_interface.s_addr = htonl(ifaceIPv4);
    const int fd = int(socket->socketDescriptor());
    if (::setsockopt(fd, IPPROTO_IP, IP_ADD_MEMBERSHIP, &membership, sizeof membership) != 0)
        return fail(VRNMCastBus::tr("Cannot join %1 on %2: %3")
                        .arg(group.toString(), iface.toString(), QString::fromLocal8Bit(std::strerror(errno))));
    if (::setsockopt(fd, IPPROTO_IP, IP_MULTICAST_IF, &membership.imr_interface, sizeof(in_addr)) != 0)
        return fail(VRNMCastBus::tr("Cannot send from %1: %2")
                        .arg(iface.toString(), QString::fromLocal8Bit(std::strerror(errno))));
#else
    QNetworkInterface netIface;
    const auto all = QNetworkInterface::allInterfaces();
    for (const QNetworkInterface& candidate : all) {
        for (const QNetworkAddressEntry& entry : candidate.addressEntries())
            if (entry.ip() == iface)
                netIface = candidate;
    }
    if (!netIface.isValid() || !socket->joinMulticastGroup(group, netIface))
        return fail(VRNMCastBus::tr("Cannot join %1 on %2: %3")
                        .arg(group.toString(), iface.toString(), socket->errorString()));
    socket->setMulticastInterface(netIface);
#endif
    // Loopback: never off this host. A real interface: its own link only.
    socket->setSocketOption(QAbstractSocket::MulticastTtlOption, iface.isLoopback() ? 0 : 1);
    socket->setSocketOption(QAbstractSocket::MulticastLoopbackOption, 1);
    return true;
}

void VRNMCastBusPrivate::readDatagrams()
{
    while (socket->hasPendingDatagrams()) {
        const QNetworkDatagram datagram = socket->receiveDatagram();
        // Linux hands a socket every group joined on its port by anyone.
        const QHostAddress destination = datagram.destinationAddress();
        if (!destination.isNull() && !destination.isEqual(group, QHostAddress::ConvertV4MappedToIPv4)) {
            qDebug().noquote() << logPrefix() << "datagram to" << destination.toString() << "dropped";
            continue;
        }
        receiveFrame(datagram.data());
    }
}

VRNMCastBus::VRNMCastBus(const QHostAddress& group, quint16 port, const QHostAddress& bindAddress,
                         QObject* parent)
    : VRNBus(*new VRNMCastBusPrivate, parent)
{
    Q_D(VRNMCastBus);
    d->group = group;
    d->port = port;
    d->bindAddress = bindAddress;
    d->socket = new QUdpSocket(this);
    connect(d->socket, &QUdpSocket::readyRead, this, [d] { d->readDatagrams(); });
}

VRNMCastBus::~VRNMCastBus()
{
    close();
}

bool VRNMCastBus::open()
{
    Q_D(VRNMCastBus);
    if (isOpen())
        return true;
    if (!d->setUpSocket())
        return false;
    return Bus::open();
}

void VRNMCastBus::close()
{
    // Closing the socket leaves the group.
    d_func()->socket->close();
    Bus::close();
}

QIODevice* VRNMCastBus::ioDevice() const { return d_func()->socket; }
QHostAddress VRNMCastBus::groupAddress() const { return d_func()->group; }
quint16 VRNMCastBus::port() const { return d_func()->port; }
QHostAddress VRNMCastBus::bindAddress() const { return d_func()->bindAddress; }

bool VRNMCastBus::writeFrame(const BusMessage& message)
{
    Q_D(VRNMCastBus);
    const QByteArray bytes = message.data();
    return d->socket->writeDatagram(bytes, d->group, d->port) == bytes.size();
}
