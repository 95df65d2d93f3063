#include "dtsupdateproxy.h"

#include "dts.h"
#include "vrndatawriter.h"
#include "vrnmessage.h"

DTSUpdateProxy::DTSUpdateProxy(VRN::Addr addr, Bus* bus, QObject* parent)
    : DTSStdProxy(addr, bus, parent)
{
}

DTSUpdateProxy::~DTSUpdateProxy() = default;

BusPendingCall DTSUpdateProxy::beginUpdate(quint8 nodeType, quint32 size, quint8 blockSize,
                                           const AppVersion& version, const QByteArray& imageId)
{
    if (imageId.size() != ImageIdSize)
        return BusPendingCall::fromError(BusPendingCall::OtherError);
    return request(DTS::FwUpdateBegin, [&](VRNDataWriter& w) {
        w.writeUint8(nodeType).writeUint32(size).writeUint8(blockSize).writeUint8(version.major)
            .writeUint8(version.minor).writeUint8(version.patch).writeUint16(version.build).writeBytes(imageId);
    });
}

BusPendingCall DTSUpdateProxy::sendBlock(quint16 index, const QByteArray& data)
{
    if (data.isEmpty() || data.size() > MaxBlockSize)
        return BusPendingCall::fromError(BusPendingCall::OtherError);
    return request(DTS::FwUpdateBlock, [&](VRNDataWriter& w) {
        w.writeUint16(index).writeBytes(data).writeUint16(blockChecksum(index, data));
    });
}

BusPendingCall DTSUpdateProxy::endUpdate(const QByteArray& digest)
{
    if (digest.size() != DigestSize)
        return BusPendingCall::fromError(BusPendingCall::OtherError);
    return request(DTS::FwUpdateEnd, [&](VRNDataWriter& w) { w.writeBytes(digest); });
}

bool DTSUpdateProxy::getUpdateReply(const BusMessage& msg, quint16& nextBlock, quint16& blockCount) const
{
    return parseReply(msg, DTS::PostFwUpdate, [](VRNDataReader& r, quint16& next, quint16& count) {
        next = r.readUint16();
        count = r.readUint16();
        return next <= count;
    }, nextBlock, blockCount);
}

quint16 DTSUpdateProxy::blockChecksum(quint16 index, const QByteArray& data)
{
    QByteArray bytes;
    bytes.append(char(index >> 8)).append(char(index & 0xFF)).append(data);
    return VRNMessage::checksum(bytes.constData(), bytes.size());
}
