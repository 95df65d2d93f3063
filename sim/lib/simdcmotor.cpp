#include "simnode.h"
#include "simnode_p.h"

#include "vrndatawriter.h"

#include <QRandomGenerator>

// The DC motor kinds (DC motor, TX50DC, TX30): rolling speeds and the soft
// start and stop ramps, and what they mean for a move.

namespace {

constexpr quint8 MinRollingSpeed = 6;
constexpr quint8 MaxRollingSpeed = 28;
constexpr quint8 MaxRampValue = 100;
// A rolling speed of 20 runs 1000 pulses a second; a ramp value of 100 takes one second.
constexpr double PulsesPerSpeedUnit = 50;
constexpr double RampSPerUnit = 0.01;
// Motors without rolling speeds of their own.
constexpr double NormalPulsesPerS = 1000;
constexpr double SlowPulsesPerS = 200;

const SimNode::RollingSpeed FactorySpeed{20, 20, 8};
const SimNode::SoftStartStop FactoryRamps{true, 30, true, 30};

using SimReply::ack;
using SimReply::ackUnless;

} // namespace

int SimNodePrivate::executeDCCommand(const VRNMessage& rq, VRNMessage& out)
{
    VRNDataReader in(rq.payload());
    VRNDataWriter w(out);
    switch (rq.cmd()) {
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
    case DTS::GetMotorSoftStartStop:
        w.writeUint8(ramps.startEnabled).writeUint8(ramps.startValue)
            .writeUint8(ramps.stopEnabled).writeUint8(ramps.stopValue);
        return Answered;
    case DTS::SetMotorSoftStartStop:
        return ackUnless(setSoftStartStop(rq), out);
    }
    return DTS::NackUnknownMessage;
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

void SimNodePrivate::resetDC(quint8 function)
{
    if (!SimNode::isDC(kind))
        return;
    const bool all = function == DTSMotor::FactoryAll;
    if (all || function == DTSMotor::FactoryRollingSpeed)
        speed = FactorySpeed;
    if (all || function == DTSMotor::FactorySoftStartStop)
        ramps = FactoryRamps;
}

void SimNodePrivate::randomizeDC(QRandomGenerator& rng)
{
    speed = {quint8(rng.bounded(MinRollingSpeed, MaxRollingSpeed + 1)),
             quint8(rng.bounded(MinRollingSpeed, MaxRollingSpeed + 1)),
             quint8(rng.bounded(MinRollingSpeed, 12))};
    ramps = {rng.bounded(2) == 1, quint8(rng.bounded(101)), rng.bounded(2) == 1, quint8(rng.bounded(101))};
}

double SimNodePrivate::speedFor(bool down, bool slow) const
{
    if (!SimNode::isDC(kind))
        return slow ? SlowPulsesPerS : NormalPulsesPerS;
    const quint8 value = slow ? speed.slow : down ? speed.down : speed.up;
    return qMax<quint8>(value, 1) * PulsesPerSpeedUnit;
}

double SimNodePrivate::softStartS() const
{
    return SimNode::isDC(kind) && ramps.startEnabled ? ramps.startValue * RampSPerUnit : 0;
}

double SimNodePrivate::softStopS() const
{
    return SimNode::isDC(kind) && ramps.stopEnabled ? ramps.stopValue * RampSPerUnit : 0;
}

SimNode::RollingSpeed SimNode::rollingSpeed() const { return d_func()->speed; }
void SimNode::setRollingSpeed(const RollingSpeed& speed) { d_func()->speed = speed; }
SimNode::SoftStartStop SimNode::softStartStop() const { return d_func()->ramps; }
void SimNode::setSoftStartStop(const SoftStartStop& ramps) { d_func()->ramps = ramps; }
