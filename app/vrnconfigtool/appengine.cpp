#include "appengine.h"

#include "busdiscoverjob.h"
#include "busdiscovertask.h"
#include "busfactory.h"
#include "changerecorder.h"
#include "qmldocumentsession.h"
#include "libraryversion.h"
#include "objectfactory.h"
#include "vrn.h"
#include "vrnconfigtoolqml.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLibraryInfo>
#include <QLocale>
#include <QMutex>
#include <QQmlApplicationEngine>
#include <QQmlContext>
#include <QtQml>
#include <QQuickStyle>
#include <QStandardPaths>
#include <QTranslator>
#include <QUrl>

void AppEngine::followBus()
{
    // Connected before any device object is built, so this runs before the
    // objects hear of the new bus: those of the old registry have left it by
    // then, and none can reach the device of the same number on the new one.
    BusFactory* buses = BusFactory::instance();
    ObjectFactory* registry = ObjectFactory::instance();
    // Once per registry, however often the window starts.
    if (registry->property("vrnFollowsBus").toBool())
        return;
    registry->setProperty("vrnFollowsBus", true);
    QObject::connect(buses, &BusFactory::busChanged, registry, [buses, registry](VRNBus* bus) {
        registry->switchRegistry(bus ? ObjectFactory::registryFile(buses->busUUID()) : QStringLiteral(":memory:"));
    });
}

#include <cstdio>

namespace {

struct LogState
{
    QMutex mutex;
    QFile file;
    bool verbose = false;
    QString language = QStringLiteral("en");
};

LogState& state()
{
    static LogState s;
    return s;
}

void writeLine(const QString& line)
{
    LogState& s = state();
    QMutexLocker lock(&s.mutex);
    if (s.file.isOpen()) {
        s.file.write(line.toUtf8() + '\n');
        s.file.flush();
    }
}

void handler(QtMsgType type, const QMessageLogContext&, const QString& text)
{
    if (type == QtDebugMsg && !state().verbose)
        return;
    static const char* const names[] = {"debug", "warning", "critical", "fatal", "info"};
    const QString line = QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd hh:mm:ss.zzz "))
        + QLatin1String(names[qBound(0, int(type), 4)]) + QLatin1Char(' ') + text;
    writeLine(line);
    if (state().verbose || type == QtFatalMsg)
        std::fprintf(stderr, "%s\n", qPrintable(line));
}

} // namespace

AppLog::AppLog(QObject* parent)
    : QObject(parent)
{
}

QString AppLog::path() const
{
    return AppEngine::logPath();
}

void AppLog::add(const QString& text, bool isError)
{
    if (text.isEmpty())
        return;
    const QString stamped = QTime::currentTime().toString(QStringLiteral("hh:mm:ss  ")) + text;
    writeLine(QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd hh:mm:ss.zzz "))
              + (isError ? QStringLiteral("error ") : QStringLiteral("note ")) + text);
    m_entries.prepend(isError ? QStringLiteral("\u26A0 ") + stamped : stamped);
    if (m_entries.size() > 200)
        m_entries.removeLast();
    if (isError)
        ++m_errors;
    emit entriesChanged();
}

void AppLog::clear()
{
    m_entries.clear();
    m_errors = 0;
    emit entriesChanged();
}

QVariantList AppHelper::foundDevices(QObject* discoveryJob) const
{
    QVariantList out;
    auto* job = qobject_cast<Job*>(discoveryJob);
    auto* task = job ? qobject_cast<BusDiscoverTask*>(job->task()) : nullptr;
    if (!task)
        return out;
    const QList<unsigned int> uuids = job->result().value<QList<unsigned int>>();
    const QList<unsigned int> nodes = task->answeredNodes();
    for (int i = 0; i < uuids.size(); ++i) {
        VRNObject::UUID uuid = uuids.at(i);
        // A node listed before: its row, by its number and kind.
        if (uuid == BusDiscoverTask::NoObject && i < nodes.size())
            uuid = ObjectFactory::instance()->findObject(VRN::getNumber(nodes.at(i)),
                                                         BusDiscoverTask::deviceType(VRN::getType(nodes.at(i))));
        if (uuid != 0 && uuid != BusDiscoverTask::NoObject && !out.contains(uuid))
            out.append(uuid);
    }
    return out;
}

QString AppEngine::languageFromArguments(const QStringList& arguments)
{
    for (int i = 1; i < arguments.size(); ++i) {
        const QString& a = arguments.at(i);
        if ((a == QLatin1String("--lang") || a == QLatin1String("-lang")) && i + 1 < arguments.size())
            return arguments.at(i + 1);
        if (a.startsWith(QLatin1String("--lang=")))
            return a.mid(7);
    }
    return QString();
}

QString AppEngine::translationsPath()
{
    return QDir::cleanPath(QCoreApplication::applicationDirPath() + QStringLiteral("/../share/vrnconfigtool/translations"));
}

QString AppEngine::installTranslations(const QString& language)
{
    const QLocale locale = language.isEmpty() ? QLocale::system() : QLocale(language);
    auto* own = new QTranslator(QCoreApplication::instance());
    if (!own->load(locale, QStringLiteral("vrnconfigtool"), QStringLiteral("_"), translationsPath())) {
        delete own;
        state().language = QStringLiteral("en");
        return state().language;
    }
    QCoreApplication::installTranslator(own);
    // Qt's own texts (the buttons of its dialogs) in the same language.
    auto* qt = new QTranslator(QCoreApplication::instance());
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    const QString qtTranslations = QLibraryInfo::path(QLibraryInfo::TranslationsPath);
#else
    const QString qtTranslations = QLibraryInfo::location(QLibraryInfo::TranslationsPath);
#endif
    if (qt->load(locale, QStringLiteral("qtbase"), QStringLiteral("_"), qtTranslations))
        QCoreApplication::installTranslator(qt);
    else
        delete qt;
    QLocale::setDefault(locale);
    state().language = locale.name().section(QLatin1Char('_'), 0, 0);
    return state().language;
}

QString AppEngine::defaultLogPath()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation) + QStringLiteral("/vrnconfigtool.log");
}

QString AppEngine::logPath()
{
    return state().file.fileName();
}

bool AppEngine::startLog(const QString& path, bool verbose, QString* error)
{
    LogState& s = state();
    const QString file = path.isEmpty() ? defaultLogPath() : path;
    QDir().mkpath(QFileInfo(file).absolutePath());
    s.file.setFileName(file);
    if (!s.file.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Text)) {
        *error = QCoreApplication::translate("main", "cannot write the log file %1: %2").arg(file, s.file.errorString());
        return false;
    }
    s.verbose = verbose;
    qInstallMessageHandler(handler);
    return true;
}

bool AppEngine::start(QQmlApplicationEngine& engine, const QString& busUUID, QString* error)
{
    followBus();
    if (!VRNConfigToolQml::load(&engine)) {
        *error = QCoreApplication::translate("main", "the QML module VRNConfigTool could not be loaded");
        return false;
    }
    // Backup & Compare and History; every write the application makes goes to the change log.
    qmlRegisterType<QmlDocumentSession>("VRNConfigTool.Documents", 1, 0, "DocumentSession");
    ChangeRecorder::install();
    // Once per process: a window started again (another language) keeps the
    // style, which Qt refuses to change once the controls are loaded.
    static const bool styled = [] {
        if (qEnvironmentVariableIsEmpty("QT_QUICK_CONTROLS_STYLE"))
            QQuickStyle::setStyle(QStringLiteral("Fusion"));
        return true;
    }();
    Q_UNUSED(styled)
    engine.rootContext()->setContextProperty(QStringLiteral("startBusUUID"), busUUID);
    engine.rootContext()->setContextProperty(QStringLiteral("appLog"), new AppLog(&engine));
    engine.rootContext()->setContextProperty(QStringLiteral("appHelper"), new AppHelper(&engine));
    engine.rootContext()->setContextProperty(QStringLiteral("appVersion"), QStringLiteral(VRNCONFIGTOOL_VERSION));
    engine.rootContext()->setContextProperty(QStringLiteral("libraryVersion"), VRNConfigTool::libraryVersion());
    engine.rootContext()->setContextProperty(QStringLiteral("appLanguage"), state().language);
    engine.load(QUrl(QStringLiteral("qrc:/vrnconfigtool/main.qml")));
    if (engine.rootObjects().isEmpty()) {
        *error = QCoreApplication::translate("main", "the main window could not be loaded");
        return false;
    }
    return true;
}
