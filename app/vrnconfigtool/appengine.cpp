#include "appengine.h"

#include "changerecorder.h"
#include "qmldocumentsession.h"
#include "vrnconfigtoolqml.h"

#include <QQmlApplicationEngine>
#include <QQmlContext>
#include <QtQml>
#include <QQuickStyle>
#include <QUrl>

bool AppEngine::start(QQmlApplicationEngine& engine, const QString& busUUID, QString* error)
{
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
