#ifndef TESTFRAMES_H
#define TESTFRAMES_H

#include "dts.h"
#include "vrnmessage.h"

#include <QByteArray>

// Frames as the tool and the nodes put them on the wire.
namespace TestFrames {

inline VRNMessage request(quint32 node, quint8 cmd = DTS::GetNodeLabel)
{
    VRNMessage m(cmd, VRN::ToolAddr, node, VRN::AddrNode);
    m.setAck(true);
    m.prepare();
    return m;
}

inline VRNMessage broadcast(quint8 cmd = DTS::GetNodeAddr)
{
    return VRNMessage(cmd, VRN::ToolAddr, VRN::BroadcastNumber, VRN::AddrBroadcast);
}

inline QByteArray reply(quint32 node, const QByteArray& payload = "label",
                        quint8 cmd = DTS::PostNodeLabel)
{
    return VRNMessage(cmd, VRN::makeAddr(VRN::NodeMotor, int(node)), VRN::getNumber(VRN::ToolAddr),
                      VRN::AddrNode, payload)
        .data();
}

inline QByteArray corrupted(QByteArray frame)
{
    frame[frame.size() - 3] = char(frame.at(frame.size() - 3) ^ 0x01);
    return frame;
}

} // namespace TestFrames

#endif // TESTFRAMES_H
