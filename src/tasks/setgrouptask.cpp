#include "setgrouptask.h"
#include "setgrouptask_p.h"

SetGroupTask::SetGroupTask(int index, unsigned int addr, QObject* object, QObject* parent)
    : WriteTask(QString(), object, parent, new SetGroupTaskPrivate(index, addr))
{
}

SetGroupTask::~SetGroupTask() = default;

BusPendingCall SetGroupTask::request(DTSStdProxy& node)
{
    Q_D(const SetGroupTask);
    return node.setGroupAddr(static_cast<unsigned char>(d->index), d->addr);
}

bool SetGroupTask::apply(StdConfigData& local) const
{
    Q_D(const SetGroupTask);
    if (d->index < 0 || local.getConstData().groups.size() <= d->index)
        return false;
    local.data().groups[d->index] = d->addr;
    return true;
}
