#include "vrnstdobject.h"
#include "vrnobject_p.h"

#include "dtsstdproxy.h"

VRNStdObject::VRNStdObject(const StdConfigData& config, QObject* parent)
    : VRNStdObject(*new VRNObjectPrivate(new StdConfigData(config), new StdConfigData, new DTSStdProxy), parent)
{
}

VRNStdObject::VRNStdObject(VRNObjectPrivate& dd, QObject* parent)
    : VRNObject(dd, parent)
{
    dd.type = DtsStd;
}

VRNStdObject::~VRNStdObject() = default;

DTSStdProxy* VRNStdObject::stdProxy() const
{
    return static_cast<DTSStdProxy*>(node());
}

StdConfigData VRNStdObject::localStdConfig() const
{
    return StdConfigData(localConfig());
}

StdConfigData VRNStdObject::proxyStdConfig() const
{
    return StdConfigData(proxyConfig());
}

void VRNStdObject::updateLocalStdConfig(const StdConfigData& data, bool isInit)
{
    Q_D(VRNObject);
    d->updateAt(VRNObjectPrivate::Local, data, isInit, this, &VRNStdObject::localStdConfigChanged);
}

void VRNStdObject::updateProxyStdConfig(const StdConfigData& data)
{
    Q_D(VRNObject);
    d->updateAt(VRNObjectPrivate::Proxy, data, false);
}

void VRNStdObject::eraseLocalConfig()
{
    Q_D(VRNObject);
    d->eraseAll(VRNObjectPrivate::Local);
}

void VRNStdObject::eraseProxyConfig()
{
    Q_D(VRNObject);
    d->eraseAll(VRNObjectPrivate::Proxy);
}

bool VRNStdObject::isLabelSynced() const
{
    return localStdConfig().getConstData().label == proxyStdConfig().getConstData().label;
}

bool VRNStdObject::isLocalStdValid() const
{
    return localStdConfig().isValid();
}

bool VRNStdObject::isLocalLabelValid() const
{
    return localStdConfig().isLabelValid();
}

bool VRNStdObject::isLocalGroupsValid() const
{
    return localStdConfig().isGroupValid();
}

bool VRNStdObject::isLocalVersionValid() const
{
    return localStdConfig().isVersionValid();
}

void VRNStdObject::synchronize()
{
    Q_D(VRNObject);
    d->synchronizeAt(this, &VRNStdObject::localStdConfigChanged);
}

bool VRNStdObject::isValid() const
{
    return isLocalVersionValid() && isLocalGroupsValid();
}

void VRNStdObject::setLocalConfig(const ConfigData& data, bool isInit)
{
    Q_D(VRNObject);
    d->setAt(VRNObjectPrivate::Local, data, isInit, this, &VRNStdObject::localStdConfigChanged);
}

void VRNStdObject::setProxyConfig(const ConfigData& data)
{
    Q_D(VRNObject);
    d->setAt<StdConfigData>(VRNObjectPrivate::Proxy, data, false);
}
