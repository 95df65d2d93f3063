#ifndef APPENGINE_H
#define APPENGINE_H

#include <QString>

class QQmlApplicationEngine;

/// Start-up of the configuration application, shared by its `main` and its tests.
namespace AppEngine {

/// Prepares `engine` for the module (`VRNConfigToolQml::load`) and loads the
/// main window. `busUUID`, when not empty, is opened instead of the bus
/// remembered from the last run. False, with the reason in `error`, when the
/// module or the window cannot be loaded.
bool start(QQmlApplicationEngine& engine, const QString& busUUID, QString* error);

/// The device registry follows the bus: each bus opened brings its own
/// registry file, the one `vrnconfig` uses for it (`ObjectFactory::registryFile`),
/// and closing the bus leaves an empty registry in memory. `start` calls it.
void followBus();

} // namespace AppEngine

#endif // APPENGINE_H
