#include "motorbl.h"

#include "dts.h"
#include "vrndatawriter.h"
#include "vrnmessage.h"

#include <QCoreApplication>

MotorBL::MotorBL(VRN::Addr addr, Bus* bus, QObject* parent)
    : DTSStdProxy(addr, bus, parent)
{
}

MotorBL::~MotorBL() = default;

BusPendingCall MotorBL::enter(quint8 nodeType)
{
    return request(DTS::BlEnter, [&](VRNDataWriter& w) { w.writeUint8(nodeType); });
}

BusPendingCall MotorBL::erase(quint32 size, const AppVersion& version)
{
    return request(DTS::BlErase, [&](VRNDataWriter& w) {
        w.writeUint32(size).writeUint8(version.major).writeUint8(version.minor).writeUint8(version.patch)
            .writeUint16(version.build);
    });
}

BusPendingCall MotorBL::write(quint32 offset, const QByteArray& data)
{
    if (data.isEmpty() || data.size() > MaxWriteSize || offset > 0xFFFFFFu)
        return BusPendingCall::fromError(BusPendingCall::OtherError);
    return request(DTS::BlWrite, [&](VRNDataWriter& w) {
        w.writeUint24(offset).writeBytes(data).writeUint16(writeChecksum(offset, data));
    });
}

BusPendingCall MotorBL::verify(const QByteArray& digest)
{
    if (digest.size() != DigestSize)
        return BusPendingCall::fromError(BusPendingCall::OtherError);
    return request(DTS::BlVerify, [&](VRNDataWriter& w) { w.writeBytes(digest); });
}

BusPendingCall MotorBL::exit()
{
    return request(DTS::BlExit);
}

bool MotorBL::statusReply(const BusMessage& msg, Status& status, quint32& value) const
{
    return parseReply(msg, DTS::BlPostStatus, [](VRNDataReader& r, Status& s, quint32& v) {
        const quint8 raw = r.readUint8();
        s = Status(raw);
        v = r.readUint24();
        return raw <= NoImage;
    }, status, value);
}

quint16 MotorBL::writeChecksum(quint32 offset, const QByteArray& data)
{
    QByteArray bytes;
    bytes.append(char(offset >> 16)).append(char((offset >> 8) & 0xFF)).append(char(offset & 0xFF)).append(data);
    return VRNMessage::checksum(bytes.constData(), bytes.size());
}

QString MotorBL::toString(Status status)
{
    switch (status) {
    case Ok: return QCoreApplication::translate("MotorBL", "ok");
    case ChecksumError: return QCoreApplication::translate("MotorBL", "checksum error");
    case WrongKind: return QCoreApplication::translate("MotorBL", "image for another kind of node");
    case VerifyFailed: return QCoreApplication::translate("MotorBL", "image check failed");
    case OutOfOrder: return QCoreApplication::translate("MotorBL", "write out of order");
    case NoImage: return QCoreApplication::translate("MotorBL", "no valid image");
    }
    return QCoreApplication::translate("MotorBL", "status %1").arg(int(status));
}
