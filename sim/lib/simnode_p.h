// Private part of SimNode: not part of the API, may change without notice.
#ifndef SIMNODE_P_H
#define SIMNODE_P_H

#include "simclock.h"
#include "simnode.h"

#include "dts.h"
#include "vrnmessage.h"

#include <QDeadlineTimer>
#include <QHash>
#include <QRandomGenerator>
#include <array>
#include <memory>

// How every kind of node answers: shared by the files of the device kinds.
namespace SimReply {

inline int ack(VRNMessage& out)
{
    out.setCmd(DTS::Ack);
    return 0;
}

/// A helper's NACK status, or the acknowledgement when it returned 0.
inline int ackUnless(int status, VRNMessage& out)
{
    return status ? status : ack(out);
}

inline bool isDCCommand(quint8 cmd)
{
    return cmd == DTS::GetMotorRollingSpeed || cmd == DTS::SetMotorRollingSpeed
        || cmd == DTS::GetMotorSoftStartStop || cmd == DTS::SetMotorSoftStartStop;
}

} // namespace SimReply

/// A move under way, computed from its start: the motor speeds up over
/// `accelS`, runs at `speed` and slows down over `decelS` (the soft start and
/// stop ramps), so that it stands at `to` after `durationS`. Times are in
/// simulated seconds, positions in pulses.
struct SimMotion
{
    bool active = false;
    qint64 startUs = 0;
    int from = 0;
    int to = 0;
    bool againstObstacle = false;  ///< `to` is the obstacle, short of the target
    double speed = 0;              ///< pulses per second at full speed
    double accelS = 0;
    double decelS = 0;
    double durationS = 0;

    /// Pulses travelled `t` seconds after the start.
    double travelled(double t) const;
};

class SimNodePrivate
{
    Q_DECLARE_PUBLIC(SimNode)
public:
    SimNodePrivate(SimNode::Kind kind, quint32 number);
    virtual ~SimNodePrivate() = default;

    /// What `execute` decided: an answer in `out`, a NACK status, or nothing.
    enum : int { Answered = 0, NoAnswer = -1 };

    int execute(const VRNMessage& rq, VRNMessage& out);
    int executeNodeCommand(const VRNMessage& rq, VRNMessage& out);
    int executeMotorCommand(const VRNMessage& rq, VRNMessage& out);
    /// CTRL_STOP_ALL: every node hears it, motors of the group named stop; never answered.
    int stopAll(const VRNMessage& rq);
    int executeDiagnostic(quint8 cmd, VRNMessage& out) const;
    int moveTo(const VRNMessage& rq);
    int moveOf(const VRNMessage& rq);
    int move(const VRNMessage& rq);
    int setLimits(const VRNMessage& rq);
    int setIp(const VRNMessage& rq);
    int setDeafMode(const VRNMessage& rq);
    void factoryDefault(quint8 function);
    void setNetworkCounters(quint8 which, quint8 value);
    void randomizeMotor(QRandomGenerator& rng);

    // simfirmware.cpp
    static bool isFirmwareCommand(quint8 cmd);
    /// Bootloader frames in bootloader mode, NoAnswer for anything else.
    int executeBootloader(const VRNMessage& rq, VRNMessage& out);
    int executeFirmwareCommand(const VRNMessage& rq, VRNMessage& out);
    bool blockArrivesDamaged();

    // simdcmotor.cpp
    int executeDCCommand(const VRNMessage& rq, VRNMessage& out);
    int setSoftStartStop(const VRNMessage& rq);
    /// Restores the DC settings that a factory-default `function` covers.
    void resetDC(quint8 function);
    void randomizeDC(QRandomGenerator& rng);
    /// Full speed, in pulses per second, of a move towards the down limit or
    /// not; `slow` for the slow speed.
    double speedFor(bool down, bool slow) const;
    /// Soft start and stop, in seconds; 0 when disabled or not a DC motor.
    double softStartS() const;
    double softStopS() const;

    bool limitsSet() const;
    quint16 lowLimit() const;   ///< min of the limits
    quint16 highLimit() const;  ///< max of the limits
    quint8 percentOf(quint16 pulses) const;
    quint16 pulsesOf(quint8 percent) const;
    quint16 clampToLimits(int pulses) const;
    int pulseSign(bool down) const;  ///< +1 or -1: the way pulses count when moving down/up
    /// Starts a move from the current position to `pulses` at full speed
    /// `speed` (0: the speed of the kind for that way).
    void travelTo(quint16 pulses, double speed = 0);
    /// Brings the position up to the clock: a move that has run its time
    /// ends (and is counted); one under way stands where it is now.
    void settle() const;
    /// Ends the move under way where the motor stands.
    void stopMotion();
    void endMotion() const;
    /// Counts a move in the life counters: thermal trips and encoder faults.
    void countMoveStart(qint64 startUs);
    quint8 ipIndexAtPosition() const;
    qint64 nowUs() const { return clock->nowUs(); }

    SimNode* q_ptr = nullptr;
    SimNode::Kind kind;
    quint32 number;
    VRN::NodeType nodeType;

    QByteArray label;
    QByteArray serial;
    std::array<quint32, SimNode::GroupSlots> groups{};
    SimNode::AppVersion version;
    SimNode::NetworkConfig networkConfig;
    SimNode::NetworkStat networkStat;
    SimNode::NetworkErrorStat errorStat;

    bool discoveryMark = false;
    bool deaf = false;
    QDeadlineTimer deafUntil;
    bool silent = false;
    quint8 forcedNackStatus = 0;
    int forcedNackCount = 0;

    quint8 direction = 0;
    quint16 upLimit = SimNode::Unset16;
    quint16 downLimit = SimNode::Unset16;
    mutable quint16 position = 0;
    std::array<quint16, SimNode::IpSlots> ips;
    SimNode::RollingSpeed speed;
    SimNode::SoftStartStop ramps;
    mutable SimNode::Diagnostics diagnostics;
    /// Start times of the latest moves, oldest first (thermal protection).
    QList<qint64> recentMoveStartsUs;
    int encoderFaultEvery = 0;

    SimClock ownClock;
    const SimClock* clock = &ownClock;
    mutable SimMotion motion;
    quint16 obstacle = SimNode::Unset16;
    qint64 winkUntilUs = -1;

    struct FirmwareUpdate {
        bool active = false;
        quint32 size = 0;
        quint8 blockSize = 0;
        SimNode::AppVersion version;
        QByteArray imageId;
        QByteArray data;
        quint16 next = 0;
        quint16 count() const { return quint16((size + blockSize - 1) / blockSize); }
    };
    struct BootloaderState {
        bool erased = false;
        bool verified = false;
        quint32 size = 0;
        SimNode::AppVersion version;
        QByteArray data;
    };
    QByteArray image;
    bool bootloader = false;
    FirmwareUpdate update;
    BootloaderState boot;
    int powerLossAt = -1;
    double blockCorruption = 0;
    quint32 refusedBlocks = 0;
    std::unique_ptr<QRandomGenerator> faultRng;
    quint32 winkCount = 0;

    /// The last request of each tool (by its number) with sequence number,
    /// and what it was answered: a repeat of it gets the same answer again.
    struct LastRequest {
        QByteArray request;
        QList<QByteArray> replies;
        qint64 atUs = 0;
    };
    QHash<quint32, LastRequest> lastRequests;
    quint64 repeatsAnswered = 0;
};

#endif // SIMNODE_P_H
