// Private header, not API: it may change without notice.
#ifndef BUSPENDINGCALL_P_H
#define BUSPENDINGCALL_P_H

#include "buspendingcall.h"

#include <QList>
#include <QSharedData>

class BusPrivate;
class BusPendingCallWatcher;

class BusPendingCallPrivate : public QSharedData
{
public:
    BusPendingCallPrivate() = default;
    explicit BusPendingCallPrivate(const BusMessage& request, BusPrivate* engine);

    /// Ends the call once: sets error code and text together, forgets the bus,
    /// and tells every watcher (they report from the event loop). False when
    /// the call had already ended.
    bool finish(BusPendingCall::Error code, const QString& text = QString());

    static QString textFor(BusPendingCall::Error code);

    BusMessage request;
    QList<BusMessage> replies;
    QString errorString;
    /// The bus that still has to end the call; null once it has ended.
    BusPrivate* engine = nullptr;
    QList<BusPendingCallWatcher*> watchers;
    BusPendingCall::Error error = BusPendingCall::NoError;
    int retransmissions = 0;
    bool finished = false;
    bool broadcast = false;
    /// Submitted while the bus was closed: ends with BusNotAvailableError.
    bool refused = false;
};

#endif // BUSPENDINGCALL_P_H
