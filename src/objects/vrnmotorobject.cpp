#include "vrnmotorobject.h"
#include "vrnobject_p.h"

#include "dtsmotorproxy.h"

VRNMotorObject::VRNMotorObject(const MotorConfigData& config, QObject* parent)
    : VRNMotorObject(*new VRNObjectPrivate(new MotorConfigData(config), new MotorConfigData, new DTSMotorProxy),
                     parent)
{
}

VRNMotorObject::VRNMotorObject(VRNObjectPrivate& dd, QObject* parent)
    : VRNStdObject(dd, parent)
{
    dd.type = DtsMotor;
}

VRNMotorObject::~VRNMotorObject() = default;

DTSMotorProxy* VRNMotorObject::motorProxy() const
{
    return static_cast<DTSMotorProxy*>(node());
}

MotorConfigData VRNMotorObject::localMotorConfig() const
{
    return MotorConfigData(localConfig());
}

MotorConfigData VRNMotorObject::proxyMotorConfig() const
{
    return MotorConfigData(proxyConfig());
}

void VRNMotorObject::updateLocalMotorConfig(const MotorConfigData& data, bool isInit)
{
    Q_D(VRNObject);
    d->updateAt(VRNObjectPrivate::Local, data, isInit, this, &VRNMotorObject::localMotorConfigChanged);
}

void VRNMotorObject::updateProxyMotorConfig(const MotorConfigData& data)
{
    Q_D(VRNObject);
    d->updateAt(VRNObjectPrivate::Proxy, data, false);
}

bool VRNMotorObject::isLocalMotorValid() const
{
    return localMotorConfig().isValid();
}

bool VRNMotorObject::isLocalDirectionValid() const
{
    return localMotorConfig().isDirectionValid();
}

bool VRNMotorObject::isLocalEndLimitsValid() const
{
    return localMotorConfig().isEndLimitsValid();
}

bool VRNMotorObject::isLocalMotorIpsValid() const
{
    return localMotorConfig().isMotorIpsValid();
}

void VRNMotorObject::synchronize()
{
    Q_D(VRNObject);
    d->synchronizeAt(this, &VRNMotorObject::localMotorConfigChanged);
}

bool VRNMotorObject::isValid() const
{
    return isLocalMotorValid() && VRNStdObject::isValid();
}

void VRNMotorObject::setLocalConfig(const ConfigData& data, bool isInit)
{
    Q_D(VRNObject);
    d->setAt(VRNObjectPrivate::Local, data, isInit, this, &VRNMotorObject::localMotorConfigChanged);
}

void VRNMotorObject::setProxyConfig(const ConfigData& data)
{
    Q_D(VRNObject);
    d->setAt<MotorConfigData>(VRNObjectPrivate::Proxy, data, false);
}
