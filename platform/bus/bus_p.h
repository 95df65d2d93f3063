// Private header, not API: it may change without notice.
#ifndef BUS_P_H
#define BUS_P_H

#include "bus.h"
#include "buspendingcall_p.h"

#include <QElapsedTimer>
#include <QQueue>

class QTimer;

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

    Bus* q_ptr = nullptr;
    QTimer* timer = nullptr;
    QQueue<CallPtr> queue;
    CallPtr current;
    QString errorString;
    int timeout = 500;
    int broadcastWindow = 1000;
    int broadcastQuietTime = 0;
    QElapsedTimer windowClock;
    bool open = false;
    bool pumpScheduled = false;
};

#endif // BUS_P_H
