#include "configdata.h"

#include "defaultpayload_p.h"

ConfigData::ConfigData()
    : d(&defaultPayload<ConfigDataData>())
{
}

ConfigData::ConfigData(const ConfigData& other) = default;

ConfigData::ConfigData(ConfigDataData& data)
    : d(&data)
{
}

ConfigData::~ConfigData() = default;

ConfigData& ConfigData::operator=(const ConfigData& other)
{
    d = other.d;
    return *this;
}

const ConfigDataData& ConfigData::getConstData() const
{
    return *d.constData();
}

void ConfigData::updateData(const ConfigData& other)
{
    merge(other);
}

bool ConfigData::isValid() const
{
    return true;
}

bool ConfigData::merge(const ConfigData& other)
{
    return d->update(other.getConstData());
}

bool ConfigData::operator==(const ConfigData& other) const
{
    return d.constData() == other.d.constData() || *d.constData() == *other.d.constData();
}

void ConfigData::eraseData()
{
    d->erase();
}
