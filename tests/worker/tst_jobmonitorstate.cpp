#include "fixtures.h"
#include "jobmonitorstate.h"
#include "workqueue.h"

#include <QFinalState>
#include <QSignalSpy>
#include <QStateMachine>
#include <QtTest>

class TestJobMonitorState : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { ScriptTask::log().clear(); }

    // The pattern of a task that runs one job per item: every entry of idle
    // queues the job once more until the items are used up.
    void idleLeftAndReentered()
    {
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
                QMetaObject::invokeMethod(this, &TestJobMonitorState::allDone, Qt::QueuedConnection);
        });
        monitor->addTransition(this, &TestJobMonitorState::allDone, done);
        QSignalSpy finished(&machine, &QStateMachine::finished);
        machine.start();
        QTRY_COMPARE(finished.count(), 1);
        QCOMPARE(ScriptTask::log().size(), 3);
        QCOMPARE(idleEntered.count(), 4);
        QCOMPARE(idleExited.count(), 4);
        QCOMPARE(runningEntered.count(), 3);
        QCOMPARE(monitorEntered.count(), 1); // the end of a run stays inside the monitor
    }

    void otherWorkersIgnoredWhenAsked()
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

Q_SIGNALS:
    void allDone();
};

QTEST_GUILESS_MAIN(TestJobMonitorState)
#include "tst_jobmonitorstate.moc"
