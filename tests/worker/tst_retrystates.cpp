// The states tasks are built of: which failures are tried again, how often,
// the wait between tries, giving up with the last error; and the job
// monitor's idle and running states.
#include "delaystate.h"
#include "errorstate.h"
#include "fixtures.h"
#include "jobmonitorstate.h"
#include "stateretry.h"
#include "workqueue.h"

#include <QFinalState>
#include <QSignalSpy>
#include <QStateMachine>
#include <QtTest>

namespace {

/// Ends each run as the next entry of a shared script says: "ok", "transient"
/// (as a timeout does) or "permanent" (as a NACK does).
class OutcomeTask : public Task
{
public:
    OutcomeTask(const Job& job, QStringList* script)
        : Task(job)
        , m_script(script)
    {
    }
    void run() override
    {
        setState(Job::Running);
        const QString outcome = m_script->isEmpty() ? QStringLiteral("ok") : m_script->takeFirst();
        if (outcome == QLatin1String("transient"))
            failTransient(QStringLiteral("Timeout error"));
        else if (outcome == QLatin1String("permanent"))
            fail(QStringLiteral("Nack(busy)"));
        else
            setState(Job::Finished);
    }

private:
    QStringList* m_script;
};

} // namespace

class tst_RetryStates : public QObject
{
    Q_OBJECT

private slots:
    void retries_data();
    void retries();
    void delayBetweenTries();
    void reenteredStartsAgain();
    void monitorIdleLeftAndReentered();
    void monitorIgnoresOtherWorkersWhenAsked();

signals:
    void allDone();
};

void tst_RetryStates::retries_data()
{
    QTest::addColumn<QStringList>("outcomes");  // of the tries, in order
    QTest::addColumn<int>("maxRetries");
    QTest::addColumn<int>("tries");
    QTest::addColumn<QString>("error");         // empty: the work succeeded

    const QString timeout = QStringLiteral("Timeout error");
    const QString nack = QStringLiteral("Nack(busy)");
    QTest::newRow("first try") << QStringList{"ok"} << 2 << 1 << QString();
    QTest::newRow("timeout then ok") << QStringList{"transient", "ok"} << 2 << 2 << QString();
    QTest::newRow("last retry succeeds") << QStringList{"transient", "transient", "ok"} << 2 << 3 << QString();
    QTest::newRow("gives up after the retries") << QStringList{"transient", "transient", "transient", "ok"} << 2
                                               << 3 << timeout;
    QTest::newRow("no retries") << QStringList{"transient", "ok"} << 0 << 1 << timeout;
    QTest::newRow("nack never retried") << QStringList{"permanent", "ok"} << 5 << 1 << nack;
    QTest::newRow("nack after a timeout") << QStringList{"transient", "permanent", "ok"} << 5 << 2 << nack;
    QTest::newRow("last error wins") << QStringList{"permanent"} << 0 << 1 << nack;
}

void tst_RetryStates::retries()
{
    QFETCH(QStringList, outcomes);
    QFETCH(int, maxRetries);
    QFETCH(int, tries);
    QFETCH(QString, error);

    // A job run again by the states, as the tool does it.
    QStringList script = outcomes;
    Job job;
    QStateMachine machine;
    auto* retry = new StateRetry(maxRetries, 1, &machine);
    auto* done = new QFinalState(&machine);
    auto* gaveUp = new QFinalState(&machine);
    machine.setInitialState(retry);
    retry->addTransition(retry, &QState::finished, done);
    retry->addTransition(retry, &StateRetry::failed, gaveUp);
    connect(retry, &StateRetry::attempt, &job, [&] {
        job.attach(new OutcomeTask(job, &script));
        job.start();
    });
    connect(&job, &Job::finished, retry, [&] { retry->reportJob(job); });
    QSignalSpy attempts(retry, &StateRetry::attempt);
    QSignalSpy failed(retry, &StateRetry::failed);
    QSignalSpy ended(&machine, &QStateMachine::finished);

    machine.start();
    QTRY_COMPARE(ended.count(), 1);
    QCOMPARE(retry->tries(), tries);
    QCOMPARE(attempts.count(), tries);
    QCOMPARE(attempts.last().at(0).toInt(), tries);
    QCOMPARE(retry->errorString(), error);
    QCOMPARE(machine.configuration().contains(gaveUp), !error.isEmpty());
    QCOMPARE(failed.count(), error.isEmpty() ? 0 : 1);
    if (!error.isEmpty()) {
        QCOMPARE(failed.first().at(0).toString(), error);
        QCOMPARE(retry->errorState()->errorString(), error);
    }
}

void tst_RetryStates::delayBetweenTries()
{
    QStateMachine machine;
    auto* retry = new StateRetry(1, 40, &machine);
    machine.setInitialState(retry);
    QSignalSpy attempts(retry, &StateRetry::attempt);
    machine.start();
    QTRY_COMPARE(attempts.count(), 1);

    // The next try waits in the delay state; reports meanwhile are not a try's.
    retry->failTry(QStringLiteral("Timeout error"), true);
    QTRY_VERIFY(machine.configuration().contains(retry->delayState()));
    retry->succeed();
    QCOMPARE(attempts.count(), 1);
    QTRY_COMPARE(attempts.count(), 2);
    QVERIFY(!machine.configuration().contains(retry->delayState()));
    retry->succeed();
    QTRY_VERIFY(!machine.configuration().contains(retry->delayState()));
    QCOMPARE(retry->errorString(), QString());
}

void tst_RetryStates::reenteredStartsAgain()
{
    // A machine that goes back to the retry state (the next block of an
    // update) gets its full count of tries again.
    QStateMachine machine;
    auto* retry = new StateRetry(1, 0, &machine);
    auto* next = new QState(&machine);
    machine.setInitialState(retry);
    retry->addTransition(retry, &QState::finished, next);
    next->addTransition(next, &QState::entered, retry);
    QList<int> seen;
    connect(retry, &StateRetry::attempt, this, [&](int n) {
        seen.append(n);
        if (seen.size() == 4)
            return machine.stop();
        QTimer::singleShot(0, retry, [retry, n] {
            n == 1 ? retry->failTry(QStringLiteral("Timeout error"), true) : retry->succeed();
        });
    });
    machine.start();
    QTRY_COMPARE(seen.size(), 4);
    QCOMPARE(seen, (QList<int>{1, 2, 1, 2}));
}

// The pattern of a task that runs one job per item: every entry of idle
// queues the job once more until the items are used up.
void tst_RetryStates::monitorIdleLeftAndReentered()
{
    ScriptTask::log().clear();
    ScriptWorker worker;
    PingJob job;
    job.setObjectName(QStringLiteral("item"));
    QStateMachine machine;
    auto* monitor = new JobMonitorState(job, &worker, false, &machine);
    auto* done = new QFinalState(&machine);
    machine.setInitialState(monitor);
    QSignalSpy idleEntered(monitor->idleState(), &QState::entered);
    QSignalSpy idleExited(monitor->idleState(), &QState::exited);
    QSignalSpy runningEntered(monitor->runningState(), &QState::entered);
    QSignalSpy monitorEntered(monitor, &QState::entered);

    int items = 3;
    connect(monitor->idleState(), &QState::entered, this, [&] {
        if (items-- > 0)
            QVERIFY(worker.queue()->enqueue(job, 0));
        else
            QMetaObject::invokeMethod(this, &tst_RetryStates::allDone, Qt::QueuedConnection);
    });
    monitor->addTransition(this, &tst_RetryStates::allDone, done);
    QSignalSpy finished(&machine, &QStateMachine::finished);
    machine.start();
    QTRY_COMPARE(finished.count(), 1);
    QCOMPARE(ScriptTask::log().size(), 3);
    QCOMPARE(idleEntered.count(), 4);
    QCOMPARE(idleExited.count(), 4);
    QCOMPARE(runningEntered.count(), 3);
    QCOMPARE(monitorEntered.count(), 1); // the end of a run stays inside the monitor
}

void tst_RetryStates::monitorIgnoresOtherWorkersWhenAsked()
{
    ScriptWorker mine;
    ScriptWorker other;
    PingJob job;
    job.setProperty("mode", QStringLiteral("wait"));
    QStateMachine machine;
    auto* monitor = new JobMonitorState(job, &mine, true, &machine);
    machine.setInitialState(monitor);
    machine.start();
    QTRY_VERIFY(monitor->idleState()->active());

    QVERIFY(other.queue()->enqueue(job, 0));
    QTRY_COMPARE(job.state(), Job::Running);
    QCoreApplication::processEvents();
    QVERIFY(monitor->idleState()->active());
    scriptTask(job)->finishWith(QVariant());

    QVERIFY(mine.queue()->enqueue(job, 0));
    QTRY_VERIFY(monitor->runningState()->active());
    scriptTask(job)->finishWith(QVariant());
    QTRY_VERIFY(monitor->idleState()->active());
}

QTEST_GUILESS_MAIN(tst_RetryStates)
#include "tst_retrystates.moc"
