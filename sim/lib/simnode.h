#ifndef SIMNODE_H
#define SIMNODE_H

#include "vrn.h"

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QScopedPointer>

class QRandomGenerator;
class SimClock;
class VRNMessage;
class SimNodePrivate;

/// One simulated device of the device network.
///
/// A node holds the state a configuration tool reads and writes and answers
/// requests as a device does (frame layouts in platform/vrn/PROTOCOL.md).
/// `handle()` is pure logic: it takes one decoded frame and returns the frames
/// the node sends back, without timing; `SimNetwork` adds delays, the shared
/// line and faults.
///
///     SimNode motor(SimNode::Motor, 0x000123);
///     motor.setLabel("Kitchen");
///     QList<QByteArray> replies = motor.handle(VRNMessage(BusMessage(frame)));
///
/// Rules of every kind:
/// - a request to another node, or to a group the node is not a member of,
///   is ignored; so are reply codes (frames other nodes send);
/// - unknown command (or a motor command on a node without a motor): NACK 0x10;
///   wrong payload size: NACK 0x11; argument out of range: NACK 0x01;
/// - broadcast and group requests never get ACK or NACK (data replies, such as
///   0x60 to a broadcast 0x40, are sent);
/// - with the discovery mark set the node does not answer 0x40;
/// - a silent node never answers anything;
/// - in deaf mode the node answers only configuration tools (source node type
///   `NodeTool` or `NodeSettingTool`); requests from other devices (a keypad
///   commanding a motor) are ignored until the deaf time ends.
///
/// Motors move in simulated time (`clock()`, the network's when the node
/// belongs to one): a move is acknowledged at once, then the position runs
/// towards the target at the motor's speed (a DC motor's rolling speeds, 50
/// pulses a second per unit; other motors 1000, slow 200), speeding up and
/// slowing down over the soft start and stop ramps when they are enabled (a
/// ramp value of 100 takes one second). A stop ends the move where the motor
/// stands; a new move starts from there. A move that meets the obstacle
/// (`setObstacle`) ends at it and counts one obstacle. Each move counts one
/// move in the life counters, its revolutions when it ends. Positions are
/// pulses; the up limit is the smaller pulse value, percent 0 is the up limit
/// and 100 the down limit. The code of each kind lives in its own file:
/// simnode.cpp (every node), simmotor.cpp, simdcmotor.cpp.
class SimNode : public QObject
{
    Q_OBJECT
public:
    enum Kind { Std, Motor, DCMotor, LRU50, TX50DC, TX30, SettingTool };
    Q_ENUM(Kind)

    enum : int { GroupSlots = 16, IpSlots = 16, MaxLabelSize = 16, MaxSerialSize = 12 };
    enum : quint16 { Unset16 = 0xFFFF };
    enum : quint8 { Unset8 = 0xFF };

    struct AppVersion {
        quint8 major = 0;
        quint8 minor = 0;
        quint8 patch = 0;
        quint16 build = 0;
    };
    struct NetworkConfig {
        quint8 broadcastPriority = 0;
        quint8 lowPriority = 0;
        quint8 maxRetry = 0;
        quint8 slotCount = 0;
    };
    struct NetworkStat {
        quint8 maxRetryCount = 0;
        quint32 frameSent = 0;      ///< frames this node sent
        quint32 frameSeen = 0;      ///< valid frames the node looked at
        quint32 frameReceived = 0;  ///< frames addressed to this node
        quint16 busyCount = 0;
        quint8 maxSlot = 0;
        quint8 supervisionFailure = 0;
    };
    struct NetworkErrorStat {
        quint16 txFailures = 0;
        quint16 collisions = 0;
        quint16 rxDataError = 0;
        quint16 unknownMessage = 0;  ///< requests answered with NACK 0x10
        quint16 msgLengthError = 0;  ///< requests answered with NACK 0x11
        quint16 rxFifoFull = 0;
        quint16 txFifoFull = 0;
        quint16 crcError = 0;        ///< invalid frames seen (`countInvalidFrame`)
        quint16 bundleSizeError = 0;
    };
    struct MotorIp {
        quint16 pulse = Unset16;
        quint8 pct = Unset8;
        bool isSet() const { return pulse != Unset16; }
    };
    struct Diagnostics {
        quint32 totalMoveCount = 0;
        quint32 totalRevCount = 0;
        quint16 thermalCount = 0;
        quint16 postThermalMove = 0;
        quint16 obstacleCount = 0;
        quint16 postObstacleMove = 0;
        quint16 powerCount = 0;
        quint16 resetCount = 0;
        quint16 encoderErrCount = 0;
    };
    struct RollingSpeed {
        quint8 up = 0;
        quint8 down = 0;
        quint8 slow = 0;
    };
    struct SoftStartStop {
        bool startEnabled = false;
        quint8 startValue = 0;
        bool stopEnabled = false;
        quint8 stopValue = 0;
    };

    /// A node of `kind` with the node number `number` (24 bits) and the
    /// kind's default node type (`defaultNodeType`). Its state starts at the
    /// factory values: empty label, no groups, limits and positions unset.
    SimNode(Kind kind, quint32 number, QObject* parent = nullptr);
    ~SimNode() override;

    Kind kind() const;
    /// Node type and number as `VRN::makeAddr` gives them.
    VRN::Addr address() const;
    quint32 number() const;
    VRN::NodeType nodeType() const;
    /// Standard kinds may use keypad, sensor or interface; motors motor or
    /// motor with inputs. Other types are refused (false).
    bool setNodeType(VRN::NodeType type);

    /// Std: keypad; Motor: motor; DCMotor, LRU50, TX50DC, TX30, SettingTool: their own.
    static VRN::NodeType defaultNodeType(Kind kind);
    /// True for the kinds that answer motor commands.
    static bool hasMotor(Kind kind);
    /// True for the kinds that answer speed and ramp commands.
    static bool isDC(Kind kind);
    /// Names used on the command line: std, motor, dcmotor, lru50, tx50dc, tx30, settingtool.
    static QString kindName(Kind kind);
    static bool kindFromName(const QString& name, Kind* kind);
    /// Start of the default labels: "Motor", "DC motor", "Node", ...
    static QString labelPrefix(Kind kind);

    /// Gives the node plausible seeded values: serial number, version,
    /// network configuration and counters, and for motors limits, a
    /// position, a few intermediate positions, speeds and ramps. The label
    /// is left to the caller.
    void randomize(QRandomGenerator& rng);

    /// Answers one request: the frames (bytes) the node sends, in order;
    /// empty when it does not answer. Counts the frame in the statistics.
    QList<QByteArray> handle(const VRNMessage& request);
    /// Repeated requests answered again without being carried out.
    quint64 repeatsAnswered() const;
    /// A repeat comes within this time of the request it repeats; later, the
    /// same frame is a new request.
    enum : int { RepeatWindowMs = 30000 };
    /// Counts a frame that failed its checksum (network error statistics).
    void countInvalidFrame();
    /// True when `request` is addressed to this node (its number, a group it
    /// belongs to, or broadcast).
    bool isAddressedBy(const VRNMessage& request) const;

    QByteArray label() const;
    void setLabel(const QByteArray& label);          ///< cut to 16 bytes
    QByteArray serialNumber() const;
    void setSerialNumber(const QByteArray& serial); ///< cut to 12 bytes
    quint32 group(int index) const;                 ///< 0: empty slot or bad index
    void setGroup(int index, quint32 group);
    QList<quint32> groups() const;                  ///< all 16 slots
    AppVersion appVersion() const;
    void setAppVersion(const AppVersion& version);
    NetworkConfig networkConfig() const;
    void setNetworkConfig(const NetworkConfig& config);
    NetworkStat networkStat() const;
    void setNetworkStat(const NetworkStat& stat);
    NetworkErrorStat networkErrorStat() const;
    void setNetworkErrorStat(const NetworkErrorStat& stat);

    bool discoveryMark() const;
    void setDiscoveryMark(bool mark);
    /// Deaf for `durationMs` milliseconds; -1 until cleared, 0 clears.
    void setDeaf(int durationMs);
    bool isDeaf() const;
    bool isSilent() const;
    void setSilent(bool silent);
    /// The next `count` requests addressed to this node alone are answered
    /// with NACK `status` instead (count -1: every one until set to 0).
    void setForcedNack(quint8 status, int count = 1);
    quint8 forcedNack() const;  ///< 0 when none pending

    // Motor state (meaningful for kinds with a motor).
    quint8 direction() const;   ///< DTSMotor::TurnDirection
    void setDirection(quint8 direction);
    quint16 upLimit() const;    ///< pulses, 0xFFFF unset
    quint16 downLimit() const;  ///< pulses, 0xFFFF unset
    void setLimits(quint16 up, quint16 down);
    bool limitsSet() const;
    quint16 position() const;   ///< pulses, where the motor stands now
    /// Puts the motor at `pulses` at once, ending any move.
    void setPosition(quint16 pulses);
    /// True while a move is under way.
    bool isMoving() const;
    /// Where the move under way will end (the obstacle when it meets one);
    /// the position when none is.
    quint16 moveTarget() const;
    /// Pulse position of an obstacle on the way (0xFFFF: none, the default).
    quint16 obstacle() const;
    void setObstacle(quint16 pulses);
    /// True for two simulated seconds after a wink request.
    bool isWinking() const;
    quint32 winkCount() const;
    /// Position in percent between the limits; 0xFF when the limits are unset.
    quint8 positionPercent() const;
    MotorIp ip(int index) const;
    /// Sets slot `index` at `pulses` (0xFFFF deletes); percent follows the limits.
    void setIp(int index, quint16 pulses);
    RollingSpeed rollingSpeed() const;
    void setRollingSpeed(const RollingSpeed& speed);
    SoftStartStop softStartStop() const;
    void setSoftStartStop(const SoftStartStop& ramps);
    Diagnostics diagnostics() const;
    void setDiagnostics(const Diagnostics& diagnostics);

    // Firmware (simfirmware.cpp). A node runs its application or, after a
    // power loss in the middle of an update or when told to enter it, its
    // bootloader; in the bootloader it answers nothing but bootloader frames.
    QByteArray firmwareImage() const;
    void setFirmwareImage(const QByteArray& image);
    bool inBootloader() const;
    /// Puts the node into its bootloader (as after a power loss) or back.
    void setBootloader(bool on);
    /// True while a standard update is begun and not ended.
    bool isUpdating() const;
    /// The block a standard update waits for next (0 when none is begun).
    int updateNextBlock() const;
    /// The node loses power when block `block` of a standard update arrives
    /// (once; -1: never): it does not answer and restarts into its bootloader.
    void setPowerLossAtBlock(int block);
    int powerLossAtBlock() const;
    /// Probability (0..1) that a block or bootloader write arrives damaged:
    /// it is refused with its checksum error, as a device refuses a block
    /// whose checksum disagrees.
    void setBlockCorruption(double probability);
    /// Blocks and writes refused as damaged so far.
    quint32 refusedBlocks() const;
    /// Moves that, started within `ThermalWindowMs` of simulated time, make
    /// the motor's thermal protection trip: the move that makes them that
    /// many counts one thermal event and starts the moves-since count anew.
    enum : int { ThermalMoves = 10, ThermalWindowMs = 60000 };
    /// The supply was cut and came back: one power cycle counted, a move
    /// under way stops where the motor stands.
    void powerCycle();
    /// The device restarted on its own: one reset counted, a move stops.
    void restart();
    /// Every `everyMoves`-th move counts an encoder error (0: never, the default).
    void setEncoderFault(int everyMoves);

    /// The clock the node moves by: the network's, or its own (real time,
    /// `ownClock()`) when it is on none.
    const SimClock* clock() const;
    SimClock* ownClock();
    /// Moves by `clock` from now on (null: its own); a move under way stops.
    void setClock(const SimClock* clock);

signals:
    /// The node's state was changed by a request (not by the setters).
    void changed();

protected:
    SimNode(SimNodePrivate& dd, QObject* parent);
    /// Carries out one request addressed to the node and gives its answers.
    QList<QByteArray> answer(const VRNMessage& request);
    QScopedPointer<SimNodePrivate> d_ptr;

private:
    Q_DECLARE_PRIVATE(SimNode)
    Q_DISABLE_COPY(SimNode)
};

#endif // SIMNODE_H
