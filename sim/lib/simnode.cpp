#include "simnode.h"
#include "simnode_p.h"

#include "dts.h"
#include "vrndatawriter.h"
#include "vrnmessage.h"

#include <QRandomGenerator>

#include <algorithm>

namespace {

// Motors turn this many pulses per revolution; CTRL_MOVE travels so many
// pulses per 10 ms at normal and at slow speed.
constexpr int PulsesPerRevolution = 100;
constexpr int PulsesPerTickNormal = 10;
constexpr int PulsesPerTickSlow = 2;
constexpr quint8 MinRollingSpeed = 6;
constexpr quint8 MaxRollingSpeed = 28;
constexpr quint8 MaxRampValue = 100;

const SimNode::RollingSpeed FactorySpeed{20, 20, 8};
const SimNode::SoftStartStop FactoryRamps{true, 30, true, 30};

struct KindInfo {
    SimNode::Kind kind;
    const char* name;
    VRN::NodeType type;
    const char* labelPrefix;
};
const KindInfo Kinds[] = {
    {SimNode::Std, "std", VRN::NodeKeypad, "Node"},
    {SimNode::Motor, "motor", VRN::NodeMotor, "Motor"},
    {SimNode::DCMotor, "dcmotor", VRN::NodeDCMotor, "DC motor"},
    {SimNode::LRU50, "lru50", VRN::NodeLRU50, "LRU50"},
    {SimNode::TX50DC, "tx50dc", VRN::NodeTX50DC, "TX50DC"},
    {SimNode::TX30, "tx30", VRN::NodeTX30, "TX30"},
    {SimNode::SettingTool, "settingtool", VRN::NodeSettingTool, "Setting tool"},
};

bool isToolType(VRN::NodeType type)
{
    return type == VRN::NodeTool || type == VRN::NodeSettingTool;
}

bool isMotorCommand(quint8 cmd) { return cmd < DTS::GetNodeAddr; }

bool isDCCommand(quint8 cmd)
{
    return cmd == DTS::GetMotorRollingSpeed || cmd == DTS::SetMotorRollingSpeed
        || cmd == DTS::GetMotorSoftStartStop || cmd == DTS::SetMotorSoftStartStop;
}

int ack(VRNMessage& out)
{
    out.setCmd(DTS::Ack);
    return SimNodePrivate::Answered;
}

// A helper's NACK status, or the acknowledgement when it returned 0.
int ackUnless(int status, VRNMessage& out)
{
    return status ? status : ack(out);
}

} // namespace

SimNodePrivate::SimNodePrivate(SimNode::Kind kind, quint32 number)
    : kind(kind), number(number & 0xFFFFFFu), nodeType(SimNode::defaultNodeType(kind))
{
    ips.fill(SimNode::Unset16);
    if (SimNode::isDC(kind)) {
        speed = FactorySpeed;
        ramps = FactoryRamps;
    }
    serial = QByteArray::number(number, 16).rightJustified(6, '0').toUpper();
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
    const int pct = (int(pulses) - int(upLimit)) * 100 / span;
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

void SimNodePrivate::travelTo(quint16 pulses)
{
    const int distance = std::abs(int(pulses) - int(position));
    diagnostics.totalMoveCount++;
    diagnostics.totalRevCount += quint32((distance + PulsesPerRevolution / 2) / PulsesPerRevolution);
    diagnostics.postThermalMove++;
    diagnostics.postObstacleMove++;
    position = pulses;
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

int SimNodePrivate::execute(const VRNMessage& rq, VRNMessage& out)
{
    const VRNCmdInfo info = DTS::cmdInfo(rq.cmd());
    const bool motorCmd = isMotorCommand(rq.cmd());
    if (!info.isRequest() || (motorCmd && !SimNode::hasMotor(kind))
        || (isDCCommand(rq.cmd()) && !SimNode::isDC(kind))) {
        errorStat.unknownMessage++;
        return DTS::NackUnknownMessage;
    }
    if (!info.acceptsPayloadSize(rq.payload().size())) {
        errorStat.msgLengthError++;
        return DTS::NackMessageLength;
    }
    if (info.reply() != DTS::Ack)
        out.setCmd(info.reply());
    return motorCmd ? executeMotorCommand(rq, out) : executeNodeCommand(rq, out);
}

int SimNodePrivate::executeNodeCommand(const VRNMessage& rq, VRNMessage& out)
{
    VRNDataReader in(rq.payload());
    VRNDataWriter w(out);
    switch (rq.cmd()) {
    case DTS::GetNodeAddr:
        return discoveryMark ? NoAnswer : Answered;
    case DTS::GetGroupAddr: {
        const quint8 index = in.readUint8();
        if (index >= SimNode::GroupSlots)
            return DTS::NackDataOutOfRange;
        w.writeUint8(index).writeUint24(groups[index]);
        return Answered;
    }
    case DTS::GetNetworkConfig:
        w.writeUint8(networkConfig.broadcastPriority).writeUint8(networkConfig.lowPriority)
            .writeUint8(networkConfig.maxRetry).writeUint8(networkConfig.slotCount);
        return Answered;
    case DTS::GetNodeLabel:
        w.writeBytes(label);
        return Answered;
    case DTS::GetNetworkStat:
        w.writeUint8(networkStat.maxRetryCount).writeUint32(networkStat.frameSent)
            .writeUint32(networkStat.frameSeen).writeUint32(networkStat.frameReceived)
            .writeUint16(networkStat.busyCount).writeUint8(networkStat.maxSlot)
            .writeUint8(networkStat.supervisionFailure);
        return Answered;
    case DTS::GetNetworkErrorStat:
        for (quint16 v : {errorStat.txFailures, errorStat.collisions, errorStat.rxDataError,
                          errorStat.unknownMessage, errorStat.msgLengthError, errorStat.rxFifoFull,
                          errorStat.txFifoFull, errorStat.crcError, errorStat.bundleSizeError})
            w.writeUint16(v);
        return Answered;
    case DTS::GetNodeSerialNumber:
        w.writeBytes(serial);
        return Answered;
    case DTS::ClearDiscovery:
        discoveryMark = false;
        return ack(out);
    case DTS::SetGroupAddr: {
        const quint8 index = in.readUint8();
        const quint32 group = in.readUint24();
        if (index >= SimNode::GroupSlots || group == VRN::BroadcastNumber)
            return DTS::NackDataOutOfRange;
        groups[index] = group;
        return ack(out);
    }
    case DTS::SetNodeDiscovery: {
        const quint8 mark = in.readUint8();
        if (mark > 1)
            return DTS::NackDataOutOfRange;
        discoveryMark = mark == 1;
        return ack(out);
    }
    case DTS::SetNodeLabel:
        label = rq.payload();
        return ack(out);
    case DTS::SetDeafMode:
        return ackUnless(setDeafMode(rq), out);
    case DTS::SetNetworkStat: {
        const quint8 which = in.readUint8();
        const quint8 value = in.readUint8();
        if (which > 2)
            return DTS::NackDataOutOfRange;
        setNetworkCounters(which, value);
        return ack(out);
    }
    case DTS::GetNodeAppVersion:
        w.writeUint8(version.major).writeUint8(version.minor).writeUint8(version.patch)
            .writeUint16(version.build);
        return Answered;
    }
    errorStat.unknownMessage++;
    return DTS::NackUnknownMessage;
}

// Returns a NACK status, 0 when accepted.
int SimNodePrivate::setDeafMode(const VRNMessage& rq)
{
    VRNDataReader in(rq.payload());
    const quint32 target = in.readUint24();
    const quint16 duration = in.readUint16();
    const quint8 mode = in.readUint8();
    if (mode != 0x00 && mode != 0xFF)
        return DTS::NackDataOutOfRange;
    if (target != VRN::BroadcastNumber && target != number)
        return 0;
    Q_Q(SimNode);
    if (mode == 0x00 || duration == 0)
        q->setDeaf(0);
    else
        q->setDeaf(duration == 0xFFFF ? -1 : int(duration) * 10);
    return 0;
}

void SimNodePrivate::setNetworkCounters(quint8 which, quint8 value)
{
    if (which == 0 || which == 2) {
        networkStat.maxRetryCount = value;
        networkStat.frameSent = networkStat.frameSeen = networkStat.frameReceived = value;
        networkStat.busyCount = value;
        networkStat.maxSlot = networkStat.supervisionFailure = value;
    }
    if (which == 1 || which == 2) {
        errorStat.txFailures = errorStat.collisions = errorStat.rxDataError = value;
        errorStat.unknownMessage = errorStat.msgLengthError = errorStat.rxFifoFull = value;
        errorStat.txFifoFull = errorStat.crcError = errorStat.bundleSizeError = value;
    }
}

int SimNodePrivate::executeMotorCommand(const VRNMessage& rq, VRNMessage& out)
{
    VRNDataReader in(rq.payload());
    VRNDataWriter w(out);
    switch (rq.cmd()) {
    case DTS::CtrlStop:
    case DTS::CtrlWink:
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
    case DTS::GetMotorRollingSpeed:
        w.writeUint8(speed.up).writeUint8(speed.down).writeUint8(speed.slow);
        return Answered;
    case DTS::SetMotorRollingSpeed: {
        SimNode::RollingSpeed s;
        s.up = in.readUint8();
        s.down = in.readUint8();
        s.slow = in.readUint8();
        for (quint8 v : {s.up, s.down, s.slow}) {
            if (v < MinRollingSpeed || v > MaxRollingSpeed)
                return DTS::NackDataOutOfRange;
        }
        speed = s;
        return ack(out);
    }
    case DTS::SetMotorIP:
        return ackUnless(setIp(rq), out);
    case DTS::GetMotorSoftStartStop:
        w.writeUint8(ramps.startEnabled).writeUint8(ramps.startValue)
            .writeUint8(ramps.stopEnabled).writeUint8(ramps.stopValue);
        return Answered;
    case DTS::SetMotorSoftStartStop:
        return ackUnless(setSoftStartStop(rq), out);
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
    return executeDiagnostic(rq.cmd(), out);
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
    const int perTick = speedType == DTSMotor::SpeedSlow ? PulsesPerTickSlow : PulsesPerTickNormal;
    const int sign = pulseSign(direction == DTSMotor::MoveDown);
    travelTo(clampToLimits(int(position) + sign * perTick * int(duration)));
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

int SimNodePrivate::setSoftStartStop(const VRNMessage& rq)
{
    VRNDataReader in(rq.payload());
    const quint8 function = in.readUint8();
    const quint8 which = in.readUint8();
    const quint8 value = in.readUint8();
    if (function > DTSMotor::SoftSetValue || which > DTSMotor::RampStop || value > MaxRampValue)
        return DTS::NackDataOutOfRange;
    const bool start = which != DTSMotor::RampStop;
    const bool stop = which != DTSMotor::RampStart;
    if (function == DTSMotor::SoftSetValue) {
        if (start)
            ramps.startValue = value;
        if (stop)
            ramps.stopValue = value;
    } else {
        const bool enable = function == DTSMotor::SoftEnable;
        if (start)
            ramps.startEnabled = enable;
        if (stop)
            ramps.stopEnabled = enable;
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
    if ((all || function == DTSMotor::FactoryRollingSpeed) && SimNode::isDC(kind))
        speed = FactorySpeed;
    if ((all || function == DTSMotor::FactorySoftStartStop) && SimNode::isDC(kind))
        ramps = FactoryRamps;
    if (all || function == DTSMotor::FactoryIPs)
        ips.fill(SimNode::Unset16);
}

// --- SimNode ----------------------------------------------------------------

SimNode::SimNode(Kind kind, quint32 number, QObject* parent)
    : SimNode(*new SimNodePrivate(kind, number), parent)
{
}

SimNode::SimNode(SimNodePrivate& dd, QObject* parent)
    : QObject(parent), d_ptr(&dd)
{
    d_ptr->q_ptr = this;
}

SimNode::~SimNode() = default;

SimNode::Kind SimNode::kind() const { return d_func()->kind; }
quint32 SimNode::number() const { return d_func()->number; }
VRN::NodeType SimNode::nodeType() const { return d_func()->nodeType; }
VRN::Addr SimNode::address() const { return VRN::makeAddr(nodeType(), int(number())); }

bool SimNode::setNodeType(VRN::NodeType type)
{
    Q_D(SimNode);
    bool ok = type == defaultNodeType(d->kind);
    if (d->kind == Std)
        ok = type == VRN::NodeKeypad || type == VRN::NodeSensor || type == VRN::NodeInterface;
    else if (d->kind == Motor)
        ok = type == VRN::NodeMotor || type == VRN::NodeMotorIO;
    if (ok)
        d->nodeType = type;
    return ok;
}

VRN::NodeType SimNode::defaultNodeType(Kind kind)
{
    for (const KindInfo& k : Kinds) {
        if (k.kind == kind)
            return k.type;
    }
    return VRN::NodeKeypad;
}

bool SimNode::hasMotor(Kind kind) { return kind != Std && kind != SettingTool; }
bool SimNode::isDC(Kind kind) { return kind == DCMotor || kind == TX50DC || kind == TX30; }

QString SimNode::kindName(Kind kind)
{
    for (const KindInfo& k : Kinds) {
        if (k.kind == kind)
            return QString::fromLatin1(k.name);
    }
    return QString();
}

bool SimNode::kindFromName(const QString& name, Kind* kind)
{
    for (const KindInfo& k : Kinds) {
        if (name.compare(QLatin1String(k.name), Qt::CaseInsensitive) == 0) {
            if (kind)
                *kind = k.kind;
            return true;
        }
    }
    return false;
}

QString SimNode::labelPrefix(Kind kind)
{
    for (const KindInfo& k : Kinds) {
        if (k.kind == kind)
            return QString::fromLatin1(k.labelPrefix);
    }
    return QString();
}

void SimNode::randomize(QRandomGenerator& rng)
{
    Q_D(SimNode);
    d->serial = QByteArray::number(rng.bounded(100000000u, 999999999u));
    d->version = {quint8(rng.bounded(1, 4)), quint8(rng.bounded(10)), quint8(rng.bounded(20)),
                  quint16(rng.bounded(1, 2000))};
    d->networkConfig = {2, quint8(rng.bounded(1, 4)), quint8(rng.bounded(3, 6)), 16};
    d->networkStat.frameSent = rng.bounded(10000u);
    d->networkStat.frameSeen = d->networkStat.frameSent * 4 + rng.bounded(1000u);
    d->networkStat.frameReceived = d->networkStat.frameSent + rng.bounded(100u);
    d->networkStat.maxRetryCount = quint8(rng.bounded(4));
    d->networkStat.maxSlot = quint8(rng.bounded(16));
    d->errorStat.collisions = quint16(rng.bounded(50));
    d->errorStat.crcError = quint16(rng.bounded(10));
    // Mostly no groups; a few nodes share one of eight groups.
    if (rng.bounded(4) == 0)
        d->groups[0] = 0x0F0000u + rng.bounded(8u);
    if (!hasMotor(d->kind))
        return;
    d->upLimit = quint16(rng.bounded(0, 200));
    d->downLimit = quint16(d->upLimit + rng.bounded(2000, 10000));
    d->position = quint16(rng.bounded(int(d->upLimit), int(d->downLimit) + 1));
    d->direction = rng.bounded(5) == 0 ? DTSMotor::DirectionReversed : DTSMotor::DirectionStandard;
    const int ipCount = rng.bounded(4);
    for (int i = 0; i < ipCount; ++i)
        d->ips[i] = quint16(rng.bounded(int(d->upLimit), int(d->downLimit) + 1));
    if (isDC(d->kind)) {
        d->speed = {quint8(rng.bounded(MinRollingSpeed, MaxRollingSpeed + 1)),
                    quint8(rng.bounded(MinRollingSpeed, MaxRollingSpeed + 1)),
                    quint8(rng.bounded(MinRollingSpeed, 12))};
        d->ramps = {rng.bounded(2) == 1, quint8(rng.bounded(101)), rng.bounded(2) == 1,
                    quint8(rng.bounded(101))};
    }
    d->diagnostics.totalMoveCount = rng.bounded(50000u);
    d->diagnostics.totalRevCount = d->diagnostics.totalMoveCount * 20 + rng.bounded(1000u);
    d->diagnostics.thermalCount = quint16(rng.bounded(5));
    d->diagnostics.postThermalMove = quint16(rng.bounded(500));
    d->diagnostics.obstacleCount = quint16(rng.bounded(20));
    d->diagnostics.postObstacleMove = quint16(rng.bounded(500));
    d->diagnostics.powerCount = quint16(rng.bounded(100));
    d->diagnostics.resetCount = quint16(rng.bounded(10));
}

bool SimNode::isAddressedBy(const VRNMessage& request) const
{
    Q_D(const SimNode);
    switch (request.dstType()) {
    case VRN::AddrBroadcast:
        return true;
    case VRN::AddrGroup:
        return request.dstAddr() != 0
            && std::find(d->groups.begin(), d->groups.end(), request.dstAddr()) != d->groups.end();
    case VRN::AddrNode:
        break;
    }
    return request.dstAddr() == d->number;
}

void SimNode::countInvalidFrame()
{
    d_func()->errorStat.crcError++;
}

QList<QByteArray> SimNode::handle(const VRNMessage& request)
{
    Q_D(SimNode);
    if (!request.isValid()) {
        countInvalidFrame();
        return {};
    }
    d->networkStat.frameSeen++;
    // Replies of other nodes are seen on the line but never answered.
    if (!isAddressedBy(request) || DTS::cmdInfo(request.cmd()).isReply())
        return {};
    d->networkStat.frameReceived++;
    if (d->silent || (isDeaf() && !isToolType(VRN::getType(request.srcAddr()))))
        return {};

    const bool unicast = request.dstType() == VRN::AddrNode;
    VRNMessage out;
    int status = SimNodePrivate::NoAnswer;
    if (unicast && d->forcedNackCount != 0) {
        status = d->forcedNackStatus;
        if (d->forcedNackCount > 0 && --d->forcedNackCount == 0)
            d->forcedNackStatus = 0;
    } else {
        status = d->execute(request, out);
        if (status == SimNodePrivate::Answered && out.cmd() == DTS::Ack)
            emit changed();
    }
    if (status == SimNodePrivate::NoAnswer)
        return {};
    if (status != SimNodePrivate::Answered) {
        out.setCmd(DTS::Nack);
        out.setPayload(QByteArray(1, char(status)) + char(request.cmd()));
    } else if (out.cmd() == DTS::Ack) {
        out.setPayload(QByteArray(1, char(request.cmd())));
    }
    if (!unicast && (out.cmd() == DTS::Ack || out.cmd() == DTS::Nack))
        return {};
    out.setSrcAddr(address());
    out.setDstAddr(request.srcAddr(false), VRN::AddrNode);
    out.prepare();
    d->networkStat.frameSent++;
    return {out.data()};
}

QByteArray SimNode::label() const { return d_func()->label; }
void SimNode::setLabel(const QByteArray& label) { d_func()->label = label.left(MaxLabelSize); }
QByteArray SimNode::serialNumber() const { return d_func()->serial; }
void SimNode::setSerialNumber(const QByteArray& serial) { d_func()->serial = serial.left(MaxSerialSize); }

quint32 SimNode::group(int index) const
{
    return index >= 0 && index < GroupSlots ? d_func()->groups[index] : 0;
}
void SimNode::setGroup(int index, quint32 group)
{
    if (index >= 0 && index < GroupSlots)
        d_func()->groups[index] = group & 0xFFFFFFu;
}
QList<quint32> SimNode::groups() const
{
    Q_D(const SimNode);
    return QList<quint32>(d->groups.begin(), d->groups.end());
}

SimNode::AppVersion SimNode::appVersion() const { return d_func()->version; }
void SimNode::setAppVersion(const AppVersion& version) { d_func()->version = version; }
SimNode::NetworkConfig SimNode::networkConfig() const { return d_func()->networkConfig; }
void SimNode::setNetworkConfig(const NetworkConfig& config) { d_func()->networkConfig = config; }
SimNode::NetworkStat SimNode::networkStat() const { return d_func()->networkStat; }
void SimNode::setNetworkStat(const NetworkStat& stat) { d_func()->networkStat = stat; }
SimNode::NetworkErrorStat SimNode::networkErrorStat() const { return d_func()->errorStat; }
void SimNode::setNetworkErrorStat(const NetworkErrorStat& stat) { d_func()->errorStat = stat; }

bool SimNode::discoveryMark() const { return d_func()->discoveryMark; }
void SimNode::setDiscoveryMark(bool mark) { d_func()->discoveryMark = mark; }

void SimNode::setDeaf(int durationMs)
{
    Q_D(SimNode);
    d->deaf = durationMs != 0;
    d->deafUntil = durationMs < 0 ? QDeadlineTimer(QDeadlineTimer::Forever)
                                  : QDeadlineTimer(qMax(0, durationMs));
}
bool SimNode::isDeaf() const
{
    Q_D(const SimNode);
    return d->deaf && !d->deafUntil.hasExpired();
}

bool SimNode::isSilent() const { return d_func()->silent; }
void SimNode::setSilent(bool silent) { d_func()->silent = silent; }

void SimNode::setForcedNack(quint8 status, int count)
{
    Q_D(SimNode);
    d->forcedNackStatus = status;
    d->forcedNackCount = status ? count : 0;
}
quint8 SimNode::forcedNack() const { return d_func()->forcedNackStatus; }

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
quint16 SimNode::position() const { return d_func()->position; }
void SimNode::setPosition(quint16 pulses) { d_func()->position = pulses; }
quint8 SimNode::positionPercent() const { return d_func()->percentOf(position()); }

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

SimNode::RollingSpeed SimNode::rollingSpeed() const { return d_func()->speed; }
void SimNode::setRollingSpeed(const RollingSpeed& speed) { d_func()->speed = speed; }
SimNode::SoftStartStop SimNode::softStartStop() const { return d_func()->ramps; }
void SimNode::setSoftStartStop(const SoftStartStop& ramps) { d_func()->ramps = ramps; }
SimNode::Diagnostics SimNode::diagnostics() const { return d_func()->diagnostics; }
void SimNode::setDiagnostics(const Diagnostics& diagnostics) { d_func()->diagnostics = diagnostics; }
