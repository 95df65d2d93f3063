#include "vrnbus.h"
#include "vrnbus_p.h"
#include "dts.h"
#include "vrnmessage.h"

#include <QDebug>
#include <QDir>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QSerialPortInfo>

#include <algorithm>

namespace {

#ifdef Q_OS_UNIX
// Walks `path` from the root, taking at each level the entry of that name or,
// failing that, the first whose name differs only in case.
QString resolvePathIgnoringCase(const QString& path)
{
    QString resolved = QStringLiteral("/");
    const QStringList parts = path.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    for (const QString& part : parts) {
        const QString exact = resolved + part;
        if (QFileInfo::exists(exact)) {
            resolved = exact;
        } else {
            const QStringList entries = QDir(resolved).entryList(
                QDir::AllEntries | QDir::System | QDir::Hidden | QDir::NoDotAndDotDot);
            auto it = std::find_if(entries.cbegin(), entries.cend(), [&part](const QString& e) {
                return e.compare(part, Qt::CaseInsensitive) == 0;
            });
            if (it == entries.cend())
                return QString();
            resolved += *it;
        }
        resolved += QLatin1Char('/');
    }
    resolved.chop(1);
    return resolved;
}
#endif

// Port identifiers are stored in upper case, and pseudo-terminals are absent
// from the system's port list: see the class documentation.
QString resolvePortName(const QString& name)
{
    const auto ports = QSerialPortInfo::availablePorts();
    for (const QSerialPortInfo& info : ports) {
        if (info.portName().compare(name, Qt::CaseInsensitive) == 0
            || info.systemLocation().compare(name, Qt::CaseInsensitive) == 0)
            return info.systemLocation();
    }
#ifdef Q_OS_UNIX
    const QString path = QDir::isAbsolutePath(name) ? name : QStringLiteral("/dev/") + name;
    const QString resolved = resolvePathIgnoringCase(path);
    if (!resolved.isEmpty())
        return resolved;
#endif
    return name;
}

// Our own requests, built and checked by VRNMessage: their fields straight
// from the bytes, without a second checksum pass (this runs several times a call).
struct Request
{
    explicit Request(const QByteArray& bytes)
    {
        if (bytes.size() < VRNMessage::MinFrameSize)
            return;
        const char* p = bytes.constData();
        cmd = quint8(p[0]);
        ack = quint8(p[1]) & VRNMessage::AckFlag;
        seq = quint8(p[2]) >> VRNMessage::SeqShift;
        src = read24(p + 3);
        dst = read24(p + 6);
        type = (quint8(p[1]) & VRNMessage::GroupFlag) ? VRN::AddrGroup
             : dst == VRN::BroadcastNumber              ? VRN::AddrBroadcast
                                                        : VRN::AddrNode;
        firstByte = bytes.size() > VRNMessage::MinFrameSize ? quint8(p[VRNMessage::HeaderSize]) : -1;
        ok = true;
    }
    static quint32 read24(const char* p)
    {
        return (quint32(quint8(p[0])) << 16) | (quint32(quint8(p[1])) << 8) | quint32(quint8(p[2]));
    }

    bool ok = false;
    bool ack = false;
    quint8 cmd = 0;
    quint8 seq = 0;
    quint32 src = 0;
    quint32 dst = 0;
    int firstByte = -1;
    VRN::AddrType type = VRN::AddrNode;
};

// The same request but for the sequence number (and so the checksum).
bool sameButNumber(const QByteArray& a, const QByteArray& b)
{
    const int body = a.size() - VRNMessage::ChecksumSize;
    if (a.size() != b.size() || body < VRNMessage::HeaderSize)
        return false;
    return std::equal(a.constBegin(), a.constBegin() + 2, b.constBegin())
        && (quint8(a.at(2)) & VRNMessage::TypeMask) == (quint8(b.at(2)) & VRNMessage::TypeMask)
        && std::equal(a.constBegin() + 3, a.constBegin() + body, b.constBegin() + 3);
}

} // namespace

void VRNBusPrivate::receiveBytes(const QByteArray& bytes)
{
    cutter.append(bytes);
    // Bytes injected from a slot while a frame is reported join the buffer
    // and are read by the loop already running.
    if (parsing)
        return;
    parsing = true;
    QByteArray piece;
    for (VRNFrameCutter::Piece p; (p = cutter.next(&piece)) != VRNFrameCutter::NeedMore;) {
        if (p == VRNFrameCutter::Frame) {
            receiveFrame(piece);
        } else {
            qDebug().noquote() << logPrefix() << "dropped" << piece.size() << "bytes that start no frame";
            frameReceived(BusMessage(piece));
        }
    }
    parsing = false;
}

void VRNBusPrivate::receiveFrame(const QByteArray& frame)
{
    const VRNMessage message{BusMessage(frame)};
    if (message.isValid() && message.srcAddr() == VRN::toolAddr())
        return; // our own request, echoed by the medium
    frameReceived(message);
}

void VRNBusPrivate::resetStream()
{
    cutter.clear();
}

void VRNBusPrivate::applyLineSettings()
{
    if (!port || !port->isOpen())
        return;
    const bool ok = port->setBaudRate(baudRate) && port->setDataBits(dataBits)
        && port->setParity(parity) && port->setStopBits(stopBits);
    if (!ok)
        qWarning().noquote() << logPrefix() << "line settings refused by" << port->portName() << ":"
                             << port->errorString();
}

void VRNBusPrivate::onPortError(QSerialPort::SerialPortError error)
{
    Q_Q(VRNBus);
    switch (error) {
    case QSerialPort::WriteError:
        qWarning().noquote() << logPrefix() << "write failed:" << port->errorString();
        finishCurrent(BusPendingCall::WriteError, port->errorString());
        break;
    case QSerialPort::ReadError:
    case QSerialPort::ResourceError:
        // The device is gone (unplugged, the other end of a pseudo-terminal
        // closed): every call ends with "bus not available". A hung-up
        // pseudo-terminal reports ReadError, again and again while the port
        // stays open, so a read failure closes the port too.
        qWarning().noquote() << logPrefix() << "port lost:" << port->errorString();
        q->setErrorString(port->errorString());
        q->close();
        break;
    default:
        break;
    }
}

VRNBus::VRNBus(const QString& portName, QObject* parent)
    : VRNBus(*new VRNBusPrivate, parent)
{
    Q_D(VRNBus);
    d->portName = portName;
    d->port = new QSerialPort(this);
    connect(d->port, &QSerialPort::readyRead, this, [d] { d->receiveBytes(d->port->readAll()); });
    connect(d->port, &QSerialPort::errorOccurred, this,
            [d](QSerialPort::SerialPortError error) { d->onPortError(error); });
}

VRNBus::VRNBus(VRNBusPrivate& dd, QObject* parent) : Bus(dd, parent) {}

VRNBus::~VRNBus()
{
    Q_D(VRNBus);
    if (d->port)
        close();
}

bool VRNBus::open()
{
    Q_D(VRNBus);
    if (isOpen())
        return true;
    d->port->setPortName(resolvePortName(d->portName));
    if (!d->port->open(QIODevice::ReadWrite)) {
        setErrorString(tr("Cannot open serial port %1: %2").arg(d->portName, d->port->errorString()));
        qWarning().noquote() << d->logPrefix() << errorString();
        return false;
    }
    d->applyLineSettings();
    d->resetStream();
    return Bus::open();
}

void VRNBus::close()
{
    Q_D(VRNBus);
    if (d->port && d->port->isOpen())
        d->port->close();
    d->resetStream();
    Bus::close();
}

QIODevice* VRNBus::ioDevice() const { return d_func()->port; }
QString VRNBus::portName() const { return d_func()->portName; }

qint32 VRNBus::baudRate() const { return d_func()->baudRate; }
QSerialPort::DataBits VRNBus::dataBits() const { return d_func()->dataBits; }
QSerialPort::Parity VRNBus::parity() const { return d_func()->parity; }
QSerialPort::StopBits VRNBus::stopBits() const { return d_func()->stopBits; }

void VRNBus::setBaudRate(qint32 baud)
{
    d_func()->baudRate = baud;
    d_func()->applyLineSettings();
}
void VRNBus::setDataBits(QSerialPort::DataBits bits)
{
    d_func()->dataBits = bits;
    d_func()->applyLineSettings();
}
void VRNBus::setParity(QSerialPort::Parity parity)
{
    d_func()->parity = parity;
    d_func()->applyLineSettings();
}
void VRNBus::setStopBits(QSerialPort::StopBits bits)
{
    d_func()->stopBits = bits;
    d_func()->applyLineSettings();
}

bool VRNBus::writeFrame(const BusMessage& message)
{
    Q_D(VRNBus);
    const QByteArray bytes = message.data();
    return d->port && d->port->isOpen() && d->port->write(bytes) == bytes.size();
}

bool VRNBus::isBroadcast(const BusMessage& request) const
{
    return Request(request.data()).type != VRN::AddrNode;
}

bool VRNBus::isReplyTo(const BusMessage& request, const BusMessage& frame) const
{
    // A node answers the address that asked: a frame to another tool's
    // number answers that tool's request, never ours. Frames from reserved
    // addresses are invalid and never get here. A frame the bus decoded on
    // receipt is not decoded (and summed) a second time.
    const auto* decoded = dynamic_cast<const VRNMessage*>(&frame);
    const bool reuse = decoded && decoded->isValid();
    const VRNMessage parsed = reuse ? VRNMessage() : VRNMessage(frame);
    const VRNMessage& reply = reuse ? *decoded : parsed;
    if (!reply.isValid() || reply.dstType() != VRN::AddrNode || VRN::getType(reply.srcAddr()) == VRN::NodeTool)
        return false;
    const Request call(request.data());
    if (!call.ok || reply.dstAddr() != call.src)
        return false;
    const bool toOne = call.type == VRN::AddrNode;
    if (toOne && (reply.srcAddr(false) != call.dst || (reply.seq() != 0 && reply.seq() != call.seq)))
        return false;
    return DTS::answers(call.cmd, toOne, call.firstByte, reply);
}

QString VRNBus::refusal(const BusMessage& request) const
{
    // A request that wants an acknowledgement is meant for one node, even
    // when its destination is the broadcast number.
    const Request call(request.data());
    const bool toOne = call.type == VRN::AddrNode || (call.ack && call.type == VRN::AddrBroadcast);
    if (!call.ok || !toOne || !VRN::isReservedNumber(call.dst))
        return QString();
    return tr("request 0x%1 to node 0x%2 refused: the number is reserved (broadcast, tool or none), "
              "never a device's")
        .arg(call.cmd, 2, 16, QLatin1Char('0'))
        .arg(call.dst, 6, 16, QLatin1Char('0'));
}

quint8 VRNBusPrivate::nextSeq(quint32 node)
{
    auto it = seqByNode.find(node);
    if (it == seqByNode.end())
        it = seqByNode.insert(node, quint8(QRandomGenerator::global()->bounded(1, VRNMessage::MaxSeq + 1)));
    const quint8 seq = *it;
    *it = seq >= VRNMessage::MaxSeq ? 1 : seq + 1;
    return seq;
}

void VRNBus::stampRequest(BusMessage& request)
{
    Q_D(VRNBus);
    const Request call(request.data());
    if (!call.ok || call.type != VRN::AddrNode || call.seq != 0)
        return;
    QByteArray bytes = request.data();
    const QByteArray last = d->unanswered.take(call.dst);
    const quint8 seq = !last.isEmpty() && sameButNumber(last, bytes) ? Request(last).seq : d->nextSeq(call.dst);
    bytes[2] = char((quint8(bytes.at(2)) & VRNMessage::TypeMask) | (seq << VRNMessage::SeqShift));
    const int body = bytes.size() - VRNMessage::ChecksumSize;
    const quint16 crc = VRNMessage::checksum(bytes.constData(), body);
    bytes[body] = char(crc >> 8);
    bytes[body + 1] = char(crc & 0xFF);
    request = BusMessage(bytes);
}

void VRNBus::requestEnded(const BusMessage& request, bool answered)
{
    Q_D(VRNBus);
    const Request call(request.data());
    if (!call.ok || call.type != VRN::AddrNode || call.seq == 0)
        return;
    if (answered)
        d->unanswered.remove(call.dst);
    else
        d->unanswered.insert(call.dst, request.data());
}

qint64 VRNBus::nodeOf(const BusMessage& frame, bool request) const
{
    if (request) {
        const Request call(frame.data());
        return call.ok && call.type == VRN::AddrNode ? qint64(call.dst) : -1;
    }
    const VRNMessage m(frame);
    if (!m.isValid())
        return -1;
    return VRN::getType(m.srcAddr()) == VRN::NodeTool ? -1 : qint64(m.srcAddr(false));
}

QString VRNBus::nodeName(qint64 node) const
{
    return QStringLiteral("0x") + QStringLiteral("%1").arg(quint32(node), 6, 16, QLatin1Char('0')).toUpper();
}
