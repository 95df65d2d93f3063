#ifndef DCMOTORCONFIGDATA_H
#define DCMOTORCONFIGDATA_H

#include "dcmotorconfigdatadata.h"
#include "motorconfigdata.h"

/// Configuration of a DC motor: the motor level plus rolling speeds and
/// soft start/stop ramps (`DCMotorConfigDataData`).
class DCMotorConfigData : public MotorConfigData
{
public:
    /// Shares the default DC-motor payload: every field "not known".
    DCMotorConfigData();
    DCMotorConfigData(const DCMotorConfigData& other);
    explicit DCMotorConfigData(DCMotorConfigDataData& data);
    /// Shares `other`'s payload when it has the DC-motor level, otherwise
    /// starts from "not known" and takes the levels `other` has.
    DCMotorConfigData(const ConfigData& other);

    DCMotorConfigData& operator=(const ConfigData& other) override;
    DCMotorConfigData& operator=(const DCMotorConfigData& other);
    const DCMotorConfigDataData& getConstData() const override;
    using MotorConfigData::updateData;
    /// Merges at the DC-motor level (see `DCMotorConfigDataData::update`).
    virtual void updateData(const DCMotorConfigData& other);
    /// Speeds, then ramps valid; the status flags take no part.
    bool isValid() const override;
    /// Up, down and slow rolling speeds all known (not 0).
    virtual bool isSpeedValid() const;
    /// Both ramp values known (not 0xFF).
    virtual bool isRampValid() const;

    using MotorConfigData::merge;
    bool merge(const DCMotorConfigData& other);
    bool compareDCMotor(const DCMotorConfigData& other) const;
    /// Resets the DC fields only.
    void eraseData();
    DCMotorConfigDataData& data() { return writable<DCMotorConfigDataData>(); }
    static bool hasLevel(const ConfigData& record);
};

Q_DECLARE_METATYPE(DCMotorConfigData)

#endif // DCMOTORCONFIGDATA_H
