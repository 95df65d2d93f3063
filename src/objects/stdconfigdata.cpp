#include "stdconfigdata.h"

#include "defaultpayload_p.h"

StdConfigData::StdConfigData()
    : ConfigData(defaultPayload<StdConfigDataData>())
{
}

StdConfigData::StdConfigData(const StdConfigData& other) = default;

StdConfigData::StdConfigData(StdConfigDataData& data)
    : ConfigData(data)
{
}

StdConfigData::StdConfigData(const ConfigData& other)
    : StdConfigData()
{
    assignAt<StdConfigDataData>(other);
}

StdConfigData& StdConfigData::operator=(const ConfigData& other)
{
    assignAt<StdConfigDataData>(other);
    return *this;
}

StdConfigData& StdConfigData::operator=(const StdConfigData& other)
{
    ConfigData::operator=(other);
    return *this;
}

const StdConfigDataData& StdConfigData::getConstData() const
{
    return static_cast<const StdConfigDataData&>(ConfigData::getConstData());
}

void StdConfigData::updateData(const StdConfigData& other)
{
    merge(other);
}

bool StdConfigData::isValid() const
{
    return isVersionValid() && isGroupValid() && isLabelValid();
}

bool StdConfigData::isVersionValid() const
{
    return getConstData().appVersion.isValid();
}

bool StdConfigData::isLabelValid() const
{
    return !getConstData().label.isNull();
}

bool StdConfigData::isSerialValid() const
{
    return !getConstData().serialNumber.isNull();
}

bool StdConfigData::isGroupValid() const
{
    return !getConstData().groups.isEmpty();
}

bool StdConfigData::merge(const StdConfigData& other)
{
    return mergeAt<StdConfigDataData>(other.getConstData());
}

bool StdConfigData::compareStd(const StdConfigData& other) const
{
    return getConstData().compareStd(other.getConstData());
}

void StdConfigData::eraseData()
{
    writable<StdConfigDataData>().erase();
}

bool StdConfigData::hasLevel(const ConfigData& record)
{
    return payloadAs<StdConfigDataData>(record) != nullptr;
}
