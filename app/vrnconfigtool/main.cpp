#include "appengine.h"

#include "vrnmessage.h"

#include <QCommandLineParser>
#include <QApplication>
#include <QQmlApplicationEngine>
#include <QQuickWindow>

#include <cstdio>
#include <cstring>
#include <unistd.h>

namespace {

struct Options
{
    QCommandLineOption bus{QStringLiteral("bus"),
                           QCoreApplication::translate("main", "Opens this bus (\"serial:PORT\" or \"mcast:GROUP:PORT:BIND\") "
                                                               "instead of the one of the last run."),
                           QStringLiteral("uuid")};
    QCommandLineOption lang{QStringLiteral("lang"),
                            QCoreApplication::translate("main", "Shows the interface in this language (\"de\", \"en\") "
                                                                "instead of the system's."),
                            QStringLiteral("language")};
    QCommandLineOption verbose{QStringLiteral("verbose"),
                               QCoreApplication::translate("main", "Also writes the library's traces to the log file "
                                                                   "and every message to the terminal.")};
    QCommandLineOption log{QStringLiteral("log"),
                           QCoreApplication::translate("main", "Writes the log to this file instead of %1.")
                               .arg(AppEngine::defaultLogPath()),
                           QStringLiteral("file")};

    void addTo(QCommandLineParser& parser)
    {
        parser.setApplicationDescription(QCoreApplication::translate("main", "Configures the devices of a VRN network."));
        parser.addHelpOption();
        parser.addVersionOption();
        parser.addOptions({bus, lang, verbose, log});
    }
};

// --help and --version answer before anything needs a display.
bool asksForTextOnly(int argc, char* argv[])
{
    for (int i = 1; i < argc; ++i) {
        for (const char* word : {"-h", "--help", "-help", "--help-all", "-?", "-v", "--version"})
            if (std::strcmp(argv[i], word) == 0)
                return true;
    }
    return false;
}

void describe()
{
    QCoreApplication::setOrganizationName(QStringLiteral("Velmo"));
    QCoreApplication::setApplicationName(QStringLiteral("vrnconfigtool"));
    QCoreApplication::setApplicationVersion(QStringLiteral(VRNCONFIGTOOL_VERSION));
}

} // namespace

int main(int argc, char* argv[])
{
    if (asksForTextOnly(argc, argv)) {
        QCoreApplication app(argc, argv);
        describe();
        AppEngine::installTranslations(AppEngine::languageFromArguments(app.arguments()));
        QCommandLineParser parser;
        Options options;
        options.addTo(parser);
        parser.process(app); // prints and exits
        return 0;
    }
    QApplication app(argc, argv);
    describe();
    QApplication::setApplicationDisplayName(QStringLiteral("VRN configuration tool"));
    AppEngine::installTranslations(AppEngine::languageFromArguments(app.arguments()));
    QCommandLineParser parser;
    Options options;
    options.addTo(parser);
    parser.process(app);
    if (!parser.positionalArguments().isEmpty()) {
        std::fprintf(stderr, "%s\n",
                     qPrintable(QCoreApplication::translate("main", "vrnconfigtool: unexpected argument %1")
                                    .arg(parser.positionalArguments().first())));
        return 2;
    }
    QString error;
    if (!AppEngine::startLog(parser.value(options.log), parser.isSet(options.verbose), &error)) {
        std::fprintf(stderr, "vrnconfigtool: %s\n", qPrintable(error));
        return 1;
    }
    // A tool number of this process's own (see PROTOCOL.md), as vrnconfig
    // has: two instances and the command-line tool share a bus.
    VRN::setToolNumber(0xFE0000u + quint32(getpid()) % 0x10000u);
    // Without a display there is no OpenGL either: draw in software.
    if (QApplication::platformName() == QLatin1String("offscreen"))
        QQuickWindow::setSceneGraphBackend(QStringLiteral("software"));
    QQmlApplicationEngine engine;
    if (!AppEngine::start(engine, parser.value(options.bus), &error)) {
        qCritical("[main]: %s", qPrintable(error));
        std::fprintf(stderr, "vrnconfigtool: %s\n", qPrintable(error));
        return 1;
    }
    return app.exec();
}
