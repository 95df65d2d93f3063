#ifndef MOTORCONFIGDATA_H
#define MOTORCONFIGDATA_H

#include "motorconfigdatadata.h"
#include "stdconfigdata.h"

/// Configuration of a motor: the standard level plus direction, end limits
/// and intermediate positions (`MotorConfigDataData`).
class MotorConfigData : public StdConfigData
{
public:
    /// Shares the default motor payload: every field "not known".
    MotorConfigData();
    MotorConfigData(const MotorConfigData& other);
    explicit MotorConfigData(MotorConfigDataData& data);
    /// Shares `other`'s payload when it has the motor level, otherwise
    /// starts from "not known" and takes the levels `other` has.
    MotorConfigData(const ConfigData& other);

    MotorConfigData& operator=(const ConfigData& other) override;
    MotorConfigData& operator=(const MotorConfigData& other);
    const MotorConfigDataData& getConstData() const override;
    using StdConfigData::updateData;
    /// Merges at the motor level (see `MotorConfigDataData::update`).
    virtual void updateData(const MotorConfigData& other);
    /// Direction, then end limits, then intermediate positions valid.
    bool isValid() const override;
    virtual bool isDirectionValid() const;
    /// Both end limits known.
    virtual bool isEndLimitsValid() const;
    /// At least one intermediate position, and no slot left unset.
    virtual bool isMotorIpsValid() const;

    using StdConfigData::merge;
    bool merge(const MotorConfigData& other);
    bool compareMotor(const MotorConfigData& other) const;
    /// Resets the motor fields only.
    void eraseData();
    MotorConfigDataData& data() { return writable<MotorConfigDataData>(); }
    static bool hasLevel(const ConfigData& record);
};

Q_DECLARE_METATYPE(MotorConfigData)

#endif // MOTORCONFIGDATA_H
