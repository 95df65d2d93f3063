// Private header, not API: it may change without notice.
#ifndef VRNBUS_P_H
#define VRNBUS_P_H

#include "bus_p.h"
#include "vrnbus.h"

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

    /// Takes one frame or dropped bytes from the front of the buffer; false
    /// when it must wait for more bytes.
    bool takeFrame();
    void dropBytes(int count);
    void reportDropped();

    QString portName;
    QSerialPort* port = nullptr;
    QByteArray rxBuffer;
    QByteArray dropped;
    bool parsing = false;
    qint32 baudRate = 4800;
    QSerialPort::DataBits dataBits = QSerialPort::Data8;
    QSerialPort::Parity parity = QSerialPort::OddParity;
    QSerialPort::StopBits stopBits = QSerialPort::OneStop;
};

#endif // VRNBUS_P_H
