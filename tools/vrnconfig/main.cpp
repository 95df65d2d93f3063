#include "busfactory.h"
#include "changerecorder.h"
#include "objectfactory.h"
#include "settings.h"
#include "vrnconfigcli.h"
#include "vrnmessage.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QLoggingCategory>

#include <memory>

#include <unistd.h>

int main(int argc, char** argv)
{
    // The report lays out text (fonts, a PDF): only it needs a GUI
    // application, and never a screen.
    bool report = false;
    for (int i = 1; i < argc; ++i)
        report = report || qstrcmp(argv[i], "report") == 0;
    if (report && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    // The library's traces and warnings are for developers (VRNCONFIG_DEBUG=1
    // shows them): the tool reports every failure itself, in one line.
    if (qEnvironmentVariableIsEmpty("VRNCONFIG_DEBUG"))
        QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false\n*.warning=false"));
    std::unique_ptr<QCoreApplication> application(report ? new QGuiApplication(argc, argv)
                                                         : new QCoreApplication(argc, argv));
    QCoreApplication& app = *application;
    QCoreApplication::setOrganizationName(QStringLiteral("Velmo"));
    QCoreApplication::setApplicationName(QStringLiteral("vrnconfig"));
    QCoreApplication::setApplicationVersion(QStringLiteral(VRNCONFIG_VERSION));
    // A tool number of this process's own (see PROTOCOL.md): replies to
    // another tool on the same bus are never taken for ours.
    VRN::setToolNumber(0xFE0000u + quint32(getpid()) % 0x10000u);
    // Every write this tool makes goes to the registry's change log.
    ChangeRecorder::install();
    VrnConfigCli cli;
    QObject::connect(&cli, &VrnConfigCli::done, &app, &QCoreApplication::exit, Qt::QueuedConnection);
    const int code = cli.start(app.arguments()) ? app.exec() : cli.exitCode();
    // Closing in this order ends the bus's calls, stores the registry and
    // writes the settings to disk.
    ObjectFactory::destroy();
    BusFactory::destroy();
    Settings::destroy();
    return code;
}
