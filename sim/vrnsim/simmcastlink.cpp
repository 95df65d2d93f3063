#include "simmcastlink.h"

#include "simnetwork.h"

#include <QNetworkDatagram>
#include <QVariant>

#include <arpa/inet.h>
#include <cerrno>
#include <cstring>
#include <netinet/in.h>
#include <sys/socket.h>

SimMCastLink::SimMCastLink(SimNetwork* network, QObject* parent)
    : QObject(parent), m_network(network)
{
    connect(network, &SimNetwork::frameOut, this, &SimMCastLink::send);
    connect(&m_socket, &QUdpSocket::readyRead, this, &SimMCastLink::readDatagrams);
}

bool SimMCastLink::checkAddresses(const QHostAddress& group, const QHostAddress& bind, QString* error)
{
    bool ipv4 = false;
    group.toIPv4Address(&ipv4);
    if (!ipv4 || !group.isInSubnet(QHostAddress(QStringLiteral("239.255.0.0")), 16)) {
        *error = QStringLiteral("group %1 is outside 239.255.0.0/16 (local multicast only)")
                     .arg(group.toString());
        return false;
    }
    bind.toIPv4Address(&ipv4);
    if (!ipv4 || !bind.isLoopback()) {
        *error = QStringLiteral("bind address %1 is not an IPv4 loopback address").arg(bind.toString());
        return false;
    }
    return true;
}

bool SimMCastLink::open(const QHostAddress& group, quint16 port, const QHostAddress& bind, QString* error)
{
    if (!checkAddresses(group, bind, error))
        return false;
    m_group = group;
    m_port = port;
    m_bind = bind;
    // Bound to the group itself the socket receives this group only; bound to
    // the loopback address it would receive no multicast at all.
    if (!m_socket.bind(group, port, QUdpSocket::ShareAddress | QUdpSocket::ReuseAddressHint)) {
        *error = QStringLiteral("cannot bind to %1:%2: %3")
                     .arg(group.toString()).arg(port).arg(m_socket.errorString());
        return false;
    }
    ip_mreq membership;
    std::memset(&membership, 0, sizeof membership);
    membership.imr_multiaddr.s_addr = htonl(group.toIPv4Address());
    membership.imr_interface.s_addr = htonl(bind.toIPv4Address());
    const int fd = int(m_socket.socketDescriptor());
    const unsigned char ttl = 0;
    if (::setsockopt(fd, IPPROTO_IP, IP_ADD_MEMBERSHIP, &membership, sizeof membership) != 0
        || ::setsockopt(fd, IPPROTO_IP, IP_MULTICAST_IF, &membership.imr_interface, sizeof(in_addr)) != 0
        || ::setsockopt(fd, IPPROTO_IP, IP_MULTICAST_TTL, &ttl, sizeof ttl) != 0) {
        *error = QStringLiteral("cannot join %1 on %2: %3")
                     .arg(group.toString(), bind.toString(), QString::fromLocal8Bit(std::strerror(errno)));
        m_socket.close();
        return false;
    }
    m_socket.setSocketOption(QAbstractSocket::MulticastLoopbackOption, 1);
    return true;
}

QString SimMCastLink::identifier() const
{
    return QStringLiteral("mcast:%1:%2:%3").arg(m_group.toString()).arg(m_port).arg(m_bind.toString());
}

void SimMCastLink::send(const QByteArray& frame)
{
    if (m_socket.writeDatagram(frame, m_group, m_port) == frame.size())
        ++m_echoes[frame];
    else
        qWarning().noquote() << "[SimMCastLink]: send failed:" << m_socket.errorString();
}

void SimMCastLink::readDatagrams()
{
    while (m_socket.hasPendingDatagrams()) {
        const QNetworkDatagram datagram = m_socket.receiveDatagram();
        const QHostAddress destination = datagram.destinationAddress();
        if (!destination.isNull() && !destination.isEqual(m_group, QHostAddress::ConvertV4MappedToIPv4))
            continue;
        const QByteArray frame = datagram.data();
        // Loopback hands every datagram back to its sender: skip our own.
        const auto echo = m_echoes.find(frame);
        if (echo != m_echoes.end()) {
            if (--echo.value() == 0)
                m_echoes.erase(echo);
            continue;
        }
        m_network->frameIn(frame);
    }
}
