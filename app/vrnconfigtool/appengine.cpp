#include "appengine.h"

#include "busfactory.h"
#include "objectfactory.h"
#include "changerecorder.h"
#include "qmldocumentsession.h"
#include "vrnconfigtoolqml.h"

#include <QQmlApplicationEngine>
#include <QQmlContext>
#include <QtQml>
#include <QQuickStyle>
#include <QUrl>

void AppEngine::followBus()
{
    // Connected before any device object is built, so this runs before the
    // objects hear of the new bus: those of the old registry have left it by
    // then, and none can reach the device of the same number on the new one.
    BusFactory* buses = BusFactory::instance();
    ObjectFactory* registry = ObjectFactory::instance();
    QObject::connect(buses, &BusFactory::busChanged, registry, [buses, registry](VRNBus* bus) {
        registry->switchRegistry(bus ? ObjectFactory::registryFile(buses->busUUID()) : QStringLiteral(":memory:"));
    }, Qt::UniqueConnection);
}

bool AppEngine::start(QQmlApplicationEngine& engine, const QString& busUUID, QString* error)
{
    followBus();
    if (!VRNConfigToolQml::load(&engine)) {
        *error = QStringLiteral("the QML module VRNConfigTool could not be loaded");
        return false;
    }
    // Backup & Compare and History; every write the application makes goes to the change log.
    qmlRegisterType<QmlDocumentSession>("VRNConfigTool.Documents", 1, 0, "DocumentSession");
    ChangeRecorder::install();
    if (qEnvironmentVariableIsEmpty("QT_QUICK_CONTROLS_STYLE"))
        QQuickStyle::setStyle(QStringLiteral("Fusion"));
    engine.rootContext()->setContextProperty(QStringLiteral("startBusUUID"), busUUID);
    engine.load(QUrl(QStringLiteral("qrc:/vrnconfigtool/main.qml")));
    if (engine.rootObjects().isEmpty()) {
        *error = QStringLiteral("the main window could not be loaded");
        return false;
    }
    return true;
}
