#ifndef VRNMESSAGE_H
#define VRNMESSAGE_H

#include "busmessage.h"
#include "vrn.h"

#include <QByteArray>

/// One frame of the device network (layout in PROTOCOL.md).
///
/// Built from received bytes, `VRNMessage(busMessage)` decodes the frame and
/// `isValid()` tells whether length, checksum and addressing agree. Built from
/// fields, the frame bytes exist after `prepare()`.
///
///     VRNMessage m(DTS::GetNodeLabel, VRN::ToolAddr, node, VRN::AddrNode);
///     m.setAck(true); m.prepare(); bus->call(m);
class VRNMessage : public BusMessage
{
public:
    enum : int {
        HeaderSize = 9,
        ChecksumSize = 2,
        MinFrameSize = HeaderSize + ChecksumSize,
        MaxFrameSize = 32,
        MaxPayloadSize = MaxFrameSize - MinFrameSize
    };
    enum : quint8 { AckFlag = 0x80, GroupFlag = 0x40, LengthMask = 0x3F };
    /// Byte 2 carries the sender's node type in its low nibble and the
    /// request's sequence number in its high nibble.
    enum : quint8 { TypeMask = 0x0F, SeqShift = 4, MaxSeq = 15 };

    VRNMessage();
    VRNMessage(const BusMessage& frame);
    VRNMessage(quint8 cmd, VRN::Addr src, quint32 dst, VRN::AddrType dstType,
               const QByteArray& payload = QByteArray());

    /// True for a frame decoded from valid bytes or successfully prepared.
    bool isValid() const { return m_valid; }
    quint8 cmd() const { return m_cmd; }
    void setCmd(quint8 cmd);
    bool ack() const { return m_ack; }
    void setAck(bool ack);
    /// Source address; with `withType` false only the 24-bit node number.
    VRN::Addr srcAddr(bool withType = true) const;
    void setSrcAddr(VRN::Addr addr);
    /// Destination node or group number (24 bits); 0xFFFFFF for a broadcast.
    quint32 dstAddr() const { return m_dst; }
    /// Sequence number 1..15 of a unicast request (a node answers a repeat
    /// of its last request again without acting on it), echoed in the
    /// reply; 0: none, the request is always carried out.
    quint8 seq() const { return m_seq; }
    void setSeq(quint8 seq);
    VRN::AddrType dstType() const { return m_dstType; }
    void setDstAddr(quint32 number, VRN::AddrType type);
    bool isBroadcast() const { return m_dstType == VRN::AddrBroadcast; }
    QByteArray payload() const { return m_payload; }
    void setPayload(const QByteArray& payload);
    QByteArray& payloadRef() { m_valid = false; return m_payload; }
    /// The payload without a copy.
    const QByteArray& payloadRef() const { return m_payload; }

    /// Encodes the fields into the frame bytes; false (and invalid) when the
    /// payload is longer than `MaxPayloadSize`.
    bool prepare();

    /// Length of the frame that starts at `data`: > 0 a whole valid frame,
    /// 0 more bytes are needed to tell, -1 no valid frame starts here.
    static int frameLength(const char* data, int size);
    /// CRC-16/CCITT (polynomial 0x1021, initial value 0xFFFF).
    static quint16 checksum(const char* data, int size);

private:
    QByteArray m_payload;
    VRN::Addr m_src = 0;
    quint32 m_dst = 0;
    VRN::AddrType m_dstType = VRN::AddrNode;
    quint8 m_cmd = 0;
    quint8 m_seq = 0;
    bool m_ack = false;
    bool m_valid = false;
};

namespace VRN {
/// The tool address a process sends from unless it chose a number of its own.
constexpr Addr ToolAddr = (Addr(NodeTool) << 24) | 0x000001u;
/// The source of this process's requests: node type "tool" and the number
/// given to `setToolNumber()` (`ToolAddr` until then). Nodes answer the
/// address that asked, so tools sharing one bus each choose their own
/// number and take only the replies to their own requests.
Addr toolAddr();
/// Sets the number of `toolAddr()`: 1..0xFFFFFE; anything else is ignored.
void setToolNumber(quint32 number);
}

#endif // VRNMESSAGE_H
