// Private part of SimNetwork: not part of the API, may change without notice.
#ifndef SIMNETWORK_P_H
#define SIMNETWORK_P_H

#include "simclock.h"
#include "simnetwork.h"

class VRNMessage;

#include <QHash>
#include <QRandomGenerator>
#include <QTimer>

#include <map>

class SimNetworkPrivate
{
    Q_DECLARE_PUBLIC(SimNetwork)
public:
    explicit SimNetworkPrivate(quint32 seed);
    virtual ~SimNetworkPrivate() = default;

    qint64 nowUs() const { return clock.nowUs(); }
    /// Microseconds `bytes` take on the line at the set baud rate.
    qint64 lineUs(int bytes) const;
    /// Takes the line for `bytes` from `earliestUs` on; returns when they end.
    qint64 occupyLine(qint64 earliestUs, int bytes);
    bool chance(double probability);
    /// Queues one answer wanted on the line at `wantedUs`, applying faults.
    void send(qint64 wantedUs, QByteArray frame);
    void armTimer();
    void flushDue();
    quint32 nextFreeNumber();
    /// What the hostile node sends in answer to `request`.
    QList<QByteArray> forge(const VRNMessage& request);

    SimNetwork* q_ptr = nullptr;
    QRandomGenerator rng;
    QList<SimNode*> nodes;
    QMultiHash<quint32, SimNode*> byNumber;
    QHash<int, int> perKind;
    quint32 nextNumber = 0x000100;

    double loss = 0.0;
    double corrupt = 0.0;
    int latencyMs = 0;
    int baud = 0;
    int replyWindowMs = 50;
    SimNetwork::Hostile hostile = SimNetwork::NoHostile;
    quint64 framesForged = 0;

    SimClock clock;
    qint64 lineFreeUs = 0;
    std::multimap<qint64, QByteArray> outbox;  // due time (us) -> frame; equal times in order
    QTimer timer;

    quint64 framesIn = 0;
    quint64 framesOut = 0;
    quint64 framesLost = 0;
    quint64 framesCorrupted = 0;
    quint64 framesInvalid = 0;
    quint64 bytesIn = 0;
    quint64 bytesOut = 0;
};

#endif // SIMNETWORK_P_H
