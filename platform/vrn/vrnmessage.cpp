#include "vrnmessage.h"

#include <atomic>

namespace {
quint8 lengthByte(const char* data) { return quint8(data[1]); }
quint32 read24(const char* p)
{
    return (quint32(quint8(p[0])) << 16) | (quint32(quint8(p[1])) << 8) | quint32(quint8(p[2]));
}
void append24(QByteArray& out, quint32 v)
{
    out.append(char((v >> 16) & 0xFF));
    out.append(char((v >> 8) & 0xFF));
    out.append(char(v & 0xFF));
}
} // namespace

VRNMessage::VRNMessage() = default;

VRNMessage::VRNMessage(const BusMessage& frame)
    : BusMessage(frame)
{
    const QByteArray bytes = frame.data();
    // frameLength() answers 0 ("wait for more") for fewer than two bytes,
    // which an empty frame would match: too short is invalid here.
    if (bytes.size() < MinFrameSize || frameLength(bytes.constData(), bytes.size()) != bytes.size())
        return;
    const char* p = bytes.constData();
    m_cmd = quint8(p[0]);
    m_ack = lengthByte(p) & AckFlag;
    m_src = (VRN::Addr(quint8(p[2]) & TypeMask) << 24) | read24(p + 3);
    m_seq = quint8(p[2]) >> SeqShift;
    m_dst = read24(p + 6);
    if (lengthByte(p) & GroupFlag)
        m_dstType = VRN::AddrGroup;
    else if (m_dst == VRN::BroadcastNumber)
        m_dstType = VRN::AddrBroadcast;
    else
        m_dstType = VRN::AddrNode;
    m_payload = bytes.mid(HeaderSize, bytes.size() - MinFrameSize);
    // A device never sends from a reserved address: such a frame is forged
    // or broken, whatever its checksum says.
    m_valid = VRN::isValidSource(m_src);
}

VRNMessage::VRNMessage(quint8 cmd, VRN::Addr src, quint32 dst, VRN::AddrType dstType,
                       const QByteArray& payload)
    : m_payload(payload), m_src(src), m_cmd(cmd)
{
    setDstAddr(dst, dstType);
    prepare();
}

void VRNMessage::setCmd(quint8 cmd) { m_cmd = cmd; m_valid = false; }
void VRNMessage::setAck(bool ack) { m_ack = ack; m_valid = false; }
void VRNMessage::setSrcAddr(VRN::Addr addr) { m_src = addr; m_valid = false; }
void VRNMessage::setSeq(quint8 seq) { m_seq = seq & MaxSeq; m_valid = false; }
void VRNMessage::setPayload(const QByteArray& payload) { m_payload = payload; m_valid = false; }

VRN::Addr VRNMessage::srcAddr(bool withType) const
{
    return withType ? m_src : VRN::getNumber(m_src);
}

void VRNMessage::setDstAddr(quint32 number, VRN::AddrType type)
{
    m_dstType = type;
    m_dst = type == VRN::AddrBroadcast ? VRN::BroadcastNumber : VRN::getNumber(number);
    m_valid = false;
}

bool VRNMessage::prepare()
{
    if (m_payload.size() > MaxPayloadSize) {
        m_valid = false;
        setData(QByteArray());
        return false;
    }
    const int length = MinFrameSize + m_payload.size();
    QByteArray out;
    out.reserve(length);
    out.append(char(m_cmd));
    out.append(char(length | (m_ack ? AckFlag : 0) | (m_dstType == VRN::AddrGroup ? GroupFlag : 0)));
    out.append(char((VRN::getType(m_src) & TypeMask) | (m_seq << SeqShift)));
    append24(out, VRN::getNumber(m_src));
    append24(out, m_dst);
    out.append(m_payload);
    const quint16 crc = checksum(out.constData(), out.size());
    out.append(char(crc >> 8));
    out.append(char(crc & 0xFF));
    setData(out);
    m_valid = true;
    return true;
}

int VRNMessage::frameLength(const char* data, int size)
{
    if (size < 2)
        return 0;
    const int length = lengthByte(data) & LengthMask;
    if (length < MinFrameSize || length > MaxFrameSize)
        return -1;
    if (size < length)
        return 0;
    const quint16 crc = (quint16(quint8(data[length - 2])) << 8) | quint8(data[length - 1]);
    return checksum(data, length - ChecksumSize) == crc ? length : -1;
}

namespace {
// The bit-by-bit CRC of every byte value, so that a frame costs one look-up
// a byte: every frame is summed several times on its way (cut, decoded,
// matched), which made the bitwise loop the bus's largest cost per reply.
struct CrcTable
{
    quint16 value[256];
    constexpr CrcTable() : value()
    {
        for (int i = 0; i < 256; ++i) {
            quint16 crc = quint16(i << 8);
            for (int b = 0; b < 8; ++b)
                crc = (crc & 0x8000) ? quint16((crc << 1) ^ 0x1021) : quint16(crc << 1);
            value[i] = crc;
        }
    }
};
constexpr CrcTable crcTable;
} // namespace

quint16 VRNMessage::checksum(const char* data, int size)
{
    quint16 crc = 0xFFFF;
    for (int i = 0; i < size; ++i)
        crc = quint16((crc << 8) ^ crcTable.value[(crc >> 8) ^ quint8(data[i])]);
    return crc;
}

namespace {
std::atomic<VRN::Addr> processToolAddr{VRN::ToolAddr};
}

VRN::Addr VRN::toolAddr()
{
    return processToolAddr.load();
}

void VRN::setToolNumber(quint32 number)
{
    if (number >= 1 && number < BroadcastNumber)
        processToolAddr.store(makeAddr(NodeTool, int(number)));
}
