#ifndef MOTORCONFIGDATADATA_H
#define MOTORCONFIGDATADATA_H

#include "stdconfigdatadata.h"

/// Payload of a motor's configuration (`MotorConfigData`): the standard
/// fields plus direction, end limits and intermediate positions.
class MotorConfigDataData : public StdConfigDataData
{
public:
    static constexpr qint32 UnknownDirection = 0xFF;
    static constexpr quint16 UnknownLimit = 0xFFFF;

    /// One intermediate-position slot; 0xFFFF / 0xFF mean "slot not set".
    struct MotorIp
    {
        static constexpr quint16 UnsetPulse = 0xFFFF;
        static constexpr quint8 UnsetPct = 0xFF;
        quint16 pulse = UnsetPulse;
        quint8 pct = UnsetPct;
        bool operator==(const MotorIp& other) const { return pulse == other.pulse && pct == other.pct; }
        bool operator!=(const MotorIp& other) const { return !(*this == other); }
    };

    MotorConfigDataData() = default;
    MotorConfigDataData(const MotorConfigDataData& other) = default;
    /// Not-known values, then every level that `other` has.
    explicit MotorConfigDataData(const ConfigDataData& other);

    MotorConfigDataData* clone() const override;
    MotorConfigDataData& operator=(const ConfigDataData& other) override;
    MotorConfigDataData& operator=(const MotorConfigDataData& other);
    bool operator==(const ConfigDataData& other) const override;
    using StdConfigDataData::update;
    bool update(const ConfigDataData& other) override;
    /// Copies direction, end limits and `ips` unless `other` equals this
    /// payload on this level and the standard level.
    virtual bool update(const MotorConfigDataData& other);

    void erase();
    /// This level's own fields only; the standard fields are not looked at.
    bool compareMotor(const MotorConfigDataData& other) const;

    /// Direction code as the device reports it.
    qint32 rotDirection = UnknownDirection;
    quint16 upEndLimit = UnknownLimit;
    quint16 downEndLimit = UnknownLimit;
    /// Intermediate positions, in slot order.
    QList<MotorIp> ips;

protected:
    bool sameAs(const MotorConfigDataData& other) const
    {
        return compareMotor(other) && StdConfigDataData::sameAs(other);
    }
    void assignMotor(const MotorConfigDataData& other);
};

#endif // MOTORCONFIGDATADATA_H
