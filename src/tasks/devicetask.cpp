#include "devicetask.h"
#include "devicetask_p.h"

#include "dts.h"
#include "vrnmessage.h"


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
    setState(Job::Running);
    if (checkObject())
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
        fail(tr("Internal error(no VRNObject)"));
        return false;
    }
    if (!hasNode()) {
        fail(tr("Internal error(VRNObject has no proxy)"));
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
    switch (d->watcher.error()) {
    case BusPendingCall::NoError:
        break;
    case BusPendingCall::TimeoutError:
        fail(tr("Timeout error"));
        return;
    case BusPendingCall::BusNotAvailableError:
        fail(tr("Bus not available"));
        return;
    default:
        fail(failedText());
        return;
    }
    const BusMessage frame = d->watcher.reply();
    const VRNMessage reply(frame);
    if (!reply.isValid()) {
        // An empty frame reads "Invalid message()".
        fail(tr("Invalid message(%1)").arg(QString::fromLatin1(frame.data().toHex().toUpper())));
        return;
    }
    if (reply.cmd() == DTS::Nack) {
        fail(tr("Nack(%1)").arg(DTS::toString(DTS::getNackReply(reply))));
        return;
    }
    onReply(reply);
}

void DeviceTask::onReply(const VRNMessage& reply)
{
    failUnexpected(reply);
}

quint8 DeviceTask::expectedReply() const
{
    return DTS::Ack;
}

QString DeviceTask::failedText() const
{
    return tr("%1 failed").arg(QLatin1String(metaObject()->className()));
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
    fail(tr("Unexpected reply(%1)").arg(what));
}

void DeviceTask::finish()
{
    setState(Job::Finished);
}
