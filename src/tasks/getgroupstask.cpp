#include "getgroupstask.h"

#include "dts.h"
#include "objectregistry.h"

GetGroupsTask::GetGroupsTask(Worker&, QObject* object, const Job& job, QObject* parent)
    : ReadTask(object, job, parent)
{
}

GetGroupsTask::GetGroupsTask(QObject* object, QObject* parent)
    : ReadTask(QStringLiteral("GetGroupsJob"), object, parent)
{
}

GetGroupsTask::~GetGroupsTask() = default;

int GetGroupsTask::slotCount() const
{
    return DTSStdProxy::GroupSlotCount;
}

BusPendingCall GetGroupsTask::requestSlot(DTSStdProxy& node, int slot)
{
    return node.getGroupAddr(quint8(slot));
}

int GetGroupsTask::entries(const StdConfigData& proxy) const
{
    return proxy.getConstData().groups.size();
}

bool GetGroupsTask::parse(const DTSStdProxy& node, const BusMessage& reply, StdConfigData& proxy)
{
    unsigned char slot = 0;
    unsigned int addr = 0;
    if (!node.getGroupAddrReply(reply, slot, addr))
        return false;
    // The slot the reply names is not compared with the one asked for: every
    // reply that parses is appended, in the order the replies come. The list
    // starts anew with the first request of a read (slot 0 asked for).
    if (this->slot() == 0)
        proxy.data().groups.clear();
    proxy.data().groups.append(addr);
    return true;
}

bool GetGroupsTask::isKnown(const StdConfigData& record) const
{
    return record.isGroupValid();
}

void GetGroupsTask::seed(const StdConfigData& from, StdConfigData& to) const
{
    to.data().groups = from.getConstData().groups;
}

bool GetGroupsTask::requestNext()
{
    if (ReadTask::requestNext())
        return true;
    // Every slot read: the registry's membership of the device follows.
    QString error;
    ObjectRegistry* registry = ObjectRegistry::instance();
    if (registry && !registry->groupSlotsKnown(object(), object()->proxyStdConfig().getConstData().groups, &error)) {
        // The device answered, but the registry keeps the old groups:
        // reported, never taken for a success.
        fail(tr("registry not updated: %1").arg(error));
        return true;
    }
    return false;
}

quint8 GetGroupsTask::expectedReply() const
{
    return DTS::PostGroupAddr;
}
