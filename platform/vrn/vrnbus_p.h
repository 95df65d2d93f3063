// Private header, not API: it may change without notice.
#ifndef VRNBUS_P_H
#define VRNBUS_P_H

#include "bus_p.h"
#include "vrnbus.h"
#include "vrnframecutter.h"

#include <QHash>

class VRNBusPrivate : public BusPrivate
{
    Q_DECLARE_PUBLIC(VRNBus)
public:
    /// Bytes from a stream (serial line, loopback wire), in any chunks.
    void receiveBytes(const QByteArray& bytes);
    /// A whole frame or datagram, valid or not: drops our own echo and
    /// reports the rest.
    void receiveFrame(const QByteArray& frame);
    void applyLineSettings();
    void onPortError(QSerialPort::SerialPortError error);
    /// Clears what a previous session left in the receive buffers.
    void resetStream();

    /// The sequence number of the next request to each node: consecutive
    /// requests to one node never share one, and a new session starts at a
    /// random place so that it does not repeat the last one of a session
    /// before.
    quint8 nextSeq(quint32 node);

    QHash<quint32, quint8> seqByNode;
    /// The last request to each node that got no answer, numbered: the same
    /// request again (a job tried once more) keeps its number, so a node that
    /// carried it out and whose answers were all lost does not act twice.
    QHash<quint32, QByteArray> unanswered;
    QString portName;
    QSerialPort* port = nullptr;
    VRNFrameCutter cutter;
    bool parsing = false;
    qint32 baudRate = 4800;
    QSerialPort::DataBits dataBits = QSerialPort::Data8;
    QSerialPort::Parity parity = QSerialPort::OddParity;
    QSerialPort::StopBits stopBits = QSerialPort::OneStop;
};

#endif // VRNBUS_P_H
