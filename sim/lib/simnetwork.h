#ifndef SIMNETWORK_H
#define SIMNETWORK_H

#include "simnode.h"

#include <QList>
#include <QObject>
#include <QScopedPointer>
#include <QString>

class SimClock;
class SimNetworkPrivate;

/// A seeded virtual device network: a set of `SimNode`s on one shared line,
/// with faults (lost, corrupted, delayed frames, silent nodes) and optional
/// serial-line timing. Same seed and same calls give the same network and the
/// same answers.
///
/// Frames come in through `frameIn()` and the nodes' answers leave through
/// `frameOut()`, never from within `frameIn()` itself. In-process:
///
///     SimNetwork net(42);
///     net.addDevices("std:2,motor:3", &error);
///     net.attach(loopbackBus);   // a VRNLoopbackBus
///
/// Timing: a unicast answer leaves after the latency; answers to a broadcast
/// or group request leave at a random moment within the reply window (plus
/// the latency), as devices on a shared line spread their answers. With a
/// baud rate set, every frame also occupies the one virtual line for
/// bytes * 11 / baud seconds (start, 8 data, parity, stop bits), starting
/// when the line is free, so answers queue behind each other.
///
/// Every time here is simulated time (`clock()`), which the nodes' motors
/// move by too: with a time scale of 10 a move, a latency and the line time
/// of a frame all take a tenth of their time in real time, and stay exact in
/// simulated time.
class SimNetwork : public QObject
{
    Q_OBJECT
public:
    explicit SimNetwork(quint32 seed = 1, QObject* parent = nullptr);
    ~SimNetwork() override;

    /// Adds a node of `kind` with node number `number`, or the next free
    /// number (counting up from 0x000100) when 0. Labels read "Motor 3",
    /// other state is seeded (`SimNode::randomize`). Null when `number` is
    /// not a usable node number (1 is the tool's, 0xFFFFFF broadcast).
    SimNode* addNode(SimNode::Kind kind, quint32 number = 0);
    /// Adds the nodes of a list such as "std:2,motor:3,dcmotor:1" (names as
    /// `SimNode::kindName`); false with a message in `error` on a bad list,
    /// and then nothing is added.
    bool addDevices(const QString& list, QString* error = nullptr);
    /// Adds `count` nodes that reuse node numbers already present (the kind
    /// of the node whose number they take); returns how many were added
    /// (0 when the network is empty).
    int addDuplicates(int count);
    /// Makes `count` nodes, chosen at random among those that answer, silent.
    int setSilentCount(int count);

    QList<SimNode*> nodes() const;
    /// The first node with this 24-bit number; null when none.
    SimNode* node(quint32 number) const;

    double loss() const;
    /// Probability (0..1) that a frame is lost, in each direction.
    void setLoss(double probability);
    double corrupt() const;
    /// Probability (0..1) that a frame sent by a node gets one byte altered.
    void setCorrupt(double probability);
    int latency() const;
    void setLatency(int ms);
    int baud() const;
    /// 0: no line timing (default).
    void setBaud(int baud);
    int replyWindow() const;
    /// Span in ms within which nodes answer a broadcast (default 50); keep it
    /// shorter than the collection window of the bus that listens.
    void setReplyWindow(int ms);

    double timeScale() const;
    /// Runs simulated time `scale` times as fast as real time (default 1).
    void setTimeScale(double scale);
    /// The network's simulated time; tests may move it on by hand.
    SimClock* clock();

    /// Connects to an in-process bus that has the signal
    /// `transmitted(QByteArray)` and the slot `inject(QByteArray)` (the
    /// loopback bus); false when `bus` has neither.
    /// A node that forges frames, for tests of what the tools let in.
    enum Hostile {
        NoHostile,
        HostileBroadcast,  ///< answers each discovery round 40 times from reserved addresses
        HostileAcks,       ///< acknowledges every request to a node with a wrong command code
        HostileSlots,      ///< answers every read of another group slot with slot 3 holding 0xABCDEF
        HostileRandom      ///< answers every request with random valid frames
    };
    Hostile hostile() const;
    void setHostile(Hostile mode);
    /// "broadcast", "acks", "slots", "random"; false for anything else.
    static bool hostileFromName(const QString& name, Hostile* mode);
    enum : int { HostileBroadcastAnswers = 40 };
    quint64 framesForged() const;

    bool attach(QObject* bus);

    quint64 framesIn() const;        ///< frames received, valid or not
    quint64 framesOut() const;       ///< frames sent, lost ones excluded
    quint64 framesLost() const;      ///< in both directions
    quint64 framesCorrupted() const; ///< sent with an altered byte
    quint64 framesInvalid() const;   ///< received with a bad length or checksum
    quint64 bytesIn() const;
    quint64 bytesOut() const;
    /// Time in microseconds the frames exchanged so far (in and out) take on
    /// a serial line at `baud` (0: the set baud rate, or 4800 when none):
    /// the lower bound of any exchange with these nodes.
    qint64 lineTimeUs(int baud = 0) const;
    void resetCounters();
    /// True while answers are waiting to leave.
    bool isBusy() const;

public slots:
    /// One frame from the line (bytes of exactly one frame).
    void frameIn(const QByteArray& frame);

signals:
    /// One frame a node puts on the line.
    void frameOut(const QByteArray& frame);

protected:
    SimNetwork(SimNetworkPrivate& dd, QObject* parent);
    QScopedPointer<SimNetworkPrivate> d_ptr;

private:
    Q_DECLARE_PRIVATE(SimNetwork)
    Q_DISABLE_COPY(SimNetwork)
};

#endif // SIMNETWORK_H
