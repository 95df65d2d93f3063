#ifndef SIMCLOCK_H
#define SIMCLOCK_H

#include <QElapsedTimer>

/// The simulated time of a device network, in microseconds since the clock
/// was made. It runs `scale()` times as fast as real time (1 by default), so
/// tests and demos can let motors travel faster than they would, while every
/// duration the simulator computes (a move, a frame on the line) stays exact
/// in simulated time. A scale of 0 stops the clock; `advance()` moves it on
/// by hand, for tests that want no waiting at all.
///
///     SimClock clock;
///     clock.setScale(10);                 // ten simulated seconds a second
///     int ms = clock.realMsFor(2000000);  // 200: two simulated seconds
class SimClock
{
public:
    explicit SimClock(double scale = 1.0);

    qint64 nowUs() const;
    double scale() const;
    /// Changes the pace from now on; negative values count as 0.
    void setScale(double scale);
    /// Moves the clock on by `us` microseconds of simulated time.
    void advance(qint64 us);
    /// Real milliseconds (rounded up) that `us` of simulated time take; -1
    /// while the clock is stopped.
    qint64 realMsFor(qint64 us) const;

private:
    QElapsedTimer m_real;
    qint64 m_baseUs = 0;  // simulated time when m_real was last restarted
    double m_scale = 1.0;
};

#endif // SIMCLOCK_H
