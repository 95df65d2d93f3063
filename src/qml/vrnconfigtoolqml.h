#ifndef VRNCONFIGTOOLQML_H
#define VRNCONFIGTOOLQML_H

#include <QStringList>

class QQmlEngine;

/// Entry point of the QML module "VRNConfigTool" for a front end.
///
///     QQmlApplicationEngine engine;
///     if (!VRNConfigToolQml::load(&engine)) return 1;
///     engine.load(QUrl("qrc:/main.qml")); // may `import VRNConfigTool`
class VRNConfigToolQml
{
public:
    /// Adds the folder of the module's plugin to the engine's plugin path and
    /// "qrc:/qml" to its import path, each only once. False, with a warning
    /// and the engine untouched, when the engine is null, the compiled-in
    /// resources are missing, or no candidate folder holds the plugin.
    static bool load(QQmlEngine* engine);

    /// The folders searched for the plugin, in the order of search: the build
    /// tree's qml/VRNConfigTool, "<application dir>/../bin/qml/VRNConfigTool",
    /// then "$SYSROOT/C:/Program Files/VRNConfigTool/bin/qml/VRNConfigTool"
    /// (the fixed part is kept as it is, leading '/' included).
    static QStringList candidateDirs();

    /// The plugin's file name on this platform.
    static QString pluginFileName();
};

#endif // VRNCONFIGTOOLQML_H
