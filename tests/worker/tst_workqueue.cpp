#include "fixtures.h"
#include "workqueue.h"

#include <QPointer>
#include <QSignalSpy>
#include <QtTest>

class TestWorkQueue : public QObject
{
    Q_OBJECT

private:
    PingJob* newJob(const QString& name, const QString& mode = QString())
    {
        auto* job = new PingJob(m_owner.data());
        job->setObjectName(name);
        job->setProperty("mode", mode);
        return job;
    }

    QScopedPointer<QObject> m_owner;

private Q_SLOTS:
    void init()
    {
        m_owner.reset(new QObject);
        ScriptTask::log().clear();
    }

    void priorityOrder_data()
    {
        QTest::addColumn<QList<uint>>("priorities");
        QTest::addColumn<QStringList>("order");
        QTest::addColumn<int>("failing"); // its task fails; the jobs after it still run
        QTest::newRow("equal: first in first out") << QList<uint>{1, 1, 1} << QStringList{"j0", "j1", "j2"} << -1;
        QTest::newRow("ascending") << QList<uint>{0, 1, 2} << QStringList{"j2", "j1", "j0"} << 2;
        QTest::newRow("mixed") << QList<uint>{1, 5, 1, 5, 3} << QStringList{"j1", "j3", "j4", "j0", "j2"} << 4;
    }

    void priorityOrder()
    {
        QFETCH(QList<uint>, priorities);
        QFETCH(QStringList, order);
        QFETCH(int, failing);
        ScriptWorker worker;
        WorkQueue queue(&worker, false);
        QList<PingJob*> jobs;
        for (int i = 0; i < priorities.size(); ++i) {
            jobs << newJob(QStringLiteral("j%1").arg(i), i == failing ? QStringLiteral("fail") : QString());
            QVERIFY(queue.enqueue(*jobs.last(), priorities.at(i)));
        }
        QCOMPARE(queue.count(), priorities.size());
        queue.start();
        QVERIFY(ScriptTask::log().isEmpty()); // starts from the event loop only
        QTRY_COMPARE(ScriptTask::log(), order);
        QCOMPARE(queue.count(), 0);
        for (int i = 0; i < jobs.size(); ++i) {
            QTRY_COMPARE(jobs.at(i)->state(), Job::Finished);
            QCOMPARE(jobs.at(i)->error(), i == failing ? Job::TaskFailedError : Job::NoError);
        }
    }

    void nextJobStartsFromEventLoop()
    {
        ScriptWorker worker;
        PingJob* first = newJob("first");
        PingJob* second = newJob("second");
        QList<Job::State> secondStateSeen;
        connect(first, &Job::finished, this, [&] { secondStateSeen << second->state(); });
        QVERIFY(worker.queue()->enqueue(*first, 0));
        QVERIFY(worker.queue()->enqueue(*second, 0));
        QTRY_COMPARE(second->state(), Job::Finished);
        QCOMPARE(secondStateSeen, QList<Job::State>{Job::Queued});
    }

    void reuseAfterFinish()
    {
        ScriptWorker worker;
        PingJob* job = newJob("reused", "fail");
        QSignalSpy states(job, &Job::stateChanged);
        QSignalSpy finished(job, &Job::finished);

        QVERIFY(worker.queue()->enqueue(*job, 0));
        QTRY_COMPARE(finished.count(), 1);
        QCOMPARE(job->error(), Job::TaskFailedError);
        QCOMPARE(job->errorString(), QStringLiteral("device said no"));
        QVERIFY(job->task()); // stays attached after the end

        job->setProperty("mode", QString());
        QVERIFY(worker.queue()->enqueue(*job, 0));
        QCOMPARE(job->state(), Job::Queued);
        QCOMPARE(job->error(), Job::NoError);
        QVERIFY(job->errorString().isEmpty());
        QVERIFY(!job->task()); // the old run's task is gone
        QTRY_COMPARE(finished.count(), 2);
        QCOMPARE(job->error(), Job::NoError);
        QCOMPARE(job->result(), QVariant(QStringLiteral("2")));
        QCOMPARE(finished.at(1).at(0).value<Job::Error>(), Job::NoError);

        QList<Job::State> seen;
        for (const QList<QVariant>& args : qAsConst(states))
            seen << args.at(0).value<Job::State>();
        const QList<Job::State> oneRun{Job::Queued, Job::Running, Job::Finished};
        QCOMPARE(seen, oneRun + oneRun);
    }

    void enqueueRefusesActiveJob()
    {
        ScriptWorker worker;
        ScriptWorker other;
        PingJob* job = newJob("busy", "wait");
        QVERIFY(worker.queue()->enqueue(*job, 0));
        QVERIFY(!worker.queue()->enqueue(*job, 9));
        QVERIFY(!other.queue()->enqueue(*job, 0));
        QTRY_COMPARE(job->state(), Job::Running);
        QVERIFY(!other.queue()->enqueue(*job, 0));
        QVERIFY(!other.queue()->dequeue(*job));
        QVERIFY(!job->start());
        QCOMPARE(worker.built, 1);
    }

    void dequeueAndAbortEndOnce()
    {
        ScriptWorker worker;
        PingJob* running = newJob("running", "wait");
        PingJob* waiting = newJob("waiting");
        QSignalSpy runningEnd(running, &Job::finished);
        QSignalSpy waitingEnd(waiting, &Job::finished);
        QVERIFY(worker.queue()->enqueue(*running, 0));
        QVERIFY(worker.queue()->enqueue(*waiting, 0));
        QTRY_COMPARE(running->state(), Job::Running);

        QVERIFY(worker.queue()->dequeue(*waiting));
        QCOMPARE(waiting->state(), Job::Idle);
        QCOMPARE(waiting->error(), Job::DequeuedError);
        QCOMPARE(waiting->errorString(), QStringLiteral("Job dequeued"));
        QVERIFY(!worker.queue()->dequeue(*waiting));

        ScriptTask* task = scriptTask(*running);
        QVERIFY(worker.queue()->dequeue(*running));
        QCOMPARE(running->state(), Job::Finished);
        QCOMPARE(running->error(), Job::AbortedError);
        QCOMPARE(running->errorString(), QStringLiteral("Job aborted"));
        QCOMPARE(task->aborts, 1);
        QCOMPARE(task->error(), Job::AbortedError);

        PingJob* sentinel = newJob("sentinel");
        QVERIFY(worker.queue()->enqueue(*sentinel, 0));
        QTRY_COMPARE(sentinel->state(), Job::Finished);
        QCOMPARE(runningEnd.count(), 1);
        QCOMPARE(waitingEnd.count(), 1);
        QCOMPARE(runningEnd.at(0).at(0).value<Job::Error>(), Job::AbortedError);
        QCOMPARE(waitingEnd.at(0).at(0).value<Job::Error>(), Job::DequeuedError);
        QCOMPARE(ScriptTask::log(), (QStringList{"running", "sentinel"}));
    }

    void destroyedJobsAndTasks()
    {
        ScriptWorker worker;
        PingJob* a = newJob("a", "wait");
        PingJob* b = newJob("b");
        PingJob* c = newJob("c", "wait");
        PingJob* d = newJob("d");
        QSignalSpy aEnd(a, &Job::finished);
        for (Job* job : {static_cast<Job*>(a), static_cast<Job*>(b), static_cast<Job*>(c), static_cast<Job*>(d)})
            QVERIFY(worker.queue()->enqueue(*job, 0));
        QTRY_COMPARE(a->state(), Job::Running);

        delete b; // waiting: forgotten
        delete a->task(); // running: the job ends with an error
        QCOMPARE(aEnd.count(), 1);
        QCOMPARE(a->error(), Job::AbortedError);
        QCOMPARE(a->errorString(), QStringLiteral("Task destroyed while running"));
        QVERIFY(!a->task());

        QTRY_COMPARE(c->state(), Job::Running);
        delete c; // running: the queue goes on
        QTRY_COMPARE(d->state(), Job::Finished);
        QCOMPARE(ScriptTask::log(), (QStringList{"a", "c", "d"}));
        QCOMPARE(aEnd.count(), 1);
    }

    void destroyedQueueEndsItsJobs()
    {
        ScriptWorker worker;
        auto* queue = new WorkQueue(&worker, true);
        PingJob* running = newJob("running", "wait");
        PingJob* waiting = newJob("waiting");
        QVERIFY(queue->enqueue(*running, 0));
        QVERIFY(queue->enqueue(*waiting, 0));
        QTRY_COMPARE(running->state(), Job::Running);
        delete queue;
        QCOMPARE(running->error(), Job::AbortedError);
        QCOMPARE(waiting->error(), Job::DequeuedError);
        QVERIFY(worker.queue()->enqueue(*waiting, 0));
        QTRY_COMPARE(waiting->state(), Job::Finished);
    }

    // A task that chains direct tasks on an inner job, restarting it from its
    // stateChanged() while the ending task is still on the stack.
    void directStartChain()
    {
        Job inner;
        QSignalSpy finished(&inner, &Job::finished);
        QStringList results;
        int started = 0;
        QVERIFY(!inner.start()); // nothing attached
        auto startNext = [&] {
            QVERIFY(inner.attach(new ScriptTask(inner, QStringLiteral("t%1").arg(started++))));
            QVERIFY(inner.start());
        };
        connect(&inner, &Job::stateChanged, this, [&](Job::State state) {
            if (state != Job::Finished)
                return;
            results << inner.result().toString();
            if (started < 3)
                startNext();
        });
        startNext();
        QCOMPARE(results, (QStringList{"t0", "t1", "t2"}));
        QCOMPARE(finished.count(), 3);
        QPointer<Task> last = inner.task();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(last); // the attached task survives, the replaced ones are gone
        QCOMPARE(inner.findChildren<Task*>().size(), 0);
    }
};

QTEST_GUILESS_MAIN(TestWorkQueue)
#include "tst_workqueue.moc"
