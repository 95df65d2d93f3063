// Private header, not API: it may change without notice.
#ifndef VRNMCASTBUS_P_H
#define VRNMCASTBUS_P_H

#include "vrnbus_p.h"
#include "vrnmcastbus.h"

class QUdpSocket;

class VRNMCastBusPrivate : public VRNBusPrivate
{
    Q_DECLARE_PUBLIC(VRNMCastBus)
public:
    /// The address of the interface used: the bind address, or 127.0.0.1.
    QHostAddress interfaceAddress() const;
    /// Binds, joins the group and sets the sending options; false with the
    /// error text recorded.
    bool setUpSocket();
    bool fail(const QString& text);
    void readDatagrams();

    QHostAddress group;
    QHostAddress bindAddress;
    QUdpSocket* socket = nullptr;
    quint16 port = 0;
};

#endif // VRNMCASTBUS_P_H
