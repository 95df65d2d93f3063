#include "getmotoripstask.h"

#include "devicetask_p.h"
#include "dts.h"

class GetMotorIpsTaskPrivate : public DeviceTaskPrivate
{
public:
    explicit GetMotorIpsTaskPrivate(unsigned char count)
        : count(count == 0 || count > DTSMotorProxy::IPCount ? (unsigned char)DTSMotorProxy::IPCount : count) {}
    const unsigned char count;
};

GetMotorIpsTask::GetMotorIpsTask(Worker&, QObject* object, const Job& job, QObject* parent)
    : ReadTask(object, job, parent, new GetMotorIpsTaskPrivate(DTSMotorProxy::IPCount))
{
}

GetMotorIpsTask::GetMotorIpsTask(QObject* object, unsigned char count, QObject* parent)
    : ReadTask(QStringLiteral("GetMotorIpsJob"), object, parent, new GetMotorIpsTaskPrivate(count))
{
}

GetMotorIpsTask::~GetMotorIpsTask() = default;

int GetMotorIpsTask::slotCount() const
{
    return d_func()->count;
}

BusPendingCall GetMotorIpsTask::requestSlot(DTSMotorProxy& node, int slot)
{
    return node.getMotorIP(quint8(slot));
}

int GetMotorIpsTask::entries(const MotorConfigData& proxy) const
{
    return proxy.getConstData().ips.size();
}

bool GetMotorIpsTask::parse(const DTSMotorProxy& node, const BusMessage& reply, MotorConfigData& proxy)
{
    MotorConfigDataData::MotorIp ip;
    unsigned char index = 0;
    if (!node.getMotorIPReply(reply, index, ip.pulse, ip.pct) || index != slot())
        return false;
    if (index == 0)
        proxy.data().ips.clear();
    proxy.data().ips.append(ip);
    return true;
}

bool GetMotorIpsTask::isKnown(const MotorConfigData& record) const
{
    return record.isMotorIpsValid();
}

void GetMotorIpsTask::seed(const MotorConfigData& from, MotorConfigData& to) const
{
    to.data().ips = from.getConstData().ips;
}

quint8 GetMotorIpsTask::expectedReply() const
{
    return DTS::PostMotorIP;
}
