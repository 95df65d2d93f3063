#ifndef SIMMCASTLINK_H
#define SIMMCASTLINK_H

#include <QHash>
#include <QHostAddress>
#include <QObject>
#include <QUdpSocket>

class SimNetwork;

/// Serves a SimNetwork on a UDP multicast group, loopback only: one frame
/// per datagram, TTL 0, sent through the interface of the bind address.
class SimMCastLink : public QObject
{
    Q_OBJECT
public:
    explicit SimMCastLink(SimNetwork* network, QObject* parent = nullptr);

    /// Groups must lie in 239.255.0.0/16 and the bind address on loopback.
    static bool checkAddresses(const QHostAddress& group, const QHostAddress& bind, QString* error);
    bool open(const QHostAddress& group, quint16 port, const QHostAddress& bind, QString* error);
    /// The bus identifier a library opens: "mcast:GROUP:PORT:BIND".
    QString identifier() const;

private:
    void send(const QByteArray& frame);
    void readDatagrams();

    SimNetwork* m_network;
    QUdpSocket m_socket;
    QHostAddress m_group;
    QHostAddress m_bind;
    quint16 m_port = 0;
    QHash<QByteArray, int> m_echoes;  // frames sent whose own copy is still to come back
};

#endif // SIMMCASTLINK_H
