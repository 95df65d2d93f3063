// Private header, not API: it may change without notice.
#ifndef BUS_P_H
#define BUS_P_H

#include "bus.h"
#include "buspendingcall_p.h"

#include <QElapsedTimer>
#include <QQueue>

class QTimer;
class BusHealthModel;

class BusPrivate
{
    Q_DECLARE_PUBLIC(Bus)
public:
    typedef QExplicitlySharedDataPointer<BusPendingCallPrivate> CallPtr;

    BusPrivate() = default;
    virtual ~BusPrivate() = default;

    void schedulePump();
    /// Puts the next waiting call on the wire, ending at once those that
    /// cannot go (bus closed, write refused).
    void pump();
    void frameReceived(const BusMessage& frame);
    void onTimer();
    /// Ends the call on the wire, if any, and lets the next one go.
    void finishCurrent(BusPendingCall::Error code, const QString& text = QString());
    /// Ends every call, on the wire and waiting, with `code`.
    void finishAll(BusPendingCall::Error code);
    bool cancel(const CallPtr& call);
    /// Time left for the broadcast on the wire: the rest of its window, or
    /// less when the line has to stay quiet only `broadcastQuietTime`.
    int broadcastSpan() const;
    /// "[ClassName]:" of the concrete bus, for log lines.
    QString logPrefix() const;
    /// Sends the call on the wire again; false when the transport refused.
    bool writeCurrent();
    /// Counts a frame that answered nothing, and says so in the log at most
    /// once a second.
    void countUnmatched(const BusMessage& frame);
    void logUnmatched();

    Bus* q_ptr = nullptr;
    QTimer* timer = nullptr;
    QQueue<CallPtr> queue;
    CallPtr current;
    QString errorString;
    int timeout = 500;
    int broadcastWindow = 1000;
    int broadcastQuietTime = 0;
    int repeats = 2;
    qint64 currentNode = -1;
    quint64 unmatched = 0;
    quint64 unmatchedLogged = 0;
    quint64 retransmissions = 0;
    QTimer* unmatchedLog = nullptr;
    BusHealthModel* health = nullptr;
    /// The last unicast call answered, for a while after: a second,
    /// different answer to it is reported.
    BusMessage answeredRequest;
    BusMessage answeredReply;
    QElapsedTimer answeredClock;
    QElapsedTimer windowClock;
    bool open = false;
    bool pumpScheduled = false;
};

#endif // BUS_P_H
