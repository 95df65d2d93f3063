#include "appengine.h"

#include "vrnconfigtoolqml.h"

#include <QQmlApplicationEngine>
#include <QQmlContext>
#include <QQuickStyle>
#include <QUrl>

bool AppEngine::start(QQmlApplicationEngine& engine, const QString& busUUID, QString* error)
{
    if (!VRNConfigToolQml::load(&engine)) {
        *error = QStringLiteral("the QML module VRNConfigTool could not be loaded");
        return false;
    }
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
