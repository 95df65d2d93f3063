#ifndef BUSPENDINGCALLWATCHER_H
#define BUSPENDINGCALLWATCHER_H

#include "buspendingcall.h"

#include <QObject>
#include <QScopedPointer>

class BusPendingCallWatcherPrivate;

/// Emits `finished()` once for the call it watches. Assigning a call starts
/// watching it (and stops watching the previous one, which then never reports
/// here); a call that has already ended reports from the event loop, never
/// from inside the assignment.
///
///     watcher = proxy->getNodeLabel();   // later: finished()
class BusPendingCallWatcher : public QObject
{
    Q_OBJECT
public:
    explicit BusPendingCallWatcher(QObject* parent = nullptr);
    explicit BusPendingCallWatcher(const BusPendingCall& call, QObject* parent = nullptr);
    ~BusPendingCallWatcher() override;

    BusPendingCallWatcher& operator=(const BusPendingCall& call);
    BusPendingCall call() const;

    bool isFinished() const;
    BusPendingCall::Error error() const;
    QString errorString() const;
    BusMessage reply() const;
    QList<BusMessage> replies() const;

signals:
    void finished();

private:
    QScopedPointer<BusPendingCallWatcherPrivate> d_ptr;
    Q_DECLARE_PRIVATE(BusPendingCallWatcher)
    friend class BusPendingCallPrivate;
};

#endif // BUSPENDINGCALLWATCHER_H
