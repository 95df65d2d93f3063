#include "vrndcmotorobject.h"
#include "vrnobject_p.h"

#include "dtsmotorproxy.h"

VRNDCMotorObject::VRNDCMotorObject(const DCMotorConfigData& config, QObject* parent)
    : VRNDCMotorObject(*new VRNObjectPrivate(new DCMotorConfigData(config), new DCMotorConfigData,
                                             new DTSMotorProxy),
                       parent)
{
}

VRNDCMotorObject::VRNDCMotorObject(VRNObjectPrivate& dd, QObject* parent)
    : VRNMotorObject(dd, parent)
{
    dd.type = DtsDcMotor;
}

VRNDCMotorObject::~VRNDCMotorObject() = default;

DCMotorConfigData VRNDCMotorObject::localDCMotorConfig() const
{
    return DCMotorConfigData(localConfig());
}

DCMotorConfigData VRNDCMotorObject::proxyDCMotorConfig() const
{
    return DCMotorConfigData(proxyConfig());
}

void VRNDCMotorObject::updateLocalDCMotorConfig(const DCMotorConfigData& data, bool isInit)
{
    Q_D(VRNObject);
    d->updateAt(VRNObjectPrivate::Local, data, isInit, this, &VRNDCMotorObject::localDCMotorConfigChanged);
}

void VRNDCMotorObject::updateProxyDCMotorConfig(const DCMotorConfigData& data)
{
    Q_D(VRNObject);
    d->updateAt(VRNObjectPrivate::Proxy, data, false);
}

bool VRNDCMotorObject::isLocalDCMotorValid() const
{
    return localDCMotorConfig().isValid();
}

bool VRNDCMotorObject::isLocalSpeedValid() const
{
    return localDCMotorConfig().isSpeedValid();
}

bool VRNDCMotorObject::isLocalRampValid() const
{
    return localDCMotorConfig().isRampValid();
}

void VRNDCMotorObject::synchronize()
{
    Q_D(VRNObject);
    d->synchronizeAt(this, &VRNDCMotorObject::localDCMotorConfigChanged);
}

bool VRNDCMotorObject::isValid() const
{
    return isLocalDCMotorValid() && VRNMotorObject::isValid();
}

void VRNDCMotorObject::setLocalConfig(const ConfigData& data, bool isInit)
{
    Q_D(VRNObject);
    d->setAt(VRNObjectPrivate::Local, data, isInit, this, &VRNDCMotorObject::localDCMotorConfigChanged);
}

void VRNDCMotorObject::setProxyConfig(const ConfigData& data)
{
    Q_D(VRNObject);
    d->setAt<DCMotorConfigData>(VRNObjectPrivate::Proxy, data, false);
}
