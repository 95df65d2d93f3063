#include "motorconfigdatadata.h"

MotorConfigDataData::MotorConfigDataData(const ConfigDataData& other)
{
    MotorConfigDataData::operator=(other);
}

MotorConfigDataData* MotorConfigDataData::clone() const
{
    return new MotorConfigDataData(*this);
}

MotorConfigDataData& MotorConfigDataData::operator=(const ConfigDataData& other)
{
    StdConfigDataData::operator=(other);
    if (const auto* p = dynamic_cast<const MotorConfigDataData*>(&other))
        assignMotor(*p);
    return *this;
}

MotorConfigDataData& MotorConfigDataData::operator=(const MotorConfigDataData& other)
{
    return operator=(static_cast<const ConfigDataData&>(other));
}

bool MotorConfigDataData::operator==(const ConfigDataData& other) const
{
    if (const auto* p = dynamic_cast<const MotorConfigDataData*>(&other))
        return sameAs(*p);
    return StdConfigDataData::operator==(other);
}

bool MotorConfigDataData::update(const ConfigDataData& other)
{
    if (const auto* p = dynamic_cast<const MotorConfigDataData*>(&other))
        return update(*p);
    return StdConfigDataData::update(other);
}

bool MotorConfigDataData::update(const MotorConfigDataData& other)
{
    if (sameAs(other))
        return false;
    assignMotor(other);
    return true;
}

void MotorConfigDataData::erase()
{
    upEndLimit = UnknownLimit;
    downEndLimit = UnknownLimit;
    rotDirection = UnknownDirection;
    ips.clear();
}

bool MotorConfigDataData::compareMotor(const MotorConfigDataData& other) const
{
    return ips == other.ips && upEndLimit == other.upEndLimit
        && downEndLimit == other.downEndLimit && rotDirection == other.rotDirection;
}

void MotorConfigDataData::assignMotor(const MotorConfigDataData& other)
{
    rotDirection = other.rotDirection;
    upEndLimit = other.upEndLimit;
    downEndLimit = other.downEndLimit;
    ips = other.ips;
}
