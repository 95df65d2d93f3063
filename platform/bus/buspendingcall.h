#ifndef BUSPENDINGCALL_H
#define BUSPENDINGCALL_H

#include "busmessage.h"

#include <QExplicitlySharedDataPointer>
#include <QList>
#include <QString>

class BusPendingCallPrivate;

/// A cheap shared handle on one request submitted with `Bus::call()`.
///
/// It ends exactly once: with the reply of the called node, with the replies
/// collected in a broadcast's window, or with an error. Watch it with a
/// `BusPendingCallWatcher`.
class BusPendingCall
{
public:
    enum Error {
        NoError = 0,
        OtherError = 1,
        TimeoutError = 2,
        WriteError = 3,
        BusNotAvailableError = 4,
        CancelledError = 5
    };

    /// A call that is already finished with `BusNotAvailableError`.
    BusPendingCall();
    BusPendingCall(const BusPendingCall& other);
    BusPendingCall& operator=(const BusPendingCall& other);
    ~BusPendingCall();

    /// A call that is already finished with `error`; for requests that never
    /// reach a bus (no bus, a payload too long).
    static BusPendingCall fromError(Error error, const QString& text = QString());

    bool isFinished() const;
    Error error() const;
    QString errorString() const;
    BusMessage request() const;
    /// The first reply; an empty message when there is none.
    BusMessage reply() const;
    /// Every reply received for the call, in arrival order.
    QList<BusMessage> replies() const;
    /// Times the request was sent again because no reply came.
    int retransmissions() const;

    /// Ends the call with `CancelledError` if it has not ended yet: a call
    /// still waiting in the queue never reaches the wire, a call on the wire
    /// stops waiting for its reply and the next call goes. Watchers report
    /// from the event loop as for any other end. False when the call had
    /// already ended.
    bool cancel();

    bool operator==(const BusPendingCall& other) const { return d == other.d; }

private:
    explicit BusPendingCall(BusPendingCallPrivate* d);
    QExplicitlySharedDataPointer<BusPendingCallPrivate> d;
    friend class Bus;
    friend class BusPrivate;
    friend class BusPendingCallWatcher;
    friend class BusPendingCallWatcherPrivate;
};

Q_DECLARE_METATYPE(BusPendingCall)

#endif // BUSPENDINGCALL_H
