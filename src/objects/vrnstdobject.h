#ifndef VRNSTDOBJECT_H
#define VRNSTDOBJECT_H

#include "stdconfigdata.h"
#include "vrnobject.h"

class DTSStdProxy;

/// A standard node: its records are `StdConfigData`, its node a
/// `DTSStdProxy` (address 0 and no bus until the factory sets them).
///
/// The typed accessors are what tasks use: `updateLocalStdConfig` and
/// `updateProxyStdConfig` merge at the standard level whatever the object's
/// own level (on a motor object they copy the standard fields), and follow
/// the change rules of `VRNObject`.
class VRNStdObject : public VRNObject
{
    Q_OBJECT

public:
    /// `config` is the initial local record (the database's label and
    /// serial number); the proxy record starts "not known".
    explicit VRNStdObject(const StdConfigData& config = StdConfigData(), QObject* parent = nullptr);
    ~VRNStdObject() override;

    DTSStdProxy* stdProxy() const;

    Q_INVOKABLE StdConfigData localStdConfig() const;
    Q_INVOKABLE StdConfigData proxyStdConfig() const;
    void updateLocalStdConfig(const StdConfigData& data, bool isInit = false);
    void updateProxyStdConfig(const StdConfigData& data);
    /// Every level of the local record back to "not known".
    Q_INVOKABLE void eraseLocalConfig();
    /// Every level of the proxy record back to "not known".
    Q_INVOKABLE void eraseProxyConfig();
    Q_INVOKABLE bool isLabelSynced() const;
    Q_INVOKABLE bool isLocalStdValid() const;
    Q_INVOKABLE bool isLocalLabelValid() const;
    Q_INVOKABLE bool isLocalGroupsValid() const;
    Q_INVOKABLE bool isLocalVersionValid() const;

    void synchronize() override;
    /// The local version is valid and the local group list is not empty.
    bool isValid() const override;
    void setLocalConfig(const ConfigData& data, bool isInit = false) override;
    void setProxyConfig(const ConfigData& data) override;

signals:
    void localStdConfigChanged(StdConfigData data);

protected:
    VRNStdObject(VRNObjectPrivate& dd, QObject* parent);
};

#endif // VRNSTDOBJECT_H
