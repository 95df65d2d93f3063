#include "simnode.h"
#include "simnode_p.h"

#include "vrndatawriter.h"

#include <QRandomGenerator>

#include <algorithm>
#include <cmath>

// The motor kinds (motor, LRU50 and the DC models): movement in simulated
// time, end limits, intermediate positions, direction, factory defaults and
// the life counters.

namespace {

// Motors turn this many pulses per revolution (speeds: see simdcmotor.cpp).
constexpr int PulsesPerRevolution = 100;
constexpr qint64 WinkUs = 2000000;

using SimReply::ack;
using SimReply::ackUnless;

} // namespace

double SimMotion::travelled(double t) const
{
    const double distance = std::abs(to - from);
    if (t <= 0)
        return 0;
    if (t >= durationS)
        return distance;
    if (t < accelS)
        return speed * t * t / (2 * accelS);
    const double untilStop = durationS - t;
    if (untilStop < decelS)
        return distance - speed * untilStop * untilStop / (2 * decelS);
    return speed * accelS / 2 + speed * (t - accelS);
}

// --- geometry -------------------------------------------------------------

bool SimNodePrivate::limitsSet() const
{
    return upLimit != SimNode::Unset16 && downLimit != SimNode::Unset16;
}
quint16 SimNodePrivate::lowLimit() const { return std::min(upLimit, downLimit); }
quint16 SimNodePrivate::highLimit() const { return std::max(upLimit, downLimit); }

quint8 SimNodePrivate::percentOf(quint16 pulses) const
{
    if (!limitsSet() || pulses == SimNode::Unset16)
        return SimNode::Unset8;
    const int span = int(downLimit) - int(upLimit);
    if (span == 0)
        return 0;
    // Rounded, so that a move to N % reads back as N % whatever the span.
    const int pct = int(std::lround((int(pulses) - int(upLimit)) * 100.0 / span));
    return quint8(std::clamp(pct, 0, 100));
}

quint16 SimNodePrivate::pulsesOf(quint8 percent) const
{
    return quint16(int(upLimit) + (int(downLimit) - int(upLimit)) * int(percent) / 100);
}

// "Down" is towards the down limit, whichever way the pulses count.
int SimNodePrivate::pulseSign(bool down) const
{
    const int towardsDown = downLimit >= upLimit ? 1 : -1;
    return down ? towardsDown : -towardsDown;
}

quint16 SimNodePrivate::clampToLimits(int pulses) const
{
    return quint16(std::clamp(pulses, int(lowLimit()), int(highLimit())));
}


void SimNodePrivate::travelTo(quint16 pulses, double speed)
{
    stopMotion();
    const bool down = (int(pulses) - int(position)) * pulseSign(true) > 0;
    SimMotion m;
    m.active = true;
    m.startUs = nowUs();
    m.from = position;
    m.to = pulses;
    // An obstacle between here and the target ends the move at the obstacle.
    if (obstacle != SimNode::Unset16 && obstacle != position
        && (int(obstacle) - m.from) * (m.to - int(obstacle)) >= 0) {
        m.to = obstacle;
        m.againstObstacle = true;
    }
    m.speed = speed > 0 ? speed : speedFor(down, false);
    m.accelS = softStartS();
    m.decelS = softStopS();
    const double distance = std::abs(m.to - m.from);
    const double inRamps = m.speed * (m.accelS + m.decelS) / 2;
    if (inRamps > distance && inRamps > 0) {  // a short move: the ramps share it
        m.accelS *= distance / inRamps;
        m.decelS *= distance / inRamps;
    }
    m.durationS = m.accelS + m.decelS + (distance - m.speed * (m.accelS + m.decelS) / 2) / m.speed;
    countMoveStart(m.startUs);
    motion = m;
    settle();
}

void SimNodePrivate::countMoveStart(qint64 startUs)
{
    diagnostics.totalMoveCount++;
    diagnostics.postThermalMove++;
    diagnostics.postObstacleMove++;
    recentMoveStartsUs.append(startUs);
    while (!recentMoveStartsUs.isEmpty()
           && startUs - recentMoveStartsUs.first() >= qint64(SimNode::ThermalWindowMs) * 1000)
        recentMoveStartsUs.removeFirst();
    if (recentMoveStartsUs.size() >= SimNode::ThermalMoves) {
        diagnostics.thermalCount++;
        diagnostics.postThermalMove = 0;
        recentMoveStartsUs.clear();  // the motor has cooled down before it counts again
    }
    if (encoderFaultEvery > 0 && diagnostics.totalMoveCount % quint32(encoderFaultEvery) == 0)
        diagnostics.encoderErrCount++;
}

void SimNodePrivate::settle() const
{
    if (!motion.active)
        return;
    const double t = double(nowUs() - motion.startUs) / 1e6;
    if (t >= motion.durationS) {
        position = quint16(motion.to);
        endMotion();
        return;
    }
    const int sign = motion.to >= motion.from ? 1 : -1;
    position = quint16(motion.from + sign * int(std::lround(motion.travelled(t))));
}

int SimNodePrivate::stopAll(const VRNMessage& rq)
{
    if (!SimNode::hasMotor(kind) || !DTS::cmdInfo(rq.cmd()).acceptsPayloadSize(rq.payload().size()))
        return NoAnswer;
    const quint32 group = VRNDataReader(rq.payload()).readUint24();
    if (group == VRN::BroadcastNumber || (group != 0 && std::find(groups.begin(), groups.end(), group) != groups.end()))
        stopMotion();
    return NoAnswer;
}

void SimNodePrivate::stopMotion()
{
    settle();
    if (!motion.active)
        return;
    motion.to = position;
    motion.againstObstacle = false;
    endMotion();
}

void SimNodePrivate::endMotion() const
{
    const int distance = std::abs(int(position) - motion.from);
    diagnostics.totalRevCount += quint32((distance + PulsesPerRevolution / 2) / PulsesPerRevolution);
    if (motion.againstObstacle) {
        diagnostics.obstacleCount++;
        diagnostics.postObstacleMove = 0;
    }
    motion.active = false;
}

quint8 SimNodePrivate::ipIndexAtPosition() const
{
    for (int i = 0; i < SimNode::IpSlots; ++i) {
        if (ips[i] == position)
            return quint8(i);
    }
    return SimNode::Unset8;
}


// --- requests ---------------------------------------------------------------

int SimNodePrivate::executeMotorCommand(const VRNMessage& rq, VRNMessage& out)
{
    VRNDataReader in(rq.payload());
    VRNDataWriter w(out);
    switch (rq.cmd()) {
    case DTS::CtrlStop:
        stopMotion();
        return ack(out);
    case DTS::CtrlWink:
        winkUntilUs = nowUs() + WinkUs;
        ++winkCount;
        return ack(out);
    case DTS::CtrlMoveTo:
        return ackUnless(moveTo(rq), out);
    case DTS::CtrlMoveOf:
        return ackUnless(moveOf(rq), out);
    case DTS::CtrlMove:
        return ackUnless(move(rq), out);
    case DTS::GetMotorPosition:
        w.writeUint16(position).writeUint8(percentOf(position)).writeUint8(SimNode::Unset8)
            .writeUint8(ipIndexAtPosition());
        return Answered;
    case DTS::SetMotorLimits:
        return ackUnless(setLimits(rq), out);
    case DTS::SetMotorDirection: {
        const quint8 dir = in.readUint8();
        if (dir > DTSMotor::DirectionReversed)
            return DTS::NackDataOutOfRange;
        direction = dir;
        return ack(out);
    }
    case DTS::SetMotorIP:
        return ackUnless(setIp(rq), out);
    case DTS::SetFactoryDefault: {
        const quint8 function = in.readUint8();
        switch (function) {
        case DTSMotor::FactoryAll: case DTSMotor::FactoryGroups: case DTSMotor::FactoryLabel:
        case DTSMotor::FactoryEndLimits: case DTSMotor::FactoryDirection:
        case DTSMotor::FactoryRollingSpeed: case DTSMotor::FactorySoftStartStop:
        case DTSMotor::FactoryIPs:
            factoryDefault(function);
            return ack(out);
        }
        return DTS::NackDataOutOfRange;
    }
    case DTS::GetMotorLimits:
        w.writeUint16(upLimit).writeUint16(downLimit);
        return Answered;
    case DTS::GetMotorDirection:
        w.writeUint8(direction);
        return Answered;
    case DTS::GetMotorIP: {
        const quint8 index = in.readUint8();
        if (index >= SimNode::IpSlots)
            return DTS::NackDataOutOfRange;
        w.writeUint8(index).writeUint16(ips[index]).writeUint8(percentOf(ips[index]));
        return Answered;
    }
    }
    return SimReply::isDCCommand(rq.cmd()) ? executeDCCommand(rq, out) : executeDiagnostic(rq.cmd(), out);
}

int SimNodePrivate::executeDiagnostic(quint8 cmd, VRNMessage& out) const
{
    VRNDataWriter w(out);
    const SimNode::Diagnostics& c = diagnostics;
    switch (cmd) {
    case DTS::DiagGetTotalMoveCount: w.writeUint32(c.totalMoveCount); break;
    case DTS::DiagGetTotalRevCount: w.writeUint32(c.totalRevCount); break;
    case DTS::DiagGetThermalCount: w.writeUint16(c.thermalCount).writeUint16(c.postThermalMove); break;
    case DTS::DiagGetObstacleCount: w.writeUint16(c.obstacleCount).writeUint16(c.postObstacleMove); break;
    case DTS::DiagGetPowerCount: w.writeUint16(c.powerCount); break;
    case DTS::DiagGetResetCount: w.writeUint16(c.resetCount); break;
    case DTS::DiagGetEncoderErrors: w.writeUint16(c.encoderErrCount); break;
    default: return DTS::NackUnknownMessage;
    }
    return Answered;
}

// The motor helpers return a NACK status, 0 when the request was carried out.

int SimNodePrivate::moveTo(const VRNMessage& rq)
{
    VRNDataReader in(rq.payload());
    const quint8 function = in.readUint8();
    const quint16 value = in.readUint16();
    if (function > DTSMotor::MoveToPercent)
        return DTS::NackDataOutOfRange;
    if (!limitsSet())
        return DTS::NackEndLimitsNotSet;
    quint16 target = position;
    switch (function) {
    case DTSMotor::MoveToDownLimit: target = downLimit; break;
    case DTSMotor::MoveToUpLimit: target = upLimit; break;
    case DTSMotor::MoveToIP:
        if (value >= SimNode::IpSlots)
            return DTS::NackDataOutOfRange;
        if (ips[value] == SimNode::Unset16)
            return DTS::NackIpNotDefined;
        target = ips[value];
        break;
    case DTSMotor::MoveToPulse:
        if (value < lowLimit() || value > highLimit())
            return DTS::NackDataOutOfRange;
        target = value;
        break;
    case DTSMotor::MoveToPercent:
        if (value > 100)
            return DTS::NackDataOutOfRange;
        target = pulsesOf(quint8(value));
        break;
    }
    travelTo(target);
    return 0;
}

int SimNodePrivate::moveOf(const VRNMessage& rq)
{
    VRNDataReader in(rq.payload());
    const quint8 function = in.readUint8();
    const quint16 value = in.readUint16();
    if (function > DTSMotor::MoveOfPulsesUp)
        return DTS::NackDataOutOfRange;
    if (!limitsSet())
        return DTS::NackEndLimitsNotSet;
    if (function == DTSMotor::MoveOfPulsesDown || function == DTSMotor::MoveOfPulsesUp) {
        const int sign = pulseSign(function == DTSMotor::MoveOfPulsesDown);
        travelTo(clampToLimits(int(position) + sign * int(value)));
        return 0;
    }
    const int sign = pulseSign(function == DTSMotor::MoveOfNextIPDown);
    int best = -1;
    for (quint16 ip : ips) {
        if (ip == SimNode::Unset16 || (int(ip) - int(position)) * sign <= 0)
            continue;
        if (best < 0 || std::abs(int(ip) - int(position)) < std::abs(best - int(position)))
            best = ip;
    }
    if (best < 0)
        return DTS::NackIpNotDefined;
    travelTo(quint16(best));
    return 0;
}

int SimNodePrivate::move(const VRNMessage& rq)
{
    VRNDataReader in(rq.payload());
    const quint8 direction = in.readUint8();
    const quint8 duration = in.readUint8();
    const quint8 speedType = in.readUint8();
    if (direction > DTSMotor::MoveUp || speedType > DTSMotor::SpeedSlow)
        return DTS::NackDataOutOfRange;
    if (!limitsSet())
        return DTS::NackEndLimitsNotSet;
    const bool down = direction == DTSMotor::MoveDown;
    const double speed = speedType == DTSMotor::SpeedSlow ? speedFor(down, true)
                                                           : speedFor(speedType == DTSMotor::SpeedDown, false);
    const int distance = int(std::lround(speed * duration / 100.0));
    travelTo(clampToLimits(int(position) + pulseSign(down) * distance), speed);
    return 0;
}

int SimNodePrivate::setLimits(const VRNMessage& rq)
{
    VRNDataReader in(rq.payload());
    const quint8 function = in.readUint8();
    const quint8 which = in.readUint8();
    const quint16 value = in.readUint16();
    if (function > DTSMotor::LimitAdjust || which > DTSMotor::LimitUp)
        return DTS::NackDataOutOfRange;
    quint16& limit = which == DTSMotor::LimitUp ? upLimit : downLimit;
    int result = value;
    if (function == DTSMotor::LimitAtCurrent) {
        result = position;
    } else if (function == DTSMotor::LimitAdjust) {
        if (limit == SimNode::Unset16)
            return DTS::NackEndLimitsNotSet;
        result = int(limit) + int(qint16(value));
    }
    if (result < 0 || result >= SimNode::Unset16)
        return DTS::NackDataOutOfRange;
    limit = quint16(result);
    return 0;
}

int SimNodePrivate::setIp(const VRNMessage& rq)
{
    VRNDataReader in(rq.payload());
    const quint8 function = in.readUint8();
    const quint8 index = in.readUint8();
    const quint16 value = in.readUint16();
    if (function > DTSMotor::IPSetPercent || index >= SimNode::IpSlots)
        return DTS::NackDataOutOfRange;
    if (function == DTSMotor::IPDelete) {
        ips[index] = SimNode::Unset16;
        return 0;
    }
    if (!limitsSet())
        return DTS::NackEndLimitsNotSet;
    switch (function) {
    case DTSMotor::IPAtCurrent:
        ips[index] = position;
        break;
    case DTSMotor::IPSetPulse:
        if (value < lowLimit() || value > highLimit())
            return DTS::NackDataOutOfRange;
        ips[index] = value;
        break;
    case DTSMotor::IPSetPercent:
        if (value > 100)
            return DTS::NackDataOutOfRange;
        ips[index] = pulsesOf(quint8(value));
        break;
    }
    return 0;
}

void SimNodePrivate::factoryDefault(quint8 function)
{
    const bool all = function == DTSMotor::FactoryAll;
    if (all || function == DTSMotor::FactoryGroups)
        groups.fill(0);
    if (all || function == DTSMotor::FactoryLabel)
        label.clear();
    if (all || function == DTSMotor::FactoryEndLimits)
        upLimit = downLimit = SimNode::Unset16;
    if (all || function == DTSMotor::FactoryDirection)
        direction = DTSMotor::DirectionStandard;
    resetDC(function);
    if (all || function == DTSMotor::FactoryIPs)
        ips.fill(SimNode::Unset16);
}

void SimNodePrivate::randomizeMotor(QRandomGenerator& rng)
{
    upLimit = quint16(rng.bounded(0, 200));
    downLimit = quint16(upLimit + rng.bounded(2000, 10000));
    position = quint16(rng.bounded(int(upLimit), int(downLimit) + 1));
    direction = rng.bounded(5) == 0 ? DTSMotor::DirectionReversed : DTSMotor::DirectionStandard;
    const int ipCount = rng.bounded(4);
    for (int i = 0; i < ipCount; ++i)
        ips[i] = quint16(rng.bounded(int(upLimit), int(downLimit) + 1));
    if (SimNode::isDC(kind))
        randomizeDC(rng);
    diagnostics.totalMoveCount = rng.bounded(50000u);
    diagnostics.totalRevCount = diagnostics.totalMoveCount * 20 + rng.bounded(1000u);
    diagnostics.thermalCount = quint16(rng.bounded(5));
    diagnostics.postThermalMove = quint16(rng.bounded(500));
    diagnostics.obstacleCount = quint16(rng.bounded(20));
    diagnostics.postObstacleMove = quint16(rng.bounded(500));
    diagnostics.powerCount = quint16(rng.bounded(100));
    diagnostics.resetCount = quint16(rng.bounded(10));
}

// --- SimNode: motor state -----------------------------------------------------

quint8 SimNode::direction() const { return d_func()->direction; }
void SimNode::setDirection(quint8 direction) { d_func()->direction = direction; }
quint16 SimNode::upLimit() const { return d_func()->upLimit; }
quint16 SimNode::downLimit() const { return d_func()->downLimit; }
void SimNode::setLimits(quint16 up, quint16 down)
{
    Q_D(SimNode);
    d->upLimit = up;
    d->downLimit = down;
}
bool SimNode::limitsSet() const { return d_func()->limitsSet(); }
quint16 SimNode::position() const
{
    Q_D(const SimNode);
    d->settle();
    return d->position;
}
void SimNode::setPosition(quint16 pulses)
{
    Q_D(SimNode);
    d->motion.active = false;
    d->position = pulses;
}
quint8 SimNode::positionPercent() const { return d_func()->percentOf(position()); }
bool SimNode::isMoving() const
{
    Q_D(const SimNode);
    d->settle();
    return d->motion.active;
}
quint16 SimNode::moveTarget() const
{
    Q_D(const SimNode);
    d->settle();
    return d->motion.active ? quint16(d->motion.to) : d->position;
}
quint16 SimNode::obstacle() const { return d_func()->obstacle; }
void SimNode::setObstacle(quint16 pulses) { d_func()->obstacle = pulses; }
bool SimNode::isWinking() const
{
    Q_D(const SimNode);
    return d->winkUntilUs >= 0 && d->nowUs() < d->winkUntilUs;
}
quint32 SimNode::winkCount() const { return d_func()->winkCount; }
const SimClock* SimNode::clock() const { return d_func()->clock; }
SimClock* SimNode::ownClock() { return &d_func()->ownClock; }
void SimNode::setClock(const SimClock* clock)
{
    Q_D(SimNode);
    d->settle();
    d->motion.active = false;
    d->clock = clock ? clock : &d->ownClock;
}

SimNode::MotorIp SimNode::ip(int index) const
{
    Q_D(const SimNode);
    MotorIp ip;
    if (index >= 0 && index < IpSlots) {
        ip.pulse = d->ips[index];
        ip.pct = d->percentOf(ip.pulse);
    }
    return ip;
}
void SimNode::setIp(int index, quint16 pulses)
{
    if (index >= 0 && index < IpSlots)
        d_func()->ips[index] = pulses;
}

SimNode::Diagnostics SimNode::diagnostics() const
{
    Q_D(const SimNode);
    d->settle();
    return d->diagnostics;
}
void SimNode::setDiagnostics(const Diagnostics& diagnostics) { d_func()->diagnostics = diagnostics; }

void SimNode::powerCycle()
{
    Q_D(SimNode);
    d->stopMotion();
    d->diagnostics.powerCount++;
}

void SimNode::restart()
{
    Q_D(SimNode);
    d->stopMotion();
    d->diagnostics.resetCount++;
}

void SimNode::setEncoderFault(int everyMoves) { d_func()->encoderFaultEvery = qMax(0, everyMoves); }
