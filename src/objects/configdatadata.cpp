#include "configdatadata.h"

ConfigDataData::~ConfigDataData() = default;

ConfigDataData* ConfigDataData::clone() const
{
    return new ConfigDataData(*this);
}

ConfigDataData& ConfigDataData::operator=(const ConfigDataData&)
{
    return *this;
}

bool ConfigDataData::operator==(const ConfigDataData&) const
{
    return true;
}

bool ConfigDataData::operator!=(const ConfigDataData& other) const
{
    return !(*this == other);
}

bool ConfigDataData::update(const ConfigDataData&)
{
    return false;
}
