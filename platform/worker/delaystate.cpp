#include "delaystate.h"

#include <QTimer>

class DelayStatePrivate
{
public:
    QTimer timer;
};

DelayState::DelayState(int delayMs, QState* parent)
    : QState(parent)
    , d_ptr(new DelayStatePrivate)
{
    Q_D(DelayState);
    d->timer.setSingleShot(true);
    d->timer.setTimerType(Qt::PreciseTimer); // never before the delay is over
    setDelay(delayMs);
    connect(&d->timer, &QTimer::timeout, this, &DelayState::elapsed);
}

DelayState::~DelayState() = default;

int DelayState::delay() const
{
    return d_func()->timer.interval();
}

void DelayState::setDelay(int delayMs)
{
    d_func()->timer.setInterval(qMax(0, delayMs));
}

void DelayState::onEntry(QEvent* event)
{
    QState::onEntry(event);
    d_func()->timer.start();
}

void DelayState::onExit(QEvent* event)
{
    d_func()->timer.stop();
    QState::onExit(event);
}
