#ifndef DCMOTORCONFIGDATADATA_H
#define DCMOTORCONFIGDATADATA_H

#include "motorconfigdatadata.h"

/// Payload of a DC motor's configuration (`DCMotorConfigData`): the motor
/// fields plus rolling speeds and soft start/stop ramps.
///
/// Not-known values: speeds 0, ramp values 0xFF, status flags 0 (off).
class DCMotorConfigDataData : public MotorConfigDataData
{
public:
    static constexpr quint8 UnknownSpeed = 0;
    static constexpr quint8 UnknownRamp = 0xFF;

    DCMotorConfigDataData() = default;
    DCMotorConfigDataData(const DCMotorConfigDataData& other) = default;
    /// Not-known values, then every level that `other` has.
    explicit DCMotorConfigDataData(const ConfigDataData& other);

    DCMotorConfigDataData* clone() const override;
    DCMotorConfigDataData& operator=(const ConfigDataData& other) override;
    DCMotorConfigDataData& operator=(const DCMotorConfigDataData& other);
    bool operator==(const ConfigDataData& other) const override;
    using MotorConfigDataData::update;
    bool update(const ConfigDataData& other) override;
    /// Copies the seven DC bytes unless `other` equals this payload on every level.
    virtual bool update(const DCMotorConfigDataData& other);

    void erase();
    /// The seven DC bytes only.
    bool compareDCMotor(const DCMotorConfigDataData& other) const;

    quint8 upRollingSpeed = UnknownSpeed;
    quint8 downRollingSpeed = UnknownSpeed;
    quint8 slowRollingSpeed = UnknownSpeed;
    quint8 softStartValue = UnknownRamp;
    quint8 softStopValue = UnknownRamp;
    /// Non-zero when soft start is enabled.
    quint8 softStartStatus = 0;
    /// Non-zero when soft stop is enabled.
    quint8 softStopStatus = 0;

protected:
    bool sameAs(const DCMotorConfigDataData& other) const
    {
        return compareDCMotor(other) && MotorConfigDataData::sameAs(other);
    }
    void assignDCMotor(const DCMotorConfigDataData& other);
};

#endif // DCMOTORCONFIGDATADATA_H
