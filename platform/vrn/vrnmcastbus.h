#ifndef VRNMCASTBUS_H
#define VRNMCASTBUS_H

#include "vrnbus.h"

#include <QHostAddress>

class VRNMCastBusPrivate;

/// The device network over UDP multicast: one frame per datagram, sent to and
/// received from an IPv4 `group` on `port`.
///
/// The bind address names the one local interface the bus uses: the group is
/// joined there, datagrams leave there and come back through multicast
/// loopback. On a loopback address their TTL is 0, so they never leave the
/// host; on the address of a real interface it is 1, so they reach the
/// devices on that link and go no further (no router forwards them). A null
/// bind address means the loopback interface (127.0.0.1): the bus never
/// reaches another interface unless a bind address says so. Datagrams sent to another destination than the group, and our own
/// frames echoed back, are dropped.
///
///     VRNMCastBus bus(QHostAddress("239.255.0.1"), 5000, QHostAddress::LocalHost);
///     if (!bus.open()) qWarning() << bus.errorString();
class VRNMCastBus : public VRNBus
{
    Q_OBJECT
public:
    VRNMCastBus(const QHostAddress& group, quint16 port, const QHostAddress& bindAddress,
                QObject* parent = nullptr);
    ~VRNMCastBus() override;

    bool open() override;
    void close() override;
    /// The `QUdpSocket`.
    QIODevice* ioDevice() const override;

    QHostAddress groupAddress() const;
    quint16 port() const;
    /// The address given at construction, null when none was.
    QHostAddress bindAddress() const;

protected:
    bool writeFrame(const BusMessage& message) override;

private:
    Q_DECLARE_PRIVATE(VRNMCastBus)
};

#endif // VRNMCASTBUS_H
