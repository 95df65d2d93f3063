#ifndef VRNDCMOTOROBJECT_H
#define VRNDCMOTOROBJECT_H

#include "dcmotorconfigdata.h"
#include "vrnmotorobject.h"

/// A DC motor: records are `DCMotorConfigData`, the node a `DTSMotorProxy`.
class VRNDCMotorObject : public VRNMotorObject
{
    Q_OBJECT

public:
    explicit VRNDCMotorObject(const DCMotorConfigData& config = DCMotorConfigData(), QObject* parent = nullptr);
    ~VRNDCMotorObject() override;

    Q_INVOKABLE DCMotorConfigData localDCMotorConfig() const;
    Q_INVOKABLE DCMotorConfigData proxyDCMotorConfig() const;
    /// Merges at the DC level: rolling speeds and soft start/stop.
    void updateLocalDCMotorConfig(const DCMotorConfigData& data, bool isInit = false);
    void updateProxyDCMotorConfig(const DCMotorConfigData& data);
    Q_INVOKABLE bool isLocalDCMotorValid() const;
    Q_INVOKABLE bool isLocalSpeedValid() const;
    Q_INVOKABLE bool isLocalRampValid() const;

    void synchronize() override;
    /// The local DC fields are valid and the motor level is valid.
    bool isValid() const override;
    void setLocalConfig(const ConfigData& data, bool isInit = false) override;
    void setProxyConfig(const ConfigData& data) override;

signals:
    void localDCMotorConfigChanged(DCMotorConfigData data);

protected:
    VRNDCMotorObject(VRNObjectPrivate& dd, QObject* parent);
};

#endif // VRNDCMOTOROBJECT_H
