#include "motorconfigdata.h"

#include "defaultpayload_p.h"

#include <algorithm>

MotorConfigData::MotorConfigData()
    : StdConfigData(defaultPayload<MotorConfigDataData>())
{
}

MotorConfigData::MotorConfigData(const MotorConfigData& other) = default;

MotorConfigData::MotorConfigData(MotorConfigDataData& data)
    : StdConfigData(data)
{
}

MotorConfigData::MotorConfigData(const ConfigData& other)
    : MotorConfigData()
{
    assignAt<MotorConfigDataData>(other);
}

MotorConfigData& MotorConfigData::operator=(const ConfigData& other)
{
    assignAt<MotorConfigDataData>(other);
    return *this;
}

MotorConfigData& MotorConfigData::operator=(const MotorConfigData& other)
{
    ConfigData::operator=(other);
    return *this;
}

const MotorConfigDataData& MotorConfigData::getConstData() const
{
    return static_cast<const MotorConfigDataData&>(ConfigData::getConstData());
}

void MotorConfigData::updateData(const MotorConfigData& other)
{
    merge(other);
}

bool MotorConfigData::isValid() const
{
    return isDirectionValid() && isEndLimitsValid() && isMotorIpsValid();
}

bool MotorConfigData::isDirectionValid() const
{
    return getConstData().rotDirection != MotorConfigDataData::UnknownDirection;
}

bool MotorConfigData::isEndLimitsValid() const
{
    const MotorConfigDataData& p = getConstData();
    return p.downEndLimit != MotorConfigDataData::UnknownLimit
        && p.upEndLimit != MotorConfigDataData::UnknownLimit;
}

bool MotorConfigData::isMotorIpsValid() const
{
    const QList<MotorConfigDataData::MotorIp>& ips = getConstData().ips;
    return !ips.isEmpty() && std::none_of(ips.cbegin(), ips.cend(), [](const MotorConfigDataData::MotorIp& ip) {
        return ip.pulse == ip.UnsetPulse || ip.pct == ip.UnsetPct;
    });
}

bool MotorConfigData::merge(const MotorConfigData& other)
{
    return mergeAt<MotorConfigDataData>(other.getConstData());
}

bool MotorConfigData::compareMotor(const MotorConfigData& other) const
{
    return getConstData().compareMotor(other.getConstData());
}

void MotorConfigData::eraseData()
{
    writable<MotorConfigDataData>().erase();
}

bool MotorConfigData::hasLevel(const ConfigData& record)
{
    return payloadAs<MotorConfigDataData>(record) != nullptr;
}
