#ifndef VRNMOTOROBJECT_H
#define VRNMOTOROBJECT_H

#include "motorconfigdata.h"
#include "vrnstdobject.h"

class DTSMotorProxy;

/// A motor: records are `MotorConfigData`, the node a `DTSMotorProxy`.
class VRNMotorObject : public VRNStdObject
{
    Q_OBJECT

public:
    explicit VRNMotorObject(const MotorConfigData& config = MotorConfigData(), QObject* parent = nullptr);
    ~VRNMotorObject() override;

    DTSMotorProxy* motorProxy() const;

    Q_INVOKABLE MotorConfigData localMotorConfig() const;
    Q_INVOKABLE MotorConfigData proxyMotorConfig() const;
    /// Merges at the motor level: direction, end limits, intermediate positions.
    void updateLocalMotorConfig(const MotorConfigData& data, bool isInit = false);
    void updateProxyMotorConfig(const MotorConfigData& data);
    Q_INVOKABLE bool isLocalMotorValid() const;
    Q_INVOKABLE bool isLocalDirectionValid() const;
    Q_INVOKABLE bool isLocalEndLimitsValid() const;
    Q_INVOKABLE bool isLocalMotorIpsValid() const;

    void synchronize() override;
    /// The local motor fields are valid and the standard level is valid.
    bool isValid() const override;
    void setLocalConfig(const ConfigData& data, bool isInit = false) override;
    void setProxyConfig(const ConfigData& data) override;

signals:
    void localMotorConfigChanged(MotorConfigData data);

protected:
    VRNMotorObject(VRNObjectPrivate& dd, QObject* parent);
};

#endif // VRNMOTOROBJECT_H
