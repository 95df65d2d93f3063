#include "dts.h"
#include "vrnmessage.h"

#include <QCoreApplication>

namespace DTS {

namespace {
QHash<quint8, VRNCmdInfo> buildTable()
{
    const VRNCmdInfo::Kind Rq = VRNCmdInfo::Request;
    const VRNCmdInfo::Kind Rp = VRNCmdInfo::Reply;
    const VRNCmdInfo rows[] = {
        // code, name, kind, reply, min payload, max payload
        {CtrlStopAll, "CTRL_STOP_ALL", Rq, 0, 3, 3},
        {CtrlStop, "CTRL_STOP", Rq, Ack, 1, 1},
        {CtrlMoveTo, "CTRL_MOVETO", Rq, Ack, 4, 4},
        {CtrlMoveOf, "CTRL_MOVEOF", Rq, Ack, 4, 4},
        {CtrlMove, "CTRL_MOVE", Rq, Ack, 3, 3},
        {CtrlWink, "CTRL_WINK", Rq, Ack, 0, 0},
        {GetMotorPosition, "GET_MOTOR_POSITION", Rq, PostMotorPosition, 0, 0},
        {PostMotorPosition, "POST_MOTOR_POSITION", Rp, 0, 5, 5},
        {SetMotorLimits, "SET_MOTOR_LIMITS", Rq, Ack, 4, 4},
        {SetMotorDirection, "SET_MOTOR_DIRECTION", Rq, Ack, 1, 1},
        {GetMotorRollingSpeed, "GET_MOTOR_ROLLING_SPEED", Rq, PostMotorRollingSpeed, 0, 0},
        {SetMotorRollingSpeed, "SET_MOTOR_ROLLING_SPEED", Rq, Ack, 3, 3},
        {SetMotorIP, "SET_MOTOR_IP", Rq, Ack, 4, 4},
        {GetMotorSoftStartStop, "GET_MOTOR_SOFT_START_STOP", Rq, PostMotorSoftStartStop, 0, 0},
        {SetMotorSoftStartStop, "SET_MOTOR_SOFT_START_STOP", Rq, Ack, 3, 3},
        {SetFactoryDefault, "SET_FACTORY_DEFAULT", Rq, Ack, 1, 1},
        {GetMotorLimits, "GET_MOTOR_LIMITS", Rq, PostMotorLimits, 0, 0},
        {GetMotorDirection, "GET_MOTOR_DIRECTION", Rq, PostMotorDirection, 0, 0},
        {PostMotorRollingSpeed, "POST_MOTOR_ROLLING_SPEED", Rp, 0, 3, 3},
        {GetMotorIP, "GET_MOTOR_IP", Rq, PostMotorIP, 1, 1},
        {PostMotorSoftStartStop, "POST_MOTOR_SOFT_START_STOP", Rp, 0, 4, 4},
        {PostMotorLimits, "POST_MOTOR_LIMITS", Rp, 0, 4, 4},
        {PostMotorDirection, "POST_MOTOR_DIRECTION", Rp, 0, 1, 1},
        {PostMotorIP, "POST_MOTOR_IP", Rp, 0, 4, 4},
        {DiagGetTotalMoveCount, "DIAG_GET_TOTAL_MOVE_COUNT", Rq, DiagPostTotalMoveCount, 0, 0},
        {DiagGetTotalRevCount, "DIAG_GET_TOTAL_REV_COUNT", Rq, DiagPostTotalRevCount, 0, 0},
        {DiagGetThermalCount, "DIAG_GET_THERMAL_COUNT", Rq, DiagPostThermalCount, 0, 0},
        {DiagGetObstacleCount, "DIAG_GET_OBSTACLE_COUNT", Rq, DiagPostObstacleCount, 0, 0},
        {DiagGetPowerCount, "DIAG_GET_POWER_COUNT", Rq, DiagPostPowerCount, 0, 0},
        {DiagGetResetCount, "DIAG_GET_RESET_COUNT", Rq, DiagPostResetCount, 0, 0},
        {DiagGetEncoderErrors, "DIAG_GET_ENCODER_ERRORS", Rq, DiagPostEncoderErrors, 0, 0},
        {DiagPostTotalMoveCount, "DIAG_POST_TOTAL_MOVE_COUNT", Rp, 0, 4, 4},
        {DiagPostTotalRevCount, "DIAG_POST_TOTAL_REV_COUNT", Rp, 0, 4, 4},
        {DiagPostThermalCount, "DIAG_POST_THERMAL_COUNT", Rp, 0, 4, 4},
        {DiagPostObstacleCount, "DIAG_POST_OBSTACLE_COUNT", Rp, 0, 4, 4},
        {DiagPostPowerCount, "DIAG_POST_POWER_COUNT", Rp, 0, 2, 2},
        {DiagPostResetCount, "DIAG_POST_RESET_COUNT", Rp, 0, 2, 2},
        {DiagPostEncoderErrors, "DIAG_POST_ENCODER_ERRORS", Rp, 0, 2, 2},
        {GetNodeAddr, "GET_NODE_ADDR", Rq, PostNodeAddr, 0, 0},
        {GetGroupAddr, "GET_GROUP_ADDR", Rq, PostGroupAddr, 1, 1},
        {GetNetworkConfig, "GET_NETWORK_CONFIG", Rq, PostNetworkConfig, 0, 0},
        {GetNodeLabel, "GET_NODE_LABEL", Rq, PostNodeLabel, 0, 0},
        {GetNetworkStat, "GET_NETWORK_STAT", Rq, PostNetworkStat, 0, 0},
        {GetNetworkErrorStat, "GET_NETWORK_ERROR_STAT", Rq, PostNetworkErrorStat, 0, 0},
        {GetNodeSerialNumber, "GET_NODE_SERIAL_NUMBER", Rq, PostNodeSerialNumber, 0, 0},
        {ClearDiscovery, "CLEAR_DISCOVERY", Rq, Ack, 0, 0},
        {SetGroupAddr, "SET_GROUP_ADDR", Rq, Ack, 4, 4},
        {SetNodeDiscovery, "SET_NODE_DISCOVERY", Rq, Ack, 1, 1},
        {SetNodeLabel, "SET_NODE_LABEL", Rq, Ack, 0, 16},
        {SetDeafMode, "SET_DEAF_MODE", Rq, Ack, 6, 6},
        {SetNetworkStat, "SET_NETWORK_STAT", Rq, Ack, 2, 2},
        {PostNodeAddr, "POST_NODE_ADDR", Rp, 0, 0, 0},
        {PostGroupAddr, "POST_GROUP_ADDR", Rp, 0, 4, 4},
        {PostNetworkConfig, "POST_NETWORK_CONFIG", Rp, 0, 4, 4},
        {PostNodeLabel, "POST_NODE_LABEL", Rp, 0, 0, 16},
        {PostNetworkStat, "POST_NETWORK_STAT", Rp, 0, 17, 17},
        {PostNetworkErrorStat, "POST_NETWORK_ERROR_STAT", Rp, 0, 18, 18},
        {PostNodeSerialNumber, "POST_NODE_SERIAL_NUMBER", Rp, 0, 1, 12},
        {Nack, "NACK", Rp, 0, 2, 2},
        {FwUpdateBegin, "FW_UPDATE_BEGIN", Rq, PostFwUpdate, 19, 19},
        {PostFwUpdate, "POST_FW_UPDATE", Rp, 0, 4, 4},
        {FwUpdateBlock, "FW_UPDATE_BLOCK", Rq, PostFwUpdate, 5, 20},
        {FwUpdateEnd, "FW_UPDATE_END", Rq, Ack, 16, 16},
        {BlEnter, "BL_ENTER", Rq, BlPostStatus, 1, 1},
        {BlErase, "BL_ERASE", Rq, BlPostStatus, 9, 9},
        {BlWrite, "BL_WRITE", Rq, BlPostStatus, 6, 21},
        {BlVerify, "BL_VERIFY", Rq, BlPostStatus, 16, 16},
        {BlExit, "BL_EXIT", Rq, BlPostStatus, 0, 0},
        {BlPostStatus, "BL_POST_STATUS", Rp, 0, 4, 4},
        {GetNodeAppVersion, "GET_NODE_APP_VERSION", Rq, PostNodeAppVersion, 0, 0},
        {PostNodeAppVersion, "POST_NODE_APP_VERSION", Rp, 0, 5, 5},
        {Ack, "ACK", Rp, 0, 1, 1},
    };
    QHash<quint8, VRNCmdInfo> table;
    for (const VRNCmdInfo& row : rows) {
        Q_ASSERT(!table.contains(row.cmd()));
        table.insert(row.cmd(), row);
    }
    return table;
}
} // namespace

const QHash<quint8, VRNCmdInfo>& cmds()
{
    static const QHash<quint8, VRNCmdInfo> table = buildTable();
    return table;
}

VRNCmdInfo cmdInfo(quint8 cmd)
{
    return cmds().value(cmd);
}

NackStatus getNackReply(const VRNMessage& message)
{
    if (!message.isValid() || message.cmd() != Nack || message.payload().isEmpty())
        return NackUnknown;
    return NackStatus(quint8(message.payload().at(0)));
}

bool answers(quint8 requestCmd, bool toOneNode, int firstByte, const VRNMessage& reply)
{
    const VRNCmdInfo info = cmdInfo(requestCmd);
    if (!info.isRequest() || !reply.isValid())
        return false;
    const QByteArray& payload = reply.payloadRef();
    switch (reply.cmd()) {
    case Nack:
        return toOneNode && payload.size() == 2 && quint8(payload.at(1)) == requestCmd;
    case Ack:
        return info.reply() == Ack && toOneNode && payload.size() == 1 && quint8(payload.at(0)) == requestCmd;
    default:
        break;
    }
    if (reply.cmd() != info.reply())
        return false;
    if (requestCmd == GetGroupAddr || requestCmd == GetMotorIP)
        return firstByte >= 0 && !payload.isEmpty() && quint8(payload.at(0)) == firstByte;
    return true;
}

bool answers(const VRNMessage& request, const VRNMessage& reply)
{
    const QByteArray& asked = request.payloadRef();
    return answers(request.cmd(), request.dstType() == VRN::AddrNode, asked.isEmpty() ? -1 : quint8(asked.at(0)),
                   reply);
}

QString toString(NackStatus status)
{
    switch (status) {
    case NackDataOutOfRange: return QCoreApplication::translate("DTS", "data out of range");
    case NackUnknownMessage: return QCoreApplication::translate("DTS", "unknown message");
    case NackMessageLength: return QCoreApplication::translate("DTS", "message length error");
    case NackBusy: return QCoreApplication::translate("DTS", "busy");
    case NackNodeLocked: return QCoreApplication::translate("DTS", "node is locked");
    case NackWrongPosition: return QCoreApplication::translate("DTS", "wrong position");
    case NackEndLimitsNotSet: return QCoreApplication::translate("DTS", "end limits not set");
    case NackIpNotDefined: return QCoreApplication::translate("DTS", "intermediate position not defined");
    case NackObstacle: return QCoreApplication::translate("DTS", "obstacle detected");
    case NackWrongKind: return QCoreApplication::translate("DTS", "firmware for another kind of node");
    case NackBlockChecksum: return QCoreApplication::translate("DTS", "block checksum error");
    case NackImageCheck: return QCoreApplication::translate("DTS", "image check failed");
    case NackNotUpdating: return QCoreApplication::translate("DTS", "not updating");
    case NackUnknown: break;
    }
    return QCoreApplication::translate("DTS", "unknown status 0x%1")
        .arg(uint(status), 2, 16, QLatin1Char('0'));
}

} // namespace DTS
