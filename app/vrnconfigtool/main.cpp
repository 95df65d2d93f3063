#include "appengine.h"

#include <QCommandLineParser>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickWindow>

#include <cstdio>

int main(int argc, char* argv[])
{
    QGuiApplication app(argc, argv);
    QGuiApplication::setApplicationName(QStringLiteral("vrnconfigtool"));
    QGuiApplication::setApplicationVersion(QStringLiteral(VRNCONFIGTOOL_VERSION));
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Configures the devices of a VRN network."));
    parser.addHelpOption();
    const QCommandLineOption bus(QStringLiteral("bus"),
                                 QStringLiteral("Opens this bus (\"serial:PORT\" or \"mcast:GROUP:PORT:BIND\") "
                                                "instead of the one of the last run."),
                                 QStringLiteral("uuid"));
    parser.addOption(bus);
    parser.process(app);
    if (!parser.positionalArguments().isEmpty()) {
        std::fprintf(stderr, "vrnconfigtool: unexpected argument %s\n", qPrintable(parser.positionalArguments().first()));
        return 2;
    }
    // Without a display there is no OpenGL either: draw in software.
    if (QGuiApplication::platformName() == QLatin1String("offscreen"))
        QQuickWindow::setSceneGraphBackend(QSGRendererInterface::Software);
    QQmlApplicationEngine engine;
    QString error;
    if (!AppEngine::start(engine, parser.value(bus), &error)) {
        std::fprintf(stderr, "vrnconfigtool: %s\n", qPrintable(error));
        return 1;
    }
    return app.exec();
}
