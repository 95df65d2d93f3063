#include "buspendingcall.h"
#include "bus_p.h"
#include "buspendingcall_p.h"
#include "buspendingcallwatcher_p.h"

#include <QCoreApplication>

BusPendingCallPrivate::BusPendingCallPrivate(const BusMessage& request, BusPrivate* engine)
    : request(request), engine(engine)
{
}

QString BusPendingCallPrivate::textFor(BusPendingCall::Error code)
{
    switch (code) {
    case BusPendingCall::NoError: return QString();
    case BusPendingCall::OtherError: return QCoreApplication::translate("BusPendingCall", "bus error");
    case BusPendingCall::TimeoutError: return QCoreApplication::translate("BusPendingCall", "timeout");
    case BusPendingCall::WriteError: return QCoreApplication::translate("BusPendingCall", "write failure");
    case BusPendingCall::BusNotAvailableError:
        return QCoreApplication::translate("BusPendingCall", "bus not available");
    case BusPendingCall::CancelledError: return QCoreApplication::translate("BusPendingCall", "cancelled");
    }
    return QString();
}

bool BusPendingCallPrivate::finish(BusPendingCall::Error code, const QString& text)
{
    if (finished)
        return false;
    finished = true;
    engine = nullptr;
    error = code;
    errorString = text.isEmpty() ? textFor(code) : text;
    for (BusPendingCallWatcher* watcher : qAsConst(watchers))
        watcher->d_func()->scheduleReport();
    return true;
}

static BusPendingCallPrivate* finishedPrivate(BusPendingCall::Error error, const QString& text)
{
    auto d = new BusPendingCallPrivate;
    d->finish(error, text);
    return d;
}

BusPendingCall::BusPendingCall()
    : d(finishedPrivate(BusNotAvailableError, QString()))
{
}

BusPendingCall::BusPendingCall(BusPendingCallPrivate* dd) : d(dd) {}
BusPendingCall::BusPendingCall(const BusPendingCall& other) = default;
BusPendingCall& BusPendingCall::operator=(const BusPendingCall& other) = default;
BusPendingCall::~BusPendingCall() = default;

BusPendingCall BusPendingCall::fromError(Error error, const QString& text)
{
    return BusPendingCall(finishedPrivate(error, text));
}

bool BusPendingCall::isFinished() const { return d->finished; }
BusPendingCall::Error BusPendingCall::error() const { return d->error; }
QString BusPendingCall::errorString() const { return d->errorString; }
BusMessage BusPendingCall::request() const { return d->request; }
BusMessage BusPendingCall::reply() const { return d->replies.value(0); }
QList<BusMessage> BusPendingCall::replies() const { return d->replies; }
int BusPendingCall::retransmissions() const { return d->retransmissions; }

bool BusPendingCall::cancel()
{
    if (d->finished)
        return false;
    if (d->engine)
        return d->engine->cancel(d);
    return d->finish(CancelledError);
}
