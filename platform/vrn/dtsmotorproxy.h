#ifndef DTSMOTORPROXY_H
#define DTSMOTORPROXY_H

#include "dts.h"
#include "dtsstdproxy.h"

/// The commands of a motor node: movement, settings (direction, end limits,
/// rolling speeds, soft start and stop, intermediate positions, factory
/// defaults), position and life counters. Requests and parsers behave as in
/// `DTSStdProxy`; writes and movements are answered with an acknowledgement
/// (`isAck()`). Frame layouts are in PROTOCOL.md.
class DTSMotorProxy : public DTSStdProxy
{
    Q_OBJECT
public:
    /// Number of intermediate positions of a motor (indices 0..15).
    enum : quint8 { IPCount = 16 };

    explicit DTSMotorProxy(VRN::Addr addr = 0, Bus* bus = nullptr, QObject* parent = nullptr);
    ~DTSMotorProxy() override;

    // movement
    BusPendingCall ctrlWink();
    BusPendingCall ctrlMoveTo(DTSMotor::MoveToFunction function, unsigned short value, unsigned char reserved);
    BusPendingCall ctrlMoveOf(DTSMotor::MoveOfFunction function, unsigned short value, unsigned char reserved);
    /// `duration` in steps of 10 ms.
    BusPendingCall ctrlMove(DTSMotor::MoveFunction direction, unsigned char duration, DTSMotor::SpeedType speed);
    BusPendingCall ctrlStop(unsigned char reserved);

    // settings
    BusPendingCall getMotorDirection();
    BusPendingCall setMotorDirection(DTSMotor::TurnDirection direction);
    BusPendingCall getMotorLimits();
    /// `value`: pulses for `LimitSetValue`, a signed 16-bit delta for `LimitAdjust`.
    BusPendingCall setMotorLimits(DTSMotor::LimitFunction function, DTSMotor::Limit limit, unsigned short value);
    BusPendingCall getMotorPosition();
    BusPendingCall getMotorRollingSpeed();
    BusPendingCall setMotorRollingSpeed(unsigned char up, unsigned char down, unsigned char slow);
    BusPendingCall getMotorSoftStartStop();
    BusPendingCall setMotorSoftStartStop(DTSMotor::SoftStartStopFunction function,
                                         DTSMotor::SoftStartStopRamps ramps, unsigned char value);
    BusPendingCall setFactoryDefault(DTSMotor::FactoryDefFunction function);
    BusPendingCall getMotorIP(unsigned char index);
    BusPendingCall setMotorIP(DTSMotor::IPFunction function, unsigned char index, unsigned short value);

    bool getMotorDirectionReply(const BusMessage& msg, DTSMotor::TurnDirection& direction) const;
    bool getMotorLimitsReply(const BusMessage& msg, unsigned short& up, unsigned short& down) const;
    /// `pct` 0..100 (0xFF: end limits not set), `tilt` 0..100 (0xFF: no
    /// tilt), `ip` index of the intermediate position the motor is at (0xFF: none).
    bool getMotorPositionReply(const BusMessage& msg, unsigned short& pulse, unsigned char& pct,
                               unsigned char& tilt, unsigned char& ip) const;
    /// Speeds 6..28.
    bool getMotorRollingSpeedReply(const BusMessage& msg, unsigned char& up, unsigned char& down,
                                   unsigned char& slow) const;
    /// Values 0..100.
    bool getMotorSoftStartStopReply(const BusMessage& msg, bool& startEnabled, unsigned char& startValue,
                                    bool& stopEnabled, unsigned char& stopValue) const;
    /// `pulse` 0xFFFF and `pct` 0xFF for an unset position.
    bool getMotorIPReply(const BusMessage& msg, unsigned char& index, unsigned short& pulse,
                         unsigned char& pct) const;

    // diagnostics
    BusPendingCall diagGetTotalMoveCount();
    BusPendingCall diagGetTotalRevCount();
    BusPendingCall diagGetThermalCount();
    BusPendingCall diagGetObstacleCount();
    BusPendingCall diagGetPowerCount();
    BusPendingCall diagGetResetCount();
    BusPendingCall diagGetEncoderErrors();

    bool diagGetTotalMoveCountReply(const BusMessage& msg, unsigned int& count) const;
    bool diagGetTotalRevCountReply(const BusMessage& msg, unsigned int& count) const;
    /// Thermal protections, and moves since the last one.
    bool diagGetThermalCountReply(const BusMessage& msg, unsigned short& count, unsigned short& postMoves) const;
    /// Obstacles detected, and moves since the last one.
    bool diagGetObstacleCountReply(const BusMessage& msg, unsigned short& count, unsigned short& postMoves) const;
    bool diagGetPowerCountReply(const BusMessage& msg, unsigned short& count) const;
    bool diagGetResetCountReply(const BusMessage& msg, unsigned short& count) const;
    bool diagGetEncoderErrorsReply(const BusMessage& msg, unsigned short& count) const;

private:
    bool readCounter(const BusMessage& msg, quint8 cmd, unsigned int& count) const;
    bool readCounter(const BusMessage& msg, quint8 cmd, unsigned short& count) const;
    bool readCounterPair(const BusMessage& msg, quint8 cmd, unsigned short& count, unsigned short& post) const;
};

#endif // DTSMOTORPROXY_H
