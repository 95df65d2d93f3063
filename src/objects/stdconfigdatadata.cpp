#include "stdconfigdatadata.h"

StdConfigDataData::StdConfigDataData(const ConfigDataData& other)
{
    StdConfigDataData::operator=(other);
}

StdConfigDataData* StdConfigDataData::clone() const
{
    return new StdConfigDataData(*this);
}

StdConfigDataData& StdConfigDataData::operator=(const ConfigDataData& other)
{
    ConfigDataData::operator=(other);
    if (const auto* p = dynamic_cast<const StdConfigDataData*>(&other)) {
        mergeStd(*p);
        networkConfig = p->networkConfig;
    }
    return *this;
}

StdConfigDataData& StdConfigDataData::operator=(const StdConfigDataData& other)
{
    return operator=(static_cast<const ConfigDataData&>(other));
}

bool StdConfigDataData::operator==(const ConfigDataData& other) const
{
    if (const auto* p = dynamic_cast<const StdConfigDataData*>(&other))
        return sameAs(*p);
    return ConfigDataData::operator==(other);
}

bool StdConfigDataData::update(const ConfigDataData& other)
{
    if (const auto* p = dynamic_cast<const StdConfigDataData*>(&other))
        return update(*p);
    return ConfigDataData::update(other);
}

bool StdConfigDataData::update(const StdConfigDataData& other)
{
    if (sameAs(other))
        return false;
    mergeStd(other);
    return true;
}

void StdConfigDataData::erase()
{
    groups.clear();
    networkConfig.clear();
    appVersion.clear();
    label = QByteArray();
    serialNumber = QByteArray();
}

bool StdConfigDataData::compareStd(const StdConfigDataData& other) const
{
    return groups == other.groups && networkConfig == other.networkConfig
        && appVersion == other.appVersion && label == other.label
        && serialNumber == other.serialNumber;
}

void StdConfigDataData::mergeStd(const StdConfigDataData& other)
{
    label = other.label;
    serialNumber = other.serialNumber;
    appVersion = other.appVersion;
    groups = other.groups;
}
