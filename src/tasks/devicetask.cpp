#include "devicetask.h"
#include "devicetask_p.h"

#include "dts.h"
#include "vrnmessage.h"

#include <QCoreApplication>

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
        failWith(QT_TR_NOOP("Internal error(no VRNObject)"));
        return false;
    }
    if (!hasNode()) {
        failWith(QT_TR_NOOP("Internal error(VRNObject has no proxy)"));
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
        failWith(QT_TR_NOOP("Timeout error"));
        return;
    case BusPendingCall::BusNotAvailableError:
        failWith(QT_TR_NOOP("Bus not available"));
        return;
    default:
        failWith(failedText().constData());
        return;
    }
    const BusMessage frame = d->watcher.reply();
    const VRNMessage reply(frame);
    if (!reply.isValid()) {
        failWith(QT_TR_NOOP("Invalid message(%1)"), QString::fromLatin1(frame.data().toHex().toUpper()));
        return;
    }
    if (reply.cmd() == DTS::Nack) {
        failWith(QT_TR_NOOP("Nack(%1)"), DTS::toString(DTS::getNackReply(reply)));
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

QByteArray DeviceTask::failedText() const
{
    return QByteArray(metaObject()->className()) + " failed";
}

VRNObject* DeviceTask::vrnObject() const
{
    return d_func()->object.data();
}

void DeviceTask::watch(const BusPendingCall& call)
{
    d_func()->watcher = call;
}

void DeviceTask::failWith(const char* text, const QString& arg)
{
    QString message = QCoreApplication::translate(metaObject()->className(), text);
    if (!arg.isNull())
        message = message.arg(arg);
    fail(message);
}

void DeviceTask::failUnexpected(const VRNMessage& reply)
{
    const QString what = reply.cmd() == expectedReply()
        ? QString::fromLatin1(reply.data().toHex().toUpper())
        : QString::number(reply.cmd(), 16).toUpper();
    failWith(QT_TR_NOOP("Unexpected reply(%1)"), what);
}

void DeviceTask::finish()
{
    setState(Job::Finished);
}
