#include "dcmotorconfigdatadata.h"

DCMotorConfigDataData::DCMotorConfigDataData(const ConfigDataData& other)
{
    DCMotorConfigDataData::operator=(other);
}

DCMotorConfigDataData* DCMotorConfigDataData::clone() const
{
    return new DCMotorConfigDataData(*this);
}

DCMotorConfigDataData& DCMotorConfigDataData::operator=(const ConfigDataData& other)
{
    MotorConfigDataData::operator=(other);
    if (const auto* p = dynamic_cast<const DCMotorConfigDataData*>(&other))
        assignDCMotor(*p);
    return *this;
}

DCMotorConfigDataData& DCMotorConfigDataData::operator=(const DCMotorConfigDataData& other)
{
    return operator=(static_cast<const ConfigDataData&>(other));
}

bool DCMotorConfigDataData::operator==(const ConfigDataData& other) const
{
    if (const auto* p = dynamic_cast<const DCMotorConfigDataData*>(&other))
        return sameAs(*p);
    return MotorConfigDataData::operator==(other);
}

bool DCMotorConfigDataData::update(const ConfigDataData& other)
{
    if (const auto* p = dynamic_cast<const DCMotorConfigDataData*>(&other))
        return update(*p);
    return MotorConfigDataData::update(other);
}

bool DCMotorConfigDataData::update(const DCMotorConfigDataData& other)
{
    if (sameAs(other))
        return false;
    assignDCMotor(other);
    return true;
}

void DCMotorConfigDataData::erase()
{
    upRollingSpeed = downRollingSpeed = slowRollingSpeed = UnknownSpeed;
    softStartValue = softStopValue = UnknownRamp;
    softStartStatus = softStopStatus = 0;
}

bool DCMotorConfigDataData::compareDCMotor(const DCMotorConfigDataData& other) const
{
    return upRollingSpeed == other.upRollingSpeed && downRollingSpeed == other.downRollingSpeed
        && slowRollingSpeed == other.slowRollingSpeed && softStartValue == other.softStartValue
        && softStopValue == other.softStopValue && softStartStatus == other.softStartStatus
        && softStopStatus == other.softStopStatus;
}

void DCMotorConfigDataData::assignDCMotor(const DCMotorConfigDataData& other)
{
    upRollingSpeed = other.upRollingSpeed;
    downRollingSpeed = other.downRollingSpeed;
    slowRollingSpeed = other.slowRollingSpeed;
    softStartValue = other.softStartValue;
    softStopValue = other.softStopValue;
    softStartStatus = other.softStartStatus;
    softStopStatus = other.softStopStatus;
}
