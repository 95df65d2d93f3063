#ifndef DELAYSTATE_H
#define DELAYSTATE_H

#include <QScopedPointer>
#include <QState>

class DelayStatePrivate;

/// A state that waits: `delay()` milliseconds after it is entered it emits
/// `elapsed()`, unless it was left before. Leave it on that signal:
///
///     auto* pause = new DelayState(200, root);
///     pause->addTransition(pause, &DelayState::elapsed, sendAgain);
///
/// The wait is a timer on the event loop; nothing blocks. A delay of 0
/// elapses on the next turn of the loop, never inside the entry itself.
class DelayState : public QState
{
    Q_OBJECT
    Q_PROPERTY(int delay READ delay WRITE setDelay)

public:
    explicit DelayState(int delayMs = 0, QState* parent = nullptr);
    ~DelayState() override;

    int delay() const;
    /// Milliseconds, negative taken as 0; applies from the next entry.
    void setDelay(int delayMs);

Q_SIGNALS:
    void elapsed();

protected:
    void onEntry(QEvent* event) override;
    void onExit(QEvent* event) override;

private:
    QScopedPointer<DelayStatePrivate> d_ptr;
    Q_DECLARE_PRIVATE(DelayState)
    Q_DISABLE_COPY(DelayState)
};

#endif // DELAYSTATE_H
