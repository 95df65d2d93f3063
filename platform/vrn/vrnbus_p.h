// Private header, not API: it may change without notice.
#ifndef VRNBUS_P_H
#define VRNBUS_P_H

#include "bus_p.h"
#include "vrnbus.h"
#include "vrnframecutter.h"

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
