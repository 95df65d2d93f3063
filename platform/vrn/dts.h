#ifndef DTS_H
#define DTS_H

#include "vrncmdinfo.h"

#include <QHash>
#include <QString>

class VRNMessage;

/// The command set of the device network: request and reply codes, the
/// negative-acknowledgement status codes, and the table of every command.
/// PROTOCOL.md gives the payload of each command byte by byte.
namespace DTS {

enum Command : quint8 {
    // motor control
    CtrlStopAll = 0x01, ///< broadcast: every motor of a group, or every motor, stops; never answered
    CtrlStop = 0x02,
    CtrlMoveTo = 0x03,
    CtrlMoveOf = 0x04,
    CtrlMove = 0x05,
    CtrlWink = 0x06,
    GetMotorPosition = 0x0C,
    PostMotorPosition = 0x0D,
    // motor settings
    SetMotorLimits = 0x11,
    SetMotorDirection = 0x12,
    GetMotorRollingSpeed = 0x13,
    SetMotorRollingSpeed = 0x14,
    SetMotorIP = 0x15,
    GetMotorSoftStartStop = 0x19,
    SetMotorSoftStartStop = 0x1A,
    SetFactoryDefault = 0x1F,
    GetMotorLimits = 0x21,
    GetMotorDirection = 0x22,
    PostMotorRollingSpeed = 0x23,
    GetMotorIP = 0x25,
    PostMotorSoftStartStop = 0x29,
    PostMotorLimits = 0x31,
    PostMotorDirection = 0x32,
    PostMotorIP = 0x35,
    // motor diagnostics
    DiagGetTotalMoveCount = 0x26,
    DiagGetTotalRevCount = 0x27,
    DiagGetThermalCount = 0x28,
    DiagGetObstacleCount = 0x2A,
    DiagGetPowerCount = 0x2B,
    DiagGetResetCount = 0x2C,
    DiagGetEncoderErrors = 0x2D,
    DiagPostTotalMoveCount = 0x36,
    DiagPostTotalRevCount = 0x37,
    DiagPostThermalCount = 0x38,
    DiagPostObstacleCount = 0x3A,
    DiagPostPowerCount = 0x3B,
    DiagPostResetCount = 0x3C,
    DiagPostEncoderErrors = 0x3D,
    // node management and discovery
    GetNodeAddr = 0x40,
    GetGroupAddr = 0x41,
    GetNetworkConfig = 0x42,
    GetNetworkStat = 0x48,
    GetNetworkErrorStat = 0x49,
    GetNodeSerialNumber = 0x4C,
    ClearDiscovery = 0x50,
    SetGroupAddr = 0x52,
    SetNodeDiscovery = 0x53,
    SetNodeLabel = 0x55,
    SetDeafMode = 0x56,
    SetNetworkStat = 0x59,
    PostNodeAddr = 0x60,
    PostGroupAddr = 0x61,
    PostNetworkConfig = 0x62,
    GetNodeLabel = 0x45,
    PostNodeLabel = 0x65,
    PostNetworkStat = 0x68,
    PostNetworkErrorStat = 0x69,
    PostNodeSerialNumber = 0x6C,
    Nack = 0x6F,
    // firmware update in the application (standard update)
    FwUpdateBegin = 0x70,
    PostFwUpdate = 0x71,
    FwUpdateBlock = 0x72,
    FwUpdateEnd = 0x73,
    GetNodeAppVersion = 0x74,
    PostNodeAppVersion = 0x75,
    // motor bootloader (answered in bootloader mode; enter also from the application)
    BlEnter = 0x78,
    BlErase = 0x79,
    BlWrite = 0x7A,
    BlVerify = 0x7B,
    BlExit = 0x7C,
    BlPostStatus = 0x7D,
    Ack = 0x7F
};

/// Status byte of a negative acknowledgement (command 0x6F).
enum NackStatus : quint8 {
    NackDataOutOfRange = 0x01,
    NackUnknownMessage = 0x10,
    NackMessageLength = 0x11,
    NackBusy = 0x20,
    NackNodeLocked = 0x21,
    NackWrongPosition = 0x22,
    NackEndLimitsNotSet = 0x23,
    NackIpNotDefined = 0x24,
    NackObstacle = 0x25,
    NackWrongKind = 0x26,      ///< firmware for another kind of node
    NackBlockChecksum = 0x27,  ///< a firmware block's checksum disagrees
    NackImageCheck = 0x28,     ///< the received image fails its digest
    NackNotUpdating = 0x29,    ///< a block or end without a begun update
    NackUnknown = 0xFF
};

/// The table of every command, keyed by command code.
const QHash<quint8, VRNCmdInfo>& cmds();

/// The description of one command; an invalid `VRNCmdInfo` when unknown.
VRNCmdInfo cmdInfo(quint8 cmd);

/// The status of a negative acknowledgement; `NackUnknown` when `message`
/// is not a valid 0x6F frame.
NackStatus getNackReply(const VRNMessage& message);

/// Text of a status, as shown to the user ("data out of range").
QString toString(NackStatus status);

/// Whether `reply` answers `request` by its command: the request's reply
/// code; an ACK or a NACK naming the request's code (a NACK only for a
/// request to one node); for the indexed reads (group slots, intermediate
/// positions) the index the request named. Addresses are not looked at.
bool answers(const VRNMessage& request, const VRNMessage& reply);
/// The same from the request's fields: its code, whether it goes to one
/// node, and its first payload byte (-1 without payload).
bool answers(quint8 requestCmd, bool toOneNode, int firstByte, const VRNMessage& reply);

} // namespace DTS

/// Argument types of the motor commands.
namespace DTSMotor {

enum MoveToFunction : quint8 {
    MoveToDownLimit = 0,
    MoveToUpLimit = 1,
    MoveToIP = 2,       ///< value: intermediate position index
    MoveToPulse = 3,    ///< value: position in pulses
    MoveToPercent = 4   ///< value: position in percent
};
enum MoveOfFunction : quint8 {
    MoveOfNextIPDown = 0,
    MoveOfNextIPUp = 1,
    MoveOfPulsesDown = 2,  ///< value: pulses
    MoveOfPulsesUp = 3     ///< value: pulses
};
enum MoveFunction : quint8 { MoveDown = 0, MoveUp = 1 };
enum SpeedType : quint8 { SpeedUp = 0, SpeedDown = 1, SpeedSlow = 2 };
enum TurnDirection : quint8 { DirectionStandard = 0, DirectionReversed = 1 };
enum LimitFunction : quint8 {
    LimitAtCurrent = 0, ///< the limit takes the current position
    LimitSetValue = 1,  ///< the limit takes the given value
    LimitAdjust = 2     ///< the limit moves by the given signed 16-bit delta
};
enum Limit : quint8 { LimitDown = 0, LimitUp = 1 };
enum FactoryDefFunction : quint8 {
    FactoryAll = 0x00,
    FactoryGroups = 0x01,
    FactoryLabel = 0x02,
    FactoryEndLimits = 0x11,
    FactoryDirection = 0x12,
    FactoryRollingSpeed = 0x13,
    FactorySoftStartStop = 0x14,
    FactoryIPs = 0x15
};
enum IPFunction : quint8 {
    IPDelete = 0,
    IPAtCurrent = 1,
    IPSetPulse = 2,   ///< value: position in pulses
    IPSetPercent = 3  ///< value: position in percent
};
enum SoftStartStopFunction : quint8 { SoftDisable = 0, SoftEnable = 1, SoftSetValue = 2 };
enum SoftStartStopRamps : quint8 { RampsBoth = 0, RampStart = 1, RampStop = 2 };

} // namespace DTSMotor

#endif // DTS_H
