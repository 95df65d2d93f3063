#ifndef STATERETRY_H
#define STATERETRY_H

#include <QScopedPointer>
#include <QState>

class DelayState;
class ErrorState;
class Job;
class StateRetryPrivate;

/// A state that tries one piece of work (a request, a job) up to
/// `1 + maxRetries()` times, again only after a failure that may pass.
///
/// Entering the state starts try 1: `attempt(1)` is emitted and the owner
/// starts the work from it. The owner reports the end of each try, once:
/// - `succeed()`: the state's final child is entered and the state emits
///   `finished()`;
/// - `failTry(text, true)`, a transient failure (a timeout, a bus that
///   failed): with retries left, the `delayState()` child waits `delay()`
///   milliseconds, then `attempt(n + 1)`; with none left, as below;
/// - `failTry(text, false)`, a failure another try would only repeat (a
///   NACK, an unexpected reply), or the last try failed: the `errorState()`
///   child takes `text`, the last error, and `failed(text)` is emitted.
/// Reports that come when no try is under way are ignored. Every entry of
/// the state starts again at try 1.
///
///     auto* retry = new StateRetry(2, 100, root);      // three tries at most
///     connect(retry, &StateRetry::attempt, this, [=] { queue->enqueue(*job, 10); });
///     connect(job, &Job::finished, retry, [=] { retry->reportJob(*job); });
///     retry->addTransition(retry, &QState::finished, next);
///     retry->addTransition(retry, &StateRetry::failed, giveUp);
///
/// A request rather than a job: start it on `attempt()` and report its end,
/// transient for the call errors another try may not meet:
///
///     connect(&watcher, &BusPendingCallWatcher::finished, retry, [&] {
///         const auto e = watcher.error();
///         if (e == BusPendingCall::NoError) retry->succeed();
///         else retry->failTry(text(e), e == BusPendingCall::TimeoutError || e == BusPendingCall::WriteError
///                                      || e == BusPendingCall::BusNotAvailableError);
///     });
class StateRetry : public QState
{
    Q_OBJECT
    Q_PROPERTY(int maxRetries READ maxRetries WRITE setMaxRetries)
    Q_PROPERTY(int delay READ delay WRITE setDelay)
    Q_PROPERTY(int tries READ tries)

public:
    explicit StateRetry(int maxRetries = 2, int delayMs = 0, QState* parent = nullptr);
    ~StateRetry() override;

    /// Tries after the first one; negative taken as 0.
    int maxRetries() const;
    void setMaxRetries(int retries);
    /// Milliseconds between a failed try and the next.
    int delay() const;
    void setDelay(int delayMs);
    /// Tries started since the state was last entered.
    int tries() const;
    /// The last failure's text; empty after a success.
    QString errorString() const;

    DelayState* delayState() const;
    ErrorState* errorState() const;

public Q_SLOTS:
    void succeed();
    void failTry(const QString& text, bool transient);
    /// The end of `job`'s run as the end of the try: a success without
    /// error, else a failure, transient as `Job::isTransientError()` says.
    void reportJob(const Job& job);

Q_SIGNALS:
    /// Start try number `tryNumber` (from 1) now.
    void attempt(int tryNumber);
    /// Given up, with the last error.
    void failed(const QString& text);

    // Internal: the moves between the children.
    void trySucceeded(QPrivateSignal);
    void retryDue(QPrivateSignal);
    void givenUp(QPrivateSignal);

private:
    QScopedPointer<StateRetryPrivate> d_ptr;
    Q_DECLARE_PRIVATE(StateRetry)
    Q_DISABLE_COPY(StateRetry)
};

#endif // STATERETRY_H
