#include "dtsmotorproxy.h"
#include "dtsmotorpayload_p.h"

#include "vrndatawriter.h"

namespace {
constexpr quint8 Unset8 = 0xFF;
constexpr quint8 MaxPercent = 100;
constexpr quint8 MinSpeed = 6;
constexpr quint8 MaxSpeed = 28;

bool isPercentOrUnset(quint8 v) { return v <= MaxPercent || v == Unset8; }
bool isFlag(quint8 v) { return v <= 1; }
bool isSpeed(quint8 v) { return v >= MinSpeed && v <= MaxSpeed; }
} // namespace

DTSMotorProxy::DTSMotorProxy(VRN::Addr addr, Bus* bus, QObject* parent)
    : DTSStdProxy(addr, bus, parent)
{
}

DTSMotorProxy::~DTSMotorProxy() = default;

BusPendingCall DTSMotorProxy::ctrlWink()
{
    return request(DTS::CtrlWink);
}

BusPendingCall DTSMotorProxy::ctrlMoveTo(DTSMotor::MoveToFunction function, unsigned short value,
                                         unsigned char reserved)
{
    return request(DTS::CtrlMoveTo, DTSMotorPayload::move(function, value, reserved));
}

BusPendingCall DTSMotorProxy::ctrlMoveOf(DTSMotor::MoveOfFunction function, unsigned short value,
                                         unsigned char reserved)
{
    return request(DTS::CtrlMoveOf, DTSMotorPayload::move(function, value, reserved));
}

BusPendingCall DTSMotorProxy::ctrlMove(DTSMotor::MoveFunction direction, unsigned char duration,
                                       DTSMotor::SpeedType speed)
{
    return request(DTS::CtrlMove, [&](VRNDataWriter& w) {
        w.writeUint8(direction).writeUint8(duration).writeUint8(speed);
    });
}

BusPendingCall DTSMotorProxy::ctrlStop(unsigned char reserved)
{
    return request(DTS::CtrlStop, DTSMotorPayload::stop(reserved));
}

BusPendingCall DTSMotorProxy::getMotorDirection()
{
    return request(DTS::GetMotorDirection);
}

BusPendingCall DTSMotorProxy::setMotorDirection(DTSMotor::TurnDirection direction)
{
    return request(DTS::SetMotorDirection, [&](VRNDataWriter& w) { w.writeUint8(direction); });
}

BusPendingCall DTSMotorProxy::getMotorLimits()
{
    return request(DTS::GetMotorLimits);
}

BusPendingCall DTSMotorProxy::setMotorLimits(DTSMotor::LimitFunction function, DTSMotor::Limit limit,
                                             unsigned short value)
{
    return request(DTS::SetMotorLimits, [&](VRNDataWriter& w) {
        w.writeUint8(function).writeUint8(limit).writeUint16(value);
    });
}

BusPendingCall DTSMotorProxy::getMotorPosition()
{
    return request(DTS::GetMotorPosition);
}

BusPendingCall DTSMotorProxy::getMotorRollingSpeed()
{
    return request(DTS::GetMotorRollingSpeed);
}

BusPendingCall DTSMotorProxy::setMotorRollingSpeed(unsigned char up, unsigned char down, unsigned char slow)
{
    return request(DTS::SetMotorRollingSpeed, [&](VRNDataWriter& w) {
        w.writeUint8(up).writeUint8(down).writeUint8(slow);
    });
}

BusPendingCall DTSMotorProxy::getMotorSoftStartStop()
{
    return request(DTS::GetMotorSoftStartStop);
}

BusPendingCall DTSMotorProxy::setMotorSoftStartStop(DTSMotor::SoftStartStopFunction function,
                                                    DTSMotor::SoftStartStopRamps ramps, unsigned char value)
{
    return request(DTS::SetMotorSoftStartStop, [&](VRNDataWriter& w) {
        w.writeUint8(function).writeUint8(ramps).writeUint8(value);
    });
}

BusPendingCall DTSMotorProxy::setFactoryDefault(DTSMotor::FactoryDefFunction function)
{
    return request(DTS::SetFactoryDefault, [&](VRNDataWriter& w) { w.writeUint8(function); });
}

BusPendingCall DTSMotorProxy::getMotorIP(unsigned char index)
{
    return request(DTS::GetMotorIP, [&](VRNDataWriter& w) { w.writeUint8(index); });
}

BusPendingCall DTSMotorProxy::setMotorIP(DTSMotor::IPFunction function, unsigned char index, unsigned short value)
{
    return request(DTS::SetMotorIP, [&](VRNDataWriter& w) {
        w.writeUint8(function).writeUint8(index).writeUint16(value);
    });
}

bool DTSMotorProxy::getMotorDirectionReply(const BusMessage& msg, DTSMotor::TurnDirection& direction) const
{
    return parseReply(msg, DTS::PostMotorDirection, [](VRNDataReader& r, DTSMotor::TurnDirection& d) {
        const quint8 v = r.readUint8();
        d = DTSMotor::TurnDirection(v);
        return v <= DTSMotor::DirectionReversed;
    }, direction);
}

bool DTSMotorProxy::getMotorLimitsReply(const BusMessage& msg, unsigned short& up, unsigned short& down) const
{
    return parseReply(msg, DTS::PostMotorLimits, [](VRNDataReader& r, unsigned short& u, unsigned short& d) {
        u = r.readUint16();
        d = r.readUint16();
        return true;
    }, up, down);
}

bool DTSMotorProxy::getMotorPositionReply(const BusMessage& msg, unsigned short& pulse, unsigned char& pct,
                                          unsigned char& tilt, unsigned char& ip) const
{
    return parseReply(msg, DTS::PostMotorPosition,
                      [](VRNDataReader& r, unsigned short& pu, unsigned char& pc, unsigned char& t, unsigned char& i) {
        pu = r.readUint16();
        pc = r.readUint8();
        t = r.readUint8();
        i = r.readUint8();
        return isPercentOrUnset(pc) && isPercentOrUnset(t) && (i < IPCount || i == Unset8);
    }, pulse, pct, tilt, ip);
}

bool DTSMotorProxy::getMotorRollingSpeedReply(const BusMessage& msg, unsigned char& up, unsigned char& down,
                                              unsigned char& slow) const
{
    return parseReply(msg, DTS::PostMotorRollingSpeed,
                      [](VRNDataReader& r, unsigned char& u, unsigned char& d, unsigned char& s) {
        u = r.readUint8();
        d = r.readUint8();
        s = r.readUint8();
        return isSpeed(u) && isSpeed(d) && isSpeed(s);
    }, up, down, slow);
}

bool DTSMotorProxy::getMotorSoftStartStopReply(const BusMessage& msg, bool& startEnabled,
                                               unsigned char& startValue, bool& stopEnabled,
                                               unsigned char& stopValue) const
{
    return parseReply(msg, DTS::PostMotorSoftStartStop,
                      [](VRNDataReader& r, bool& startOn, unsigned char& start, bool& stopOn, unsigned char& stop) {
        const quint8 startFlag = r.readUint8();
        start = r.readUint8();
        const quint8 stopFlag = r.readUint8();
        stop = r.readUint8();
        startOn = startFlag;
        stopOn = stopFlag;
        return isFlag(startFlag) && isFlag(stopFlag) && start <= MaxPercent && stop <= MaxPercent;
    }, startEnabled, startValue, stopEnabled, stopValue);
}

bool DTSMotorProxy::getMotorIPReply(const BusMessage& msg, unsigned char& index, unsigned short& pulse,
                                    unsigned char& pct) const
{
    return parseReply(msg, DTS::PostMotorIP,
                      [](VRNDataReader& r, unsigned char& i, unsigned short& pu, unsigned char& pc) {
        i = r.readUint8();
        pu = r.readUint16();
        pc = r.readUint8();
        return i < IPCount && isPercentOrUnset(pc);
    }, index, pulse, pct);
}

BusPendingCall DTSMotorProxy::diagGetTotalMoveCount() { return request(DTS::DiagGetTotalMoveCount); }
BusPendingCall DTSMotorProxy::diagGetTotalRevCount() { return request(DTS::DiagGetTotalRevCount); }
BusPendingCall DTSMotorProxy::diagGetThermalCount() { return request(DTS::DiagGetThermalCount); }
BusPendingCall DTSMotorProxy::diagGetObstacleCount() { return request(DTS::DiagGetObstacleCount); }
BusPendingCall DTSMotorProxy::diagGetPowerCount() { return request(DTS::DiagGetPowerCount); }
BusPendingCall DTSMotorProxy::diagGetResetCount() { return request(DTS::DiagGetResetCount); }
BusPendingCall DTSMotorProxy::diagGetEncoderErrors() { return request(DTS::DiagGetEncoderErrors); }

bool DTSMotorProxy::readCounter(const BusMessage& msg, quint8 cmd, unsigned int& count) const
{
    return parseReply(msg, cmd, [](VRNDataReader& r, unsigned int& c) { c = r.readUint32(); return true; }, count);
}

bool DTSMotorProxy::readCounter(const BusMessage& msg, quint8 cmd, unsigned short& count) const
{
    return parseReply(msg, cmd, [](VRNDataReader& r, unsigned short& c) { c = r.readUint16(); return true; }, count);
}

bool DTSMotorProxy::readCounterPair(const BusMessage& msg, quint8 cmd, unsigned short& count,
                                    unsigned short& post) const
{
    return parseReply(msg, cmd, [](VRNDataReader& r, unsigned short& c, unsigned short& p) {
        c = r.readUint16();
        p = r.readUint16();
        return true;
    }, count, post);
}

bool DTSMotorProxy::diagGetTotalMoveCountReply(const BusMessage& msg, unsigned int& count) const
{
    return readCounter(msg, DTS::DiagPostTotalMoveCount, count);
}

bool DTSMotorProxy::diagGetTotalRevCountReply(const BusMessage& msg, unsigned int& count) const
{
    return readCounter(msg, DTS::DiagPostTotalRevCount, count);
}

bool DTSMotorProxy::diagGetThermalCountReply(const BusMessage& msg, unsigned short& count,
                                             unsigned short& postMoves) const
{
    return readCounterPair(msg, DTS::DiagPostThermalCount, count, postMoves);
}

bool DTSMotorProxy::diagGetObstacleCountReply(const BusMessage& msg, unsigned short& count,
                                              unsigned short& postMoves) const
{
    return readCounterPair(msg, DTS::DiagPostObstacleCount, count, postMoves);
}

bool DTSMotorProxy::diagGetPowerCountReply(const BusMessage& msg, unsigned short& count) const
{
    return readCounter(msg, DTS::DiagPostPowerCount, count);
}

bool DTSMotorProxy::diagGetResetCountReply(const BusMessage& msg, unsigned short& count) const
{
    return readCounter(msg, DTS::DiagPostResetCount, count);
}

bool DTSMotorProxy::diagGetEncoderErrorsReply(const BusMessage& msg, unsigned short& count) const
{
    return readCounter(msg, DTS::DiagPostEncoderErrors, count);
}
