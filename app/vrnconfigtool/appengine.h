#ifndef APPENGINE_H
#define APPENGINE_H

#include <QObject>
#include <QString>
#include <QStringList>

class QQmlApplicationEngine;

/// The application's message area: what went wrong (and what went well)
/// in the user's words, newest first, each also written to the log file.
class AppLog : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QStringList entries READ entries NOTIFY entriesChanged)
    Q_PROPERTY(int errorCount READ errorCount NOTIFY entriesChanged)
    Q_PROPERTY(QString path READ path CONSTANT)
public:
    explicit AppLog(QObject* parent = nullptr);
    QStringList entries() const { return m_entries; }
    int errorCount() const { return m_errors; }
    QString path() const;
    /// Adds `text` to the area and to the log file.
    Q_INVOKABLE void add(const QString& text, bool isError);
    Q_INVOKABLE void clear();

Q_SIGNALS:
    void entriesChanged();

private:
    QStringList m_entries;
    int m_errors = 0;
};

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
/// The language asked for by "--lang X" or "--lang=X" in `arguments`;
/// empty: the system's.
QString languageFromArguments(const QStringList& arguments);
/// Loads the interface's translation for `language` (empty: the system
/// locale's) and Qt's own; the language shown ("en" when none fits).
QString installTranslations(const QString& language);
/// The folder of the .qm files, beside the program as installed.
QString translationsPath();

/// Where the log goes unless --log names a file.
QString defaultLogPath();
/// Sends every message of the process to the log file `path` (empty: the
/// default), debug lines only when `verbose`, and to the terminal only when
/// `verbose` (and fatal ones).
bool startLog(const QString& path, bool verbose, QString* error);
/// The log file in use, empty before `startLog`.
QString logPath();

} // namespace AppEngine

#endif // APPENGINE_H
