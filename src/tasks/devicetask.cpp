#include "devicetask.h"
#include "devicetask_p.h"

#include "dts.h"
#include "vrnmessage.h"

#include <QCoreApplication>
#include <QFinalState>


DeviceTask::DeviceTask(QObject* object, const Job& job, QObject* parent, DeviceTaskPrivate* dd)
    : Task(job, parent)
    , d_ptr(dd ? dd : new DeviceTaskPrivate)
{
    Q_D(DeviceTask);
    d->object = qobject_cast<VRNObject*>(object);
    connect(&d->watcher, &BusPendingCallWatcher::finished, this, &DeviceTask::onCallFinished);
}

DeviceTask::DeviceTask(const QString& jobName, QObject* object, QObject* parent, DeviceTaskPrivate* dd)
    : Task(parent)
    , d_ptr(dd ? dd : new DeviceTaskPrivate)
{
    Q_D(DeviceTask);
    setName(jobName);
    d->object = qobject_cast<VRNObject*>(object);
    connect(&d->watcher, &BusPendingCallWatcher::finished, this, &DeviceTask::onCallFinished);
}

DeviceTask::~DeviceTask() = default;

void DeviceTask::run()
{
    Q_D(DeviceTask);
    setState(Job::Running);
    if (d->machine)
        d->machine->start(); // its first step checks the object and sends
    else if (checkRequestStep())
        start();
}

void DeviceTask::abort()
{
    Q_D(DeviceTask);
    d->watcher.call().cancel();
    Task::abort();
}

bool DeviceTask::checkObject()
{
    if (!hasObject()) {
        fail(translated(QT_TR_NOOP("Internal error(no VRNObject)")));
        return false;
    }
    if (!hasNode()) {
        fail(translated(QT_TR_NOOP("Internal error(VRNObject has no proxy)")));
        return false;
    }
    return true;
}

bool DeviceTask::checkRequestStep()
{
    return checkObject();
}

bool DeviceTask::checkObjectAs(const char* gone, const char* noProxy)
{
    // These texts reach the user as they are: they were never offered for translation.
    if (!hasObject()) {
        fail(QString::fromLatin1(gone));
        return false;
    }
    if (!hasNode()) {
        fail(QString::fromLatin1(noProxy));
        return false;
    }
    return true;
}

void DeviceTask::onCallFinished()
{
    Q_D(DeviceTask);
    // An aborted task still hears of the call it cancelled.
    if (!isRunning() || !checkObject())
        return;
    if (d->watcher.error() != BusPendingCall::NoError) {
        treatBusPendingCallError(d->watcher.error());
        return;
    }
    const BusMessage frame = d->watcher.reply();
    const VRNMessage reply(frame);
    if (!reply.isValid()) {
        // An empty frame reads "Invalid message()".
        fail(translated(QT_TR_NOOP("Invalid message(%1)")).arg(QString::fromLatin1(frame.data().toHex().toUpper())));
        return;
    }
    if (d->stepTestsNack && reply.cmd() == DTS::Nack && !takesNack(reply)) {
        fail(translated(QT_TR_NOOP("Nack(%1)")).arg(DTS::toString(DTS::getNackReply(reply))));
        return;
    }
    onReply(reply);
}

void DeviceTask::treatBusPendingCallError(const BusPendingCall::Error& error)
{
    switch (error) {
    case BusPendingCall::TimeoutError:
        failCall(error, translated(QT_TR_NOOP("Timeout error")));
        break;
    case BusPendingCall::BusNotAvailableError:
        failCall(error, translated(QT_TR_NOOP("Bus not available")));
        break;
    default:
        failCall(error, failedText());
        break;
    }
}

bool DeviceTask::takesNack(const VRNMessage& reply) const
{
    Q_UNUSED(reply)
    return false;
}

void DeviceTask::failCall(const BusPendingCall::Error& error, const QString& text)
{
    Q_D(DeviceTask);
    switch (error) {
    case BusPendingCall::TimeoutError:
    case BusPendingCall::WriteError:
    case BusPendingCall::BusNotAvailableError:
        // The slots read so far stay in the object's record: a retry of the
        // job asks only for the one that failed and those after it.
        if (d->slot > 0 && job() && vrnObject()) {
            const_cast<Job*>(job())->setProperty(ResumeProperty, QVariantMap{
                {QStringLiteral("node"), quint64(vrnObject()->address())}, {QStringLiteral("slot"), d->slot}});
        }
        failTransient(text);
        break;
    default:
        fail(text);
        break;
    }
}

int DeviceTask::slot() const
{
    return d_func()->slot;
}

void DeviceTask::setSlot(int slot)
{
    d_func()->slot = slot;
}

int DeviceTask::resumeSlot(int entriesRead)
{
    if (!job())
        return 0;
    Job* mine = const_cast<Job*>(job());
    const QVariantMap mark = mine->property(ResumeProperty).toMap();
    mine->setProperty(ResumeProperty, QVariant());
    // Another node's place (a job copied from device to device) or a record
    // changed since (another read in between) starts the read anew.
    const int slot = mark.value(QStringLiteral("slot")).toInt();
    if (!vrnObject() || mark.value(QStringLiteral("node")).toULongLong() != vrnObject()->address()
        || slot <= 0 || slot != entriesRead)
        return 0;
    return slot;
}

void DeviceTask::onReply(const VRNMessage& reply)
{
    Q_D(DeviceTask);
    if (!d->stepParser) {
        failUnexpected(reply);
        return;
    }
    if (!d->stepParser(reply) && isRunning())
        failUnexpected(reply);
}

quint8 DeviceTask::expectedReply() const
{
    return d_func()->stepExpected;
}

QString DeviceTask::failedText() const
{
    return translated(QT_TR_NOOP("%1 failed")).arg(QLatin1String(metaObject()->className()));
}

QString DeviceTask::translated(const char* source) const
{
    // The failing task's own context first, so that a translation can say
    // it its own way; else the shared one, which lupdate records.
    const QString own = QCoreApplication::translate(metaObject()->className(), source);
    if (own != QLatin1String(source))
        return own;
    return QCoreApplication::translate("DeviceTask", source);
}

VRNObject* DeviceTask::vrnObject() const
{
    return d_func()->object.data();
}

void DeviceTask::watch(const BusPendingCall& call)
{
    d_func()->watcher = call;
}

void DeviceTask::failUnexpected(const VRNMessage& reply)
{
    const QString what = reply.cmd() == expectedReply()
        ? QString::fromLatin1(reply.data().toHex().toUpper())
        : QString::number(reply.cmd(), 16).toUpper();
    fail(translated(QT_TR_NOOP("Unexpected reply(%1)")).arg(what));
}

void DeviceTask::finish()
{
    setState(Job::Finished);
}

bool DeviceTask::acceptAck(const VRNMessage& reply)
{
    if (reply.cmd() == DTS::Ack)
        return true;
    failUnexpected(reply);
    return false;
}

QStateMachine* DeviceTask::machine()
{
    Q_D(DeviceTask);
    if (!d->machine) {
        d->machine = new QStateMachine(this);
        // A failed or aborted run leaves the graph where it is.
        connect(this, &Task::finished, d->machine, &QStateMachine::stop);
    }
    return d->machine;
}

QState* DeviceTask::addStepState(std::function<void()> step)
{
    auto* state = new QState(machine());
    if (!machine()->initialState())
        machine()->setInitialState(state);
    connect(state, &QAbstractState::entered, this, [this, step] {
        if (isRunning())
            step();
    });
    return state;
}

QAbstractState* DeviceTask::addEndState(std::function<void()> step)
{
    auto* state = new QFinalState(machine());
    connect(state, &QAbstractState::entered, this, [this, step] {
        if (isRunning())
            step();
    });
    return state;
}

void DeviceTask::leaveOnReply(QState* from, QAbstractState* to)
{
    // Connected after onCallFinished(): the reply is checked before the machine moves.
    from->addTransition(&d_func()->watcher, &BusPendingCallWatcher::finished, to);
}

void DeviceTask::chainOnReply(const QList<QState*>& steps, QAbstractState* end)
{
    for (int i = 0; i < steps.size(); ++i)
        leaveOnReply(steps.at(i), i + 1 < steps.size() ? steps.at(i + 1) : end);
}

void DeviceTask::sendStep(const BusPendingCall& call, quint8 expected, StepParser parse, bool testNack)
{
    Q_D(DeviceTask);
    d->stepParser = std::move(parse);
    d->stepExpected = expected;
    d->stepTestsNack = testNack;
    watch(call);
}

bool DeviceTask::isIn(const QAbstractState* state) const
{
    const QStateMachine* m = d_func()->machine;
    return m && m->configuration().contains(const_cast<QAbstractState*>(state));
}
