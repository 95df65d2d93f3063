#ifndef VRNBUS_H
#define VRNBUS_H

#include "bus.h"

#include <QSerialPort>

class VRNBusPrivate;

/// The device network on a serial line (default 4800 baud, 8 data bits, odd
/// parity, 1 stop bit), and the base class of every device-network transport.
///
/// `open()` finds the port whatever the case of `portName`: first among the
/// ports the system lists (name or location), then in the file system, either
/// an absolute path ("/dev/pts/3") or a name below /dev ("PTS/3"), each path
/// component compared without regard to case. Pseudo-terminals are not listed
/// by the system, so they open by path.
///
///     VRNBus bus("ttyusb0");
///     if (!bus.open()) qWarning() << bus.errorString();
///
/// Frames are cut from the byte stream by their length byte and checksum;
/// bytes that start no valid frame are dropped one by one and reported as one
/// invalid `messageReceived`. Frames sent from `VRN::toolAddr()` are our own
/// echo and are dropped before they are reported. A unicast request is
/// answered by the first valid frame from the called node to the tool that
/// answers its command (`DTS::answers`: reply code, acknowledged command,
/// index) and carries its sequence number; a broadcast or group request
/// collects every such frame from any device. Requests to one node are given
/// a sequence number (PROTOCOL.md) and are never sent to a reserved number.
class VRNBus : public Bus
{
    Q_OBJECT
    Q_PROPERTY(QString portName READ portName)
    Q_PROPERTY(qint32 baudRate READ baudRate WRITE setBaudRate)
    Q_PROPERTY(QSerialPort::DataBits dataBits READ dataBits WRITE setDataBits)
    Q_PROPERTY(QSerialPort::Parity parity READ parity WRITE setParity)
    Q_PROPERTY(QSerialPort::StopBits stopBits READ stopBits WRITE setStopBits)
public:
    explicit VRNBus(const QString& portName, QObject* parent = nullptr);
    ~VRNBus() override;

    bool open() override;
    void close() override;
    /// The `QSerialPort` (its `portName()` is the name the system gives the
    /// port); null for the transports that are not serial.
    QIODevice* ioDevice() const override;

    /// The name the bus was created with.
    QString portName() const;
    /// Line settings; a change applies at once to an open port.
    qint32 baudRate() const;
    void setBaudRate(qint32 baud);
    QSerialPort::DataBits dataBits() const;
    void setDataBits(QSerialPort::DataBits bits);
    QSerialPort::Parity parity() const;
    void setParity(QSerialPort::Parity parity);
    QSerialPort::StopBits stopBits() const;
    void setStopBits(QSerialPort::StopBits bits);

protected:
    /// For transports that are not serial: no port is created.
    VRNBus(VRNBusPrivate& dd, QObject* parent);

    bool writeFrame(const BusMessage& message) override;
    bool isBroadcast(const BusMessage& request) const override;
    bool isReplyTo(const BusMessage& request, const BusMessage& frame) const override;
    QString refusal(const BusMessage& request) const override;
    void stampRequest(BusMessage& request) override;
    void requestEnded(const BusMessage& request, bool answered) override;
    qint64 nodeOf(const BusMessage& frame, bool request) const override;
    QString nodeName(qint64 node) const override;

private:
    Q_DECLARE_PRIVATE(VRNBus)
};

#endif // VRNBUS_H
