#include "devicerunner.h"

#include "bus.h"
#include "busfactory.h"
#include "bushealthmodel.h"
#include "devicetask.h"
#include "groupfactory.h"
#include "grouptask.h"
#include "groupworker.h"
#include "objectfactory.h"
#include "output.h"
#include "qmljob.h"
#include "vrnconfigcli.h"
#include "vrnobjectworker.h"
#include "vrnstdobject.h"
#include "workqueue.h"

#include "stateretry.h"

#include <QFinalState>
#include <QStateMachine>
#include <QTimer>

// --- one device ---------------------------------------------------------------

namespace {
// Pause before a job runs again: the bus has already waited its timeout.
constexpr int RetryDelayMs = 50;
} // namespace

bool DeviceRun::start(QmlJob* job, std::function<void(Job::Error)> then)
{
    job->setParent(m_runner);
    m_job = job;
    m_stopped.clear();
    if (!worker) {
        m_job = nullptr;
        job->deleteLater();
        fail(QCoreApplication::translate("vrnconfig", "cannot queue the job"));
        return false;
    }
    // Each try queues the job again; only the last try's end reaches `then`.
    auto* machine = new QStateMachine(job);
    const int retries = job->property(DeviceRunner::RunOnce).toBool() ? 0 : m_runner->m_cli.retries() - m_triesBefore;
    auto* retry = new StateRetry(retries, RetryDelayMs, machine);
    auto* over = new QFinalState(machine);
    machine->setInitialState(retry);
    retry->addTransition(retry, &QState::finished, over);
    retry->addTransition(retry, &StateRetry::failed, over);
    QObject::connect(retry, &StateRetry::attempt, m_runner, [this, job, retry](int tryNumber) {
        m_tries = m_triesBefore + tryNumber;
        if (m_ended || !worker)  // ended meanwhile (the bus given up on): nothing more to run
            return retry->failTry(m_retryError, false);
        if (!m_stopped.isEmpty())
            return retry->failTry(m_stopped, false);  // taken off while waiting for the next try
        if (!worker->queue()->enqueue(*job, m_runner->m_priority))
            retry->failTry(QCoreApplication::translate("vrnconfig", "cannot queue the job"), false);
    });
    QObject::connect(job, &Job::finished, retry, [retry, job] { retry->reportJob(*job); });
    QObject::connect(machine, &QStateMachine::finished, m_runner, [this, job, retry, then] {
        if (m_tries > 1)
            result.insert(QStringLiteral("tries"), m_tries);
        m_retryError = retry->errorString();
        const Job::Error error = job->error();
        if (m_retryError.isEmpty())
            then(error);
        else  // a failure of the job, or one before it could run again
            then(error != Job::NoError ? error : Job::TaskFailedError);
        if (m_job == job)
            m_job = nullptr;
        job->deleteLater();
    });
    machine->start();
    return true;
}

void DeviceRun::stop(const QString& why)
{
    if (m_ended || !m_job || !worker)
        return;
    m_stopped = why;
    worker->queue()->dequeue(*m_job);
}

QString DeviceRun::jobError() const
{
    if (!m_stopped.isEmpty())
        return m_stopped;
    if (!m_retryError.isEmpty() || !m_job)
        return m_retryError;
    return m_job->errorString();
}

void DeviceRun::countRepeats()
{
    Bus* bus = BusFactory::instance()->bus();
    if (!bus || !object)
        return;
    BusHealthModel* health = bus->health();
    health->flush();
    const int row = health->rowOf(VRN::getNumber(object->address()));
    if (row >= 0)
        result.insert(QStringLiteral("retransmissions"),
                      health->data(health->index(row, 0), BusHealthModel::RetransmissionsRole).toLongLong());
}

void DeviceRun::succeed()
{
    if (m_ended)
        return;
    countRepeats();
    result.insert(QStringLiteral("ok"), true);
    result.remove(QStringLiteral("error"));
    m_ended = true;
    m_runner->ended(*this);
}

void DeviceRun::fail(const QString& error)
{
    if (m_ended)
        return;
    countRepeats();
    result.insert(QStringLiteral("ok"), false);
    result.insert(QStringLiteral("error"), error);
    m_ended = true;
    m_runner->ended(*this);
}

// --- the runner -----------------------------------------------------------------

DeviceRunner::DeviceRunner(VrnConfigCli& cli) : QObject(&cli), m_cli(cli) {}

DeviceRunner::~DeviceRunner() = default;

std::function<void(VrnConfigCli&, const QStringList&)> DeviceRunner::onEach(const QString& name, const JobFactory& make,
                                                                             const ValueReader& read, const QString& refusal)
{
    return [=](VrnConfigCli& cli, const QStringList& args) {
        QList<VRNObject::UUID> uuids;
        if (cli.selectDevices(name, args, uuids) && cli.openBus())
            (new DeviceRunner(cli))->runJobs(uuids, make, read, refusal);
    };
}

void DeviceRunner::runJobs(const QList<VRNObject::UUID>& uuids, const JobFactory& make, const ValueReader& read,
                           const QString& refusal)
{
    begin(uuids);
    m_read = read;
    m_make = make;
    // Every device is under way from the start: the group holds them.
    m_next = m_runs.size();
    QList<unsigned int> group;
    std::unique_ptr<QmlJob> job;
    ObjectFactory* factory = ObjectFactory::instance();
    for (const auto& run : qAsConst(m_runs)) {
        // With --abort-on-error a refused device ends the run like a failed one.
        if (m_abortNow)
            continue;
        run->m_started = true;
        ++m_running;
        // The worker held here is the one the group task finds for the
        // device, so the values read afterwards are on the object it used.
        run->worker = factory->objectWorker(run->uuid);
        if (run->worker)
            run->object = run->worker->vrnObject();
        run->device = qobject_cast<VRNStdObject*>(run->object.data());
        QmlJob* made = run->device ? make(*run->device) : nullptr;
        if (!made) {
            run->fail(run->device ? refusal : tr("not a network node"));
            continue;
        }
        // The command's job is the same for every device: one copy is kept.
        if (!job)
            job.reset(made);
        else
            delete made;
        group << run->uuid;
        m_byUuid.insert(run->uuid, run.get());
    }
    showProgress();
    if (group.isEmpty() || m_summarised)
        return summarise(); // nothing to run (an empty list) or all refused
    m_groupJob = job.release();
    m_groupJob->setParent(this);
    m_groupJob->setProperty("jobPriority", int(m_priority));
    if (m_abortOnError)
        m_groupJob->setProperty("abortOnError", true);
    connect(m_groupJob, &Job::started, this, [this] {
        m_groupTask = qobject_cast<GroupTask*>(m_groupJob->task());
        if (m_groupTask)
            connect(m_groupTask, &GroupTask::deviceDone, this, &DeviceRunner::deviceDone);
    });
    connect(m_groupJob, &Job::finished, this, &DeviceRunner::groupEnded);
    m_group = GroupFactory::instance()->groupWorker(group);
    if (!m_group->queue()->enqueue(*m_groupJob, m_priority))
        groupEnded();
}

void DeviceRunner::deviceDone(unsigned int uuid)
{
    DeviceRun* run = m_byUuid.value(uuid);
    if (!run || run->ended() || !m_groupTask)
        return;
    const GroupTaskResultModel* results = m_groupTask->result();
    if (results->error(uuid) != Job::NoError) {
        // The group's copy of the job still tells how this device's run ended
        // (unless the device never got to run it: another worker then).
        const QmlJob* inner = m_groupTask->innerJob();
        if (inner && inner->worker() == run->worker.data() && inner->isTransientError() && m_cli.retries() > 0
            && !inner->property(RunOnce).toBool() && m_interrupts == 0 && !m_abortNow)
            return retryAlone(*run, *inner);
        return run->fail(results->errorString(uuid));
    }
    run->jobResult = results->result(uuid);
    QString why;
    if (m_read && !m_read(*run, why))
        return run->fail(why);
    run->succeed();
}

void DeviceRunner::groupEnded()
{
    // Devices trying again on their own workers are still running.
    m_running = 0;
    for (const auto& run : qAsConst(m_runs)) {
        if (run->m_triesBefore > 0 && !run->ended())
            ++m_running;
        else if (!run->ended())
            run->worker.reset();
    }
    summarise();
}

void DeviceRunner::retryAlone(DeviceRun& run, const QmlJob& failed)
{
    QmlJob* job = m_make(*run.device);
    if (!job)
        return run.fail(m_groupTask->result()->errorString(run.uuid));
    job->setParent(this);
    // A list read cut short goes on where it stopped.
    job->setProperty(DeviceTask::ResumeProperty, failed.property(DeviceTask::ResumeProperty));
    run.m_triesBefore = 1;
    QTimer::singleShot(RetryDelayMs, this, [this, &run, job] {
        run.start(job, [this, &run](Job::Error error) {
            if (error != Job::NoError)
                return run.fail(run.jobError());
            QString why;
            if (m_read && !m_read(run, why))
                return run.fail(why);
            run.succeed();
        });
    });
}

void DeviceRunner::begin(const QList<VRNObject::UUID>& uuids)
{
    // Checked when the options were read.
    VrnConfigCli::parseNumber(m_cli.value(QStringLiteral("priority")), 0x7FFFFFFF, m_priority);
    m_abortOnError = m_cli.isSet(QStringLiteral("abort-on-error"));
    m_clock.start();
    ObjectFactory* factory = ObjectFactory::instance();
    for (VRNObject::UUID uuid : uuids) {
        auto run = std::make_shared<DeviceRun>();
        run->m_runner = this;
        run->uuid = uuid;
        run->object = factory->object(uuid);
        run->result = QJsonObject{{QStringLiteral("uuid"), qint64(uuid)}, {QStringLiteral("ok"), false}};
        if (run->object)
            run->result.insert(QStringLiteral("node"), VrnConfigCli::nodeText(VRN::getNumber(run->object->address())));
        m_runs << run;
    }
    if (m_cli.json() && !m_quiet)
        m_stream.reset(new JsonArrayStream(m_cli.output(), m_runs.size(), "{\"results\":["));
    if (Bus* bus = BusFactory::instance()->bus())
        connect(bus, &Bus::messageReceived, this, [this] { m_heard = true; });
    m_cli.setInterruptHandler([this] { interrupt(); });
}

void DeviceRunner::run(const QList<VRNObject::UUID>& uuids, const Action& action)
{
    begin(uuids);
    m_action = action;
    showProgress();
    launch();
    if (m_runs.isEmpty())
        summarise();
}

// Starts waiting devices while fewer than the parallel count run.
void DeviceRunner::launch()
{
    ObjectFactory* factory = ObjectFactory::instance();
    while (m_running < m_parallel && m_next < m_runs.size() && m_interrupts == 0 && !m_abortNow) {
        DeviceRun& run = *m_runs.at(m_next++);
        run.m_started = true;
        ++m_running;
        run.worker = factory->objectWorker(run.uuid);
        run.device = qobject_cast<VRNStdObject*>(run.object.data());
        if (!run.device || !run.worker)
            run.fail(tr("not a network node"));
        else
            m_action(run);
    }
}

void DeviceRunner::ended(DeviceRun& run)
{
    run.worker.reset();
    if (run.m_started)
        --m_running;
    ++m_done;
    const bool ok = run.result.value(QStringLiteral("ok")).toBool();
    ok ? ++m_ok : ++m_failed;
    m_abortNow = m_abortNow || (m_abortOnError && m_failed > 0);
    m_silentFailures = ok || m_heard ? 0 : m_silentFailures + 1;
    m_heard = false;
    report(run);
    if (m_silentFailures >= SilentLimit && m_gaveUp.isEmpty())
        giveUp(tr("bus not answering"));
    if (m_done == m_runs.size() || ((m_interrupts > 0 || m_abortNow) && m_running == 0))
        return summarise();
    showProgress();
    // Queued: a device ending inside its action must not start the next one
    // from within that action.
    QTimer::singleShot(0, this, [this] { launch(); });
}

// The waiting devices fail at once with `why`; the running ones are stopped.
void DeviceRunner::giveUp(const QString& why)
{
    m_gaveUp = why;
    while (m_next < m_runs.size()) {
        DeviceRun& run = *m_runs.at(m_next++);
        run.fail(why);
    }
    if (m_group) {
        // The group holds every device still to come: they fail now, and
        // the one under way is stopped.
        for (const auto& run : qAsConst(m_runs))
            if (!run->m_ended)
                run->fail(why);
        if (m_groupJob)
            m_group->queue()->dequeue(*m_groupJob);
        return;
    }
    for (const auto& run : qAsConst(m_runs))
        if (run->m_started && !run->m_ended)
            run->stop(why);
}

QList<QJsonObject> DeviceRunner::results() const
{
    QList<QJsonObject> list;
    for (const auto& run : m_runs)
        list << run->result;
    return list;
}

void DeviceRunner::report(const DeviceRun& run)
{
    if (m_quiet)
        return;
    if (m_stream)
        return m_stream->append(run.result);
    const bool ok = run.result.value(QStringLiteral("ok")).toBool();
    m_cli.output().line(VrnConfigCli::resultLine(run.uuid, run.result.value(QStringLiteral("node")).toString(), ok,
                                                 ok ? run.line : run.result.value(QStringLiteral("error")).toString()));
}

void DeviceRunner::showProgress()
{
    if (m_quiet)
        return;
    m_cli.output().progress(tr("%1/%2 done, %3 ok, %4 failed, %5 s")
                                .arg(m_done).arg(m_runs.size()).arg(m_ok).arg(m_failed)
                                .arg(m_clock.elapsed() / 1000.0, 0, 'f', 1));
}

// First Ctrl-C: the waiting devices are taken off, the running ones end.
// Second: the running ones are stopped too.
void DeviceRunner::interrupt()
{
    if (m_summarised)
        return;
    ++m_interrupts;
    if (m_group) {
        // The group's device under way ends; no further one starts.
        if (m_interrupts == 1) {
            m_cli.output().note(tr("vrnconfig: interrupted: waiting for the running device; Ctrl-C again to stop it"));
            if (m_groupTask)
                m_groupTask->skipRemaining();
        } else {
            if (m_groupJob)
                m_group->queue()->dequeue(*m_groupJob);
            for (const auto& run : qAsConst(m_runs))
                if (run->m_triesBefore > 0 && !run->ended())
                    run->stop(tr("interrupted"));
        }
        return;
    }
    if (m_interrupts == 1)
        m_cli.output().note(tr("vrnconfig: interrupted: waiting for %1 running device(s); Ctrl-C again to stop them")
                                .arg(m_running));
    for (const auto& run : qAsConst(m_runs))
        if (m_interrupts > 1 && run->m_started && !run->m_ended)
            run->stop(tr("interrupted"));
    if (m_running == 0)
        summarise();
}

void DeviceRunner::summarise()
{
    if (m_summarised || m_running > 0)
        return;
    m_summarised = true;
    if (m_quiet) {
        emit finished(m_failed > 0 ? VrnConfigCli::Failed : VrnConfigCli::Ok);
        return;
    }
    const int notRun = m_runs.size() - m_done;
    const bool interrupted = m_interrupts > 0 && notRun > 0;
    const int code = interrupted ? VrnConfigCli::Interrupted : m_failed > 0 ? VrnConfigCli::Failed : VrnConfigCli::Ok;
    const QString elapsed = QString::number(m_clock.elapsed() / 1000.0, 'f', 1);
    const Bus* bus = BusFactory::instance()->bus();
    const qint64 repeats = bus ? qint64(bus->retransmissionCount()) : 0;
    const QString repeatText = repeats > 0 ? tr(", %1 retransmission(s)").arg(repeats) : QString();
    QString error;
    if (interrupted)
        error = tr("interrupted: %1 device(s) not run").arg(notRun);
    else if (m_failed > 0)
        error = tr("%1 of %2 device(s) failed").arg(m_failed).arg(m_runs.size());
    if (m_stream) {
        // The devices taken off still get their element, so the array is whole.
        for (const auto& run : qAsConst(m_runs)) {
            if (run->ended())
                continue;
            QJsonObject result = run->result;
            result.insert(QStringLiteral("error"), tr("not run"));
            m_stream->append(result);
        }
        QJsonObject summary{{QStringLiteral("total"), m_runs.size()}, {QStringLiteral("ok"), m_ok},
                            {QStringLiteral("failed"), m_failed}, {QStringLiteral("notRun"), notRun},
                            {QStringLiteral("elapsedMs"), m_clock.elapsed()},
                            {QStringLiteral("retransmissions"), repeats}};
        QByteArray tail = "],\"summary\":" + Output::compact(summary);
        if (code != VrnConfigCli::Ok)
            tail += ",\"error\":" + Output::compact(error) + ",\"exitCode\":" + QByteArray::number(code);
        m_stream->close(tail + '}');
    }
    m_cli.output().clearProgress();
    if (code != VrnConfigCli::Ok)
        m_cli.output().note(QStringLiteral("vrnconfig: %1 (%2 ok, %3 failed, %4 s%5)").arg(error).arg(m_ok).arg(m_failed).arg(elapsed, repeatText));
    else if ((m_runs.size() > 1 && m_cli.output().onTerminal()) || repeats > 0)
        m_cli.output().note(tr("%1 device(s): %2 ok (%3 s%4)").arg(m_runs.size()).arg(m_ok).arg(elapsed, repeatText));
    emit finished(code);
    m_cli.finish(code);
}
