#include "setgroupstask.h"
#include "setgroupstask_p.h"

#include "objectregistry.h"
#include "setgrouptask.h"

#include <QDebug>

QList<unsigned int> SetGroupsTask::groupsFromVariant(const QVariant& value)
{
    QList<unsigned int> groups;
    if (!value.canConvert<QVariantList>()) {
        qWarning() << "[SetGroupsTask]: groups cannot be converted from qml";
        return groups;
    }
    const QVariantList items = value.value<QVariantList>();
    for (const QVariant& item : items) {
        bool ok = false;
        const unsigned int addr = item.toUInt(&ok);
        if (ok)
            groups.append(addr);
        else
            qWarning() << "[SetGroupsTask]: this item cannot be converted from qml";
    }
    return groups;
}

SetGroupsTask::SetGroupsTask(Worker&, QObject* object, const Job& job, QObject* parent)
    : ObjectTask(object, job, parent, new SetGroupsTaskPrivate(groupsFromVariant(job.property("groups"))))
{
    connect(&d_func()->job, &Job::stateChanged, this, &SetGroupsTask::onJobStateChanged);
}

SetGroupsTask::SetGroupsTask(const QList<unsigned int>& groups, QObject* object, QObject* parent)
    : ObjectTask(QStringLiteral("SetGroupsJob"), object, parent, new SetGroupsTaskPrivate(groups))
{
    connect(&d_func()->job, &Job::stateChanged, this, &SetGroupsTask::onJobStateChanged);
}

SetGroupsTask::~SetGroupsTask()
{
    // The inner job's last task must not report into a half-destroyed task.
    d_func()->job.disconnect(this);
}

void SetGroupsTask::abort()
{
    Q_D(SetGroupsTask);
    d->job.disconnect(this);
    d->job.detach();
    DeviceTask::abort();
}

int SetGroupsTask::failedSlot() const
{
    return d_func()->failedSlot;
}

QString SetGroupsTask::slotError() const
{
    return d_func()->slotError;
}

void SetGroupsTask::start()
{
    Q_D(SetGroupsTask);
    d->index = 0;
    d->failedSlot = -1;
    d->slotError.clear();
    if (d->groups.isEmpty())
        finish();
    else
        writeSlot();
}

bool SetGroupsTask::storeMembership(QString* error)
{
    Q_D(SetGroupsTask);
    ObjectRegistry* registry = ObjectRegistry::instance();
    if (!registry)
        return true;
    // The written slots over what the last read found in the others.
    QList<unsigned int> groupSlots = object()->proxyStdConfig().getConstData().groups;
    for (int i = 0; i < d->groups.size(); ++i) {
        if (i < groupSlots.size())
            groupSlots[i] = d->groups.at(i);
        else
            groupSlots.append(d->groups.at(i));
    }
    return registry->groupSlotsKnown(object(), groupSlots, error);
}

void SetGroupsTask::writeSlot()
{
    Q_D(SetGroupsTask);
    d->job.attach(new SetGroupTask(d->index, d->groups.at(d->index), object()));
    d->job.start();
}

void SetGroupsTask::onJobStateChanged(Job::State state)
{
    Q_D(SetGroupsTask);
    if (state != Job::Finished || !isRunning())
        return;
    // A failed slot write ends its inner job too (state Finished, with an
    // error): the outer task is then deliberately left running, neither
    // finished nor failed; only what runs the job can end it.
    if (d->job.error() != Job::NoError) {
        d->failedSlot = d->index;
        d->slotError = d->job.errorString();
        emit slotFailed(d->failedSlot, d->slotError);
        return;
    }
    if (!checkObject())
        return;
    if (++d->index >= d->groups.size()) {
        QString error;
        if (!storeMembership(&error))
            return fail(tr("registry not updated: %1").arg(error));
        finish();
    }
    else
        writeSlot();
}
