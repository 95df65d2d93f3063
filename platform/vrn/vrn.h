#ifndef VRN_H
#define VRN_H

#include <QtGlobal>

/// Node addresses of the device network.
///
/// A `VRN::Addr` holds the node type in its top 8 bits and the 24-bit node
/// number below: `VRN::makeAddr(VRN::NodeMotor, 0x1234)` is 0x01001234.
namespace VRN {

typedef quint32 Addr;

enum NodeType : quint8 {
    NodeTool = 0,        ///< a configuration tool (this library)
    NodeMotor = 1,       ///< motor
    NodeTX30 = 2,        ///< TX30 DC-motor model
    NodeKeypad = 3,      ///< standard node: wall keypad
    NodeSensor = 4,      ///< standard node: sensor
    NodeInterface = 5,   ///< standard node: interface module
    NodeMotorIO = 6,     ///< motor with dry-contact inputs
    NodeLRU50 = 7,       ///< LRU50 motor model
    NodeTX50DC = 8,      ///< TX50DC DC-motor model
    NodeDCMotor = 9,     ///< DC motor
    NodeSettingTool = 10,///< hand-held setting tool
    NodeAll = 15         ///< every node type (broadcast requests)
};

/// How a request's destination is to be read.
enum AddrType : quint8 {
    AddrNode = 0,       ///< one node, by its number
    AddrGroup = 1,      ///< every member of a group address
    AddrBroadcast = 4   ///< every node on the bus
};

/// Node number used on the wire as the destination of a broadcast.
constexpr quint32 BroadcastNumber = 0xFFFFFF;
/// Node numbers of configuration tools: 1 (the default) and the range the
/// command-line tool draws its numbers from.
constexpr quint32 DefaultToolNumber = 0x000001;
constexpr quint32 FirstToolNumber = 0xFE0000;
constexpr quint32 LastToolNumber = 0xFEFFFF;

inline Addr makeAddr(NodeType type, int index)
{
    return (Addr(type) << 24) | (Addr(index) & 0xFFFFFFu);
}
inline NodeType getType(Addr addr) { return NodeType(addr >> 24); }
inline quint32 getNumber(Addr addr) { return addr & 0xFFFFFFu; }

/// A number no device can have: 0, the broadcast number and the tool numbers.
inline bool isReservedNumber(quint32 number)
{
    return number == 0 || number >= BroadcastNumber || number == DefaultToolNumber
        || (number >= FirstToolNumber && number <= LastToolNumber);
}
/// A node type a device can have: 1..14 (0 is a tool, 15 every type).
inline bool isDeviceType(int type) { return type > NodeTool && type < NodeAll; }
/// The address of a device: never a tool's, a broadcast's, or a reserved number.
inline bool isDeviceAddr(Addr addr)
{
    return isDeviceType(getType(addr)) && !isReservedNumber(getNumber(addr));
}
/// A frame may come from this address: a device, or a tool (any number but
/// 0 and the broadcast number).
inline bool isValidSource(Addr addr)
{
    if (getType(addr) == NodeTool)
        return getNumber(addr) != 0 && getNumber(addr) < BroadcastNumber;
    return isDeviceAddr(addr);
}

} // namespace VRN

#endif // VRN_H
