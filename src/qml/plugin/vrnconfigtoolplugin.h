#ifndef VRNCONFIGTOOLPLUGIN_H
#define VRNCONFIGTOOLPLUGIN_H

#include <QQmlExtensionPlugin>

/// The QML plugin of the module "VRNConfigTool" (the file
/// `VRNConfigToolQml::pluginFileName()` names): registers the library's
/// published classes under `import VRNConfigTool 1.0`.
///
/// Singletons: Settings, BusFactory, ObjectFactory, GroupFactory. Creatable:
/// every job class, QMLSerialPortList, GroupControl and DeviceRecords. Everything else (models handed out by the factories,
/// device objects, workers, record wrappers, QmlSharedObject) is known to
/// QML for its properties and enums but cannot be created there.
class VRNConfigToolPlugin : public QQmlExtensionPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QQmlExtensionInterface_iid)
public:
    explicit VRNConfigToolPlugin(QObject* parent = nullptr);
    void registerTypes(const char* uri) override;

    /// The QML names registered, in order of registration.
    static QStringList typeNames();
};

#endif // VRNCONFIGTOOLPLUGIN_H
