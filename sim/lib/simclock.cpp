#include "simclock.h"

#include <cmath>

SimClock::SimClock(double scale)
    : m_scale(scale > 0 ? scale : 0)
{
    m_real.start();
}

qint64 SimClock::nowUs() const
{
    return m_baseUs + qint64(std::floor(double(m_real.nsecsElapsed()) / 1000.0 * m_scale));
}

double SimClock::scale() const
{
    return m_scale;
}

void SimClock::setScale(double scale)
{
    m_baseUs = nowUs();
    m_real.restart();
    m_scale = scale > 0 ? scale : 0;
}

void SimClock::advance(qint64 us)
{
    if (us > 0)
        m_baseUs += us;
}

qint64 SimClock::realMsFor(qint64 us) const
{
    if (m_scale <= 0)
        return -1;
    return qint64(std::ceil(double(qMax<qint64>(0, us)) / m_scale / 1000.0));
}
