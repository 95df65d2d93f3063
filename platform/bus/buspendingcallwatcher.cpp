#include "buspendingcallwatcher.h"
#include "busevents_p.h"
#include "buspendingcall_p.h"
#include "buspendingcallwatcher_p.h"

void BusPendingCallWatcherPrivate::watch(const BusPendingCall& newCall)
{
    unwatch();
    call = newCall;
    watching = true;
    reported = false;
    call.d->watchers.append(q_ptr);
    if (call.d->finished)
        scheduleReport();
}

void BusPendingCallWatcherPrivate::unwatch()
{
    if (watching)
        call.d->watchers.removeAll(q_ptr);
    watching = false;
}

void BusPendingCallWatcherPrivate::scheduleReport()
{
    BusEvents::postOnce(q_ptr, &reportScheduled, [this] { report(); });
}

void BusPendingCallWatcherPrivate::report()
{
    Q_Q(BusPendingCallWatcher);
    if (!watching || reported || !call.isFinished())
        return;
    reported = true;
    emit q->finished();
}

BusPendingCallWatcher::BusPendingCallWatcher(QObject* parent)
    : QObject(parent), d_ptr(new BusPendingCallWatcherPrivate(this))
{
}

BusPendingCallWatcher::BusPendingCallWatcher(const BusPendingCall& call, QObject* parent)
    : BusPendingCallWatcher(parent)
{
    d_ptr->watch(call);
}

BusPendingCallWatcher::~BusPendingCallWatcher()
{
    d_ptr->unwatch();
}

BusPendingCallWatcher& BusPendingCallWatcher::operator=(const BusPendingCall& call)
{
    Q_D(BusPendingCallWatcher);
    // Assigning the call already watched keeps its one report.
    if (!d->watching || !(d->call == call))
        d->watch(call);
    return *this;
}

BusPendingCall BusPendingCallWatcher::call() const { return d_func()->call; }
bool BusPendingCallWatcher::isFinished() const { return d_func()->call.isFinished(); }
BusPendingCall::Error BusPendingCallWatcher::error() const { return d_func()->call.error(); }
QString BusPendingCallWatcher::errorString() const { return d_func()->call.errorString(); }
BusMessage BusPendingCallWatcher::reply() const { return d_func()->call.reply(); }
QList<BusMessage> BusPendingCallWatcher::replies() const { return d_func()->call.replies(); }
