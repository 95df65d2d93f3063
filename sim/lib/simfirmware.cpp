#include "simnode.h"
#include "simnode_p.h"

#include "cryptography.h"
#include "vrndatawriter.h"

// Firmware of a simulated node: the standard update its application carries
// out (begin, blocks, end) and the bootloader it falls back to after a power
// loss in the middle of one. Frame layouts in platform/vrn/PROTOCOL.md.

namespace {

enum BlStatus : quint8 { BlOk = 0, BlChecksum = 1, BlWrongKind = 2, BlVerifyFailed = 3, BlOutOfOrder = 4, BlNoImage = 5 };
enum : quint32 { MaxImage = 1u << 20, MaxBlock = 16 };

quint16 crcOf(const QByteArray& head, const QByteArray& data)
{
    const QByteArray bytes = head + data;
    return VRNMessage::checksum(bytes.constData(), bytes.size());
}

int blStatus(VRNMessage& out, quint8 status, quint32 value = 0)
{
    out.setCmd(DTS::BlPostStatus);
    VRNDataWriter(out).writeUint8(status).writeUint24(value);
    return SimNodePrivate::Answered;
}

SimNode::AppVersion readVersion(VRNDataReader& in)
{
    SimNode::AppVersion v;
    v.major = in.readUint8();
    v.minor = in.readUint8();
    v.patch = in.readUint8();
    v.build = in.readUint16();
    return v;
}

bool sameVersion(const SimNode::AppVersion& a, const SimNode::AppVersion& b)
{
    return a.major == b.major && a.minor == b.minor && a.patch == b.patch && a.build == b.build;
}

} // namespace

bool SimNodePrivate::isFirmwareCommand(quint8 cmd)
{
    return (cmd >= DTS::FwUpdateBegin && cmd <= DTS::FwUpdateEnd) || (cmd >= DTS::BlEnter && cmd <= DTS::BlExit);
}

bool SimNodePrivate::blockArrivesDamaged()
{
    if (blockCorruption <= 0)
        return false;
    if (!faultRng)
        faultRng.reset(new QRandomGenerator(number ^ 0x5EEDu));
    if (faultRng->generateDouble() >= blockCorruption)
        return false;
    ++refusedBlocks;
    return true;
}

int SimNodePrivate::executeFirmwareCommand(const VRNMessage& rq, VRNMessage& out)
{
    VRNDataReader in(rq.payload());
    switch (rq.cmd()) {
    case DTS::FwUpdateBegin: {
        const quint8 type = in.readUint8();
        const quint32 size = in.readUint32();
        const quint8 blockSize = in.readUint8();
        const SimNode::AppVersion version = readVersion(in);
        const QByteArray id = in.readBytes(8);
        if (type != nodeType)
            return DTS::NackWrongKind;
        if (size == 0 || size > MaxImage || blockSize == 0 || blockSize > MaxBlock)
            return DTS::NackDataOutOfRange;
        // The same image again: go on from the last block received.
        if (!(update.active && update.size == size && update.blockSize == blockSize
              && sameVersion(update.version, version) && update.imageId == id)) {
            update = FirmwareUpdate();
            update.active = true;
            update.size = size;
            update.blockSize = blockSize;
            update.version = version;
            update.imageId = id;
            update.data = QByteArray(int(size), '\0');
        }
        VRNDataWriter(out).writeUint16(update.next).writeUint16(update.count());
        return Answered;
    }
    case DTS::FwUpdateBlock: {
        if (!update.active)
            return DTS::NackNotUpdating;
        const quint16 index = in.readUint16();
        const QByteArray data = in.readBytes(in.remaining() - 2);
        const quint16 crc = in.readUint16();
        if (int(index) == powerLossAt) {
            // Power gone before the block was written: the application is
            // half overwritten, the node restarts into its bootloader.
            powerLossAt = -1;
            update = FirmwareUpdate();
            bootloader = true;
            boot = BootloaderState();
            version = SimNode::AppVersion{0xFF, 0xFF, 0xFF, 0xFFFF};
            return NoAnswer;
        }
        const QByteArray head = QByteArray(1, char(index >> 8)) + char(index & 0xFF);
        if (crc != crcOf(head, data) || blockArrivesDamaged())
            return DTS::NackBlockChecksum;
        if (index == update.next && index < update.count()) {
            const quint32 at = quint32(index) * update.blockSize;
            const quint32 expected = qMin<quint32>(update.blockSize, update.size - at);
            if (quint32(data.size()) != expected)
                return DTS::NackDataOutOfRange;
            update.data.replace(int(at), data.size(), data);
            ++update.next;
        }
        // Any other block: the answer names the one the node waits for.
        VRNDataWriter(out).writeUint16(update.next).writeUint16(update.count());
        return Answered;
    }
    case DTS::FwUpdateEnd: {
        if (!update.active || update.next != update.count())
            return DTS::NackNotUpdating;
        if (in.readBytes(16) != Cryptography::digest(update.data)) {
            update = FirmwareUpdate();
            return DTS::NackImageCheck;
        }
        image = update.data;
        version = update.version;
        update = FirmwareUpdate();
        return SimReply::ack(out);
    }
    case DTS::BlEnter: {
        // From the application: a forced update through the bootloader.
        if (in.readUint8() != nodeType)
            return blStatus(out, BlWrongKind);
        update = FirmwareUpdate();
        bootloader = true;
        boot = BootloaderState();
        return blStatus(out, BlOk);
    }
    }
    errorStat.unknownMessage++;
    return DTS::NackUnknownMessage;
}

int SimNodePrivate::executeBootloader(const VRNMessage& rq, VRNMessage& out)
{
    const VRNCmdInfo info = DTS::cmdInfo(rq.cmd());
    if (rq.cmd() < DTS::BlEnter || rq.cmd() > DTS::BlExit || !info.acceptsPayloadSize(rq.payload().size()))
        return NoAnswer;
    VRNDataReader in(rq.payload());
    switch (rq.cmd()) {
    case DTS::BlEnter:
        return blStatus(out, in.readUint8() == nodeType ? BlOk : BlWrongKind);
    case DTS::BlErase: {
        const quint32 size = in.readUint32();
        if (size == 0 || size > MaxImage)
            return blStatus(out, BlOutOfOrder);
        boot = BootloaderState();
        boot.erased = true;
        boot.size = size;
        boot.version = readVersion(in);
        return blStatus(out, BlOk);
    }
    case DTS::BlWrite: {
        const quint32 offset = in.readUint24();
        const QByteArray data = in.readBytes(in.remaining() - 2);
        const quint16 crc = in.readUint16();
        const QByteArray head = QByteArray(1, char(offset >> 16)) + char((offset >> 8) & 0xFF) + char(offset & 0xFF);
        if (!boot.erased)
            return blStatus(out, BlOutOfOrder);
        if (crc != crcOf(head, data) || blockArrivesDamaged())
            return blStatus(out, BlChecksum, quint32(boot.data.size()));
        if (offset != quint32(boot.data.size()) || offset + quint32(data.size()) > boot.size)
            return blStatus(out, BlOutOfOrder, quint32(boot.data.size()));
        boot.data += data;
        boot.verified = false;
        return blStatus(out, BlOk, quint32(boot.data.size()));
    }
    case DTS::BlVerify:
        boot.verified = boot.erased && quint32(boot.data.size()) == boot.size
            && in.readBytes(16) == Cryptography::digest(boot.data);
        return blStatus(out, boot.verified ? BlOk : BlVerifyFailed);
    case DTS::BlExit:
        if (!boot.verified)
            return blStatus(out, BlNoImage);
        image = boot.data;
        version = boot.version;
        bootloader = false;
        boot = BootloaderState();
        return blStatus(out, BlOk);
    }
    return NoAnswer;
}

QByteArray SimNode::firmwareImage() const { return d_func()->image; }
void SimNode::setFirmwareImage(const QByteArray& image) { d_func()->image = image; }
bool SimNode::inBootloader() const { return d_func()->bootloader; }
void SimNode::setBootloader(bool on)
{
    Q_D(SimNode);
    d->bootloader = on;
    d->boot = SimNodePrivate::BootloaderState();
    d->update = SimNodePrivate::FirmwareUpdate();
}
bool SimNode::isUpdating() const { return d_func()->update.active; }
int SimNode::updateNextBlock() const { return d_func()->update.next; }
void SimNode::setPowerLossAtBlock(int block) { d_func()->powerLossAt = block; }
int SimNode::powerLossAtBlock() const { return d_func()->powerLossAt; }
void SimNode::setBlockCorruption(double probability) { d_func()->blockCorruption = qBound(0.0, probability, 1.0); }
quint32 SimNode::refusedBlocks() const { return d_func()->refusedBlocks; }
