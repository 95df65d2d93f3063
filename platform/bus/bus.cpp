#include "bus.h"
#include "bus_p.h"
#include "busevents_p.h"
#include "bushealthmodel.h"

#include <QDebug>
#include <QTimer>

QString BusPrivate::logPrefix() const
{
    return QStringLiteral("[%1]:").arg(QLatin1String(q_ptr->metaObject()->className()));
}

void BusPrivate::schedulePump()
{
    BusEvents::postOnce(q_ptr, &pumpScheduled, [this] { pump(); });
}

void BusPrivate::pump()
{
    Q_Q(Bus);
    // A transport may answer from inside writeFrame() (an in-process peer):
    // the call is current before the write, and the loop goes on when that
    // answer has already ended it.
    while (!current && !queue.isEmpty()) {
        const CallPtr call = queue.dequeue();
        if (call->refused || !open) {
            call->finish(BusPendingCall::BusNotAvailableError);
            continue;
        }
        const QString refused = q->refusal(call->request);
        if (!refused.isEmpty()) {
            qWarning().noquote() << logPrefix() << refused;
            call->finish(BusPendingCall::OtherError, refused);
            continue;
        }
        current = call;
        call->broadcast = q->isBroadcast(call->request);
        q->stampRequest(call->request);
        currentNode = call->broadcast ? -1 : q->nodeOf(call->request, true);
        if (currentNode >= 0)
            health->recordRequest(currentNode);
        if (!writeCurrent())
            finishCurrent(BusPendingCall::WriteError);
    }
}

bool BusPrivate::writeCurrent()
{
    Q_Q(Bus);
    const CallPtr call = current;
    windowClock.start();
    timer->start(call->broadcast ? broadcastSpan() : timeout);
    emit q->messageSent(call->request);
    return current != call || q->writeFrame(call->request);
}

void BusPrivate::countUnmatched(const BusMessage& frame)
{
    Q_Q(Bus);
    ++unmatched;
    const qint64 node = q->nodeOf(frame, false);
    if (node >= 0)
        health->recordInvalid(node);
    // A hostile or confused sender may flood the line: one line a second at most.
    if (!unmatchedLog->isActive()) {
        logUnmatched();
        unmatchedLog->start();
    }
    emit q->messageUnmatched(frame);
}

void BusPrivate::logUnmatched()
{
    const quint64 fresh = unmatched - unmatchedLogged;
    if (fresh == 0)
        return;
    unmatchedLogged = unmatched;
    qDebug().noquote() << logPrefix() << fresh << "unmatched frame(s) dropped," << unmatched
                       << "since the bus opened";
}

void BusPrivate::frameReceived(const BusMessage& frame)
{
    Q_Q(Bus);
    emit q->messageReceived(frame);
    // A slot of messageReceived may have closed the bus or cancelled the call.
    if (!current || !q->isReplyTo(current->request, frame)) {
        if (!open)
            return;
        if (answeredClock.isValid() && answeredClock.elapsed() < timeout && frame != answeredReply
            && q->isReplyTo(answeredRequest, frame)) {
            // Two answers to one request: one of them is not the node's.
            qWarning().noquote() << logPrefix() << "node" << q->nodeName(q->nodeOf(frame, false))
                                 << "gave one request two different answers:" << answeredReply.data().toHex(' ')
                                 << "and" << frame.data().toHex(' ');
        }
        countUnmatched(frame);
        return;
    }
    current->replies.append(frame);
    if (!current->broadcast) {
        answeredRequest = current->request;
        answeredReply = frame;
        answeredClock.start();
        if (currentNode >= 0)
            health->recordReply(currentNode, int(windowClock.elapsed()));
        finishCurrent(BusPendingCall::NoError);
    }
    else if (broadcastQuietTime > 0)
        timer->start(broadcastSpan());
}

int BusPrivate::broadcastSpan() const
{
    const int rest = qMax(0, broadcastWindow - int(windowClock.elapsed()));
    return broadcastQuietTime > 0 ? qMin(broadcastQuietTime, rest) : rest;
}

void BusPrivate::onTimer()
{
    Q_Q(Bus);
    if (!current)
        return;
    if (current->broadcast)
        return finishCurrent(BusPendingCall::NoError);
    if (current->retransmissions < repeats) {
        ++current->retransmissions;
        ++retransmissions;
        if (currentNode >= 0)
            health->recordRetransmission(currentNode);
        if (!writeCurrent())
            finishCurrent(BusPendingCall::WriteError);
        return;
    }
    if (currentNode >= 0)
        health->recordTimeout(currentNode);
    finishCurrent(BusPendingCall::TimeoutError);
}

void BusPrivate::finishCurrent(BusPendingCall::Error code, const QString& text)
{
    if (!current)
        return;
    timer->stop();
    const CallPtr call = current;
    current.reset();
    if (!call->broadcast)
        q_ptr->requestEnded(call->request, code == BusPendingCall::NoError);
    call->finish(code, text);
    if (!queue.isEmpty())
        schedulePump();
}

void BusPrivate::finishAll(BusPendingCall::Error code)
{
    if (timer)
        timer->stop();
    QList<CallPtr> calls;
    if (current)
        calls.append(current);
    calls.append(queue);
    current.reset();
    queue.clear();
    for (const CallPtr& call : qAsConst(calls))
        call->finish(code);
}

bool BusPrivate::cancel(const CallPtr& call)
{
    if (call == current) {
        finishCurrent(BusPendingCall::CancelledError);
        return true;
    }
    if (!queue.removeOne(call))
        return false;
    return call->finish(BusPendingCall::CancelledError);
}

Bus::Bus(QObject* parent) : Bus(*new BusPrivate, parent) {}

Bus::Bus(BusPrivate& dd, QObject* parent)
    : QObject(parent), d_ptr(&dd)
{
    Q_D(Bus);
    d->q_ptr = this;
    d->timer = new QTimer(this);
    d->timer->setSingleShot(true);
    connect(d->timer, &QTimer::timeout, this, [d] { d->onTimer(); });
    d->unmatchedLog = new QTimer(this);
    d->unmatchedLog->setSingleShot(true);
    d->unmatchedLog->setInterval(1000);
    connect(d->unmatchedLog, &QTimer::timeout, this, [d] { d->logUnmatched(); });
    d->health = new BusHealthModel(this);
    d->health->setNodeNames([this](qint64 node) { return nodeName(node); });
}

Bus::~Bus()
{
    d_func()->finishAll(BusPendingCall::BusNotAvailableError);
}

bool Bus::open()
{
    setOpen(true);
    return true;
}

void Bus::close()
{
    setOpen(false);
}

bool Bus::isOpen() const { return d_func()->open; }
QString Bus::errorString() const { return d_func()->errorString; }
QIODevice* Bus::ioDevice() const { return nullptr; }

BusPendingCall Bus::call(const BusMessage& message)
{
    Q_D(Bus);
    BusPrivate::CallPtr call(new BusPendingCallPrivate(message, d));
    call->refused = !d->open;
    d->queue.enqueue(call);
    if (!d->current)
        d->schedulePump();
    return BusPendingCall(call.data());
}

int Bus::timeout() const { return d_func()->timeout; }
void Bus::setTimeout(int ms) { d_func()->timeout = qMax(0, ms); }
int Bus::broadcastWindow() const { return d_func()->broadcastWindow; }
void Bus::setBroadcastWindow(int ms) { d_func()->broadcastWindow = qMax(0, ms); }
int Bus::broadcastQuietTime() const { return d_func()->broadcastQuietTime; }
void Bus::setBroadcastQuietTime(int ms) { d_func()->broadcastQuietTime = qMax(0, ms); }

int Bus::repeats() const { return d_func()->repeats; }
void Bus::setRepeats(int count) { d_func()->repeats = qBound(0, count, 5); }
quint64 Bus::unmatchedCount() const { return d_func()->unmatched; }
quint64 Bus::retransmissionCount() const { return d_func()->retransmissions; }
BusHealthModel* Bus::health() const { return d_func()->health; }

QString Bus::refusal(const BusMessage&) const { return QString(); }
void Bus::stampRequest(BusMessage&) {}
void Bus::requestEnded(const BusMessage&, bool) {}
qint64 Bus::nodeOf(const BusMessage&, bool) const { return -1; }
QString Bus::nodeName(qint64 node) const { return QString::number(node); }

int Bus::pendingCount() const
{
    Q_D(const Bus);
    return d->queue.size() + (d->current ? 1 : 0);
}

void Bus::frameReceived(const BusMessage& frame)
{
    d_func()->frameReceived(frame);
}

void Bus::setErrorString(const QString& text)
{
    d_func()->errorString = text;
}

void Bus::setOpen(bool open)
{
    Q_D(Bus);
    if (d->open == open)
        return;
    d->open = open;
    if (open) {
        d->unmatched = d->unmatchedLogged = d->retransmissions = 0;
        d->health->clear();
        emit opened();
        return;
    }
    d->finishAll(BusPendingCall::BusNotAvailableError);
    d->unmatchedLog->stop();
    d->logUnmatched();
    emit closed();
}
