#include "dcmotorconfigdata.h"

#include "defaultpayload_p.h"

DCMotorConfigData::DCMotorConfigData()
    : MotorConfigData(defaultPayload<DCMotorConfigDataData>())
{
}

DCMotorConfigData::DCMotorConfigData(const DCMotorConfigData& other) = default;

DCMotorConfigData::DCMotorConfigData(DCMotorConfigDataData& data)
    : MotorConfigData(data)
{
}

DCMotorConfigData::DCMotorConfigData(const ConfigData& other)
    : DCMotorConfigData()
{
    assignAt<DCMotorConfigDataData>(other);
}

DCMotorConfigData& DCMotorConfigData::operator=(const ConfigData& other)
{
    assignAt<DCMotorConfigDataData>(other);
    return *this;
}

DCMotorConfigData& DCMotorConfigData::operator=(const DCMotorConfigData& other)
{
    ConfigData::operator=(other);
    return *this;
}

const DCMotorConfigDataData& DCMotorConfigData::getConstData() const
{
    return static_cast<const DCMotorConfigDataData&>(ConfigData::getConstData());
}

void DCMotorConfigData::updateData(const DCMotorConfigData& other)
{
    merge(other);
}

bool DCMotorConfigData::isValid() const
{
    return isSpeedValid() && isRampValid();
}

bool DCMotorConfigData::isSpeedValid() const
{
    const DCMotorConfigDataData& p = getConstData();
    return p.upRollingSpeed != p.UnknownSpeed && p.downRollingSpeed != p.UnknownSpeed
        && p.slowRollingSpeed != p.UnknownSpeed;
}

bool DCMotorConfigData::isRampValid() const
{
    const DCMotorConfigDataData& p = getConstData();
    return p.softStartValue != p.UnknownRamp && p.softStopValue != p.UnknownRamp;
}

bool DCMotorConfigData::merge(const DCMotorConfigData& other)
{
    return mergeAt<DCMotorConfigDataData>(other.getConstData());
}

bool DCMotorConfigData::compareDCMotor(const DCMotorConfigData& other) const
{
    return getConstData().compareDCMotor(other.getConstData());
}

void DCMotorConfigData::eraseData()
{
    writable<DCMotorConfigDataData>().erase();
}

bool DCMotorConfigData::hasLevel(const ConfigData& record)
{
    return payloadAs<DCMotorConfigDataData>(record) != nullptr;
}
