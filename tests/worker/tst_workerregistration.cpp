#include "fixtures.h"
#include "jobregistration.h"
#include "objectworker.h"
#include "qmlobjectworker.h"
#include "workerregistration.h"
#include "workqueue.h"

#include <QSignalSpy>
#include <QtTest>

// PingJob runs on every BaseObject and has its own task on DerivedObject;
// SpeedJob runs on DerivedObject only.
static const JobRegistration pingJobClass(PingJob::staticMetaObject);
static const JobRegistration speedJobClass(SpeedJob::staticMetaObject);
static const WorkerRegistration pingOnBase(BaseObject::staticMetaObject, PingJob::staticMetaObject,
                                           new ScriptCtor(QStringLiteral("BaseObject")));
static const WorkerRegistration pingOnDerived(DerivedObject::staticMetaObject, PingJob::staticMetaObject,
                                              new ScriptCtor(QStringLiteral("DerivedObject")));
static const WorkerRegistration speedOnDerived(DerivedObject::staticMetaObject, SpeedJob::staticMetaObject,
                                               new ScriptCtor(QStringLiteral("DerivedObject")));

class TestWorkerRegistration : public QObject
{
    Q_OBJECT

private:
    static QObject* newObject(const QString& className)
    {
        if (className == QLatin1String("LeafObject"))
            return new LeafObject;
        if (className == QLatin1String("DerivedObject"))
            return new DerivedObject;
        if (className == QLatin1String("BaseObject"))
            return new BaseObject;
        return new QObject;
    }

private Q_SLOTS:
    void resolution_data()
    {
        QTest::addColumn<QString>("job");
        QTest::addColumn<QString>("object");
        QTest::addColumn<QString>("binding"); // empty: no task

        QTest::newRow("base binding on base") << "PingJob" << "BaseObject" << "BaseObject";
        QTest::newRow("derived binding wins") << "PingJob" << "DerivedObject" << "DerivedObject";
        QTest::newRow("nearest base wins") << "PingJob" << "LeafObject" << "DerivedObject";
        QTest::newRow("derived-only job on leaf") << "SpeedJob" << "LeafObject" << "DerivedObject";
        QTest::newRow("derived-only job on base") << "SpeedJob" << "BaseObject" << "";
        QTest::newRow("unrelated object") << "PingJob" << "QObject" << "";
    }

    void resolution()
    {
        QFETCH(QString, job);
        QFETCH(QString, object);
        QFETCH(QString, binding);

        QScopedPointer<QObject> target(newObject(object));
        QCOMPARE(QString::fromLatin1(target->metaObject()->className()), object);
        QmlObjectWorker worker(target.data());
        QScopedPointer<Job> queued(JobRegistration::create(job));
        QVERIFY(queued);
        QSignalSpy finished(queued.data(), &Job::finished);
        const QString noTask = QStringLiteral("No task for %1 on %2").arg(job, object);
        if (binding.isEmpty())
            QTest::ignoreMessage(QtWarningMsg, qPrintable(QStringLiteral("[Worker]: ") + noTask));

        QVERIFY(worker.enqueue(qobject_cast<QmlJob*>(queued.data()), 3));
        QTRY_COMPARE(finished.count(), 1);
        QCOMPARE(queued->state(), Job::Finished);
        if (binding.isEmpty()) {
            QCOMPARE(queued->error(), Job::NoTaskError);
            QCOMPARE(queued->errorString(), noTask);
            QVERIFY(!queued->task());
            QVERIFY(!queued->isValid());
        } else {
            QCOMPARE(queued->error(), Job::NoError);
            QCOMPARE(queued->result().toString(), binding);
        }
        QCOMPARE(worker.jobNames().contains(job), !binding.isEmpty());
    }

    void jobsByName()
    {
        QCOMPARE(JobRegistration::names(), (QStringList{"PingJob", "SpeedJob"}));
        QObject parent;
        Job* job = JobRegistration::create(QStringLiteral("SpeedJob"), &parent);
        QVERIFY(qobject_cast<SpeedJob*>(job));
        QCOMPARE(job->parent(), &parent);
        QCOMPARE(job->name(), QStringLiteral("SpeedJob"));
        QTest::ignoreMessage(QtWarningMsg, "[JobRegistration]: unknown job class GetNothingJob");
        QVERIFY(!JobRegistration::create(QStringLiteral("GetNothingJob")));
    }

    void objectGoneMeansNoTask()
    {
        auto* target = new DerivedObject;
        ObjectWorker worker(target);
        PingJob job;
        delete target;
        QTest::ignoreMessage(QtWarningMsg, "[Worker]: No task for PingJob on ObjectWorker");
        QVERIFY(!worker.run(job)); // direct run, no queue
        QCOMPARE(job.state(), Job::Finished);
        QCOMPARE(job.error(), Job::NoTaskError);
    }
};

QTEST_GUILESS_MAIN(TestWorkerRegistration)
#include "tst_workerregistration.moc"
