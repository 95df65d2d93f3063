#ifndef SETTINGS_H
#define SETTINGS_H

#include <QSettings>
#include <QString>
#include <QVariant>

/// The user's preferences: a per-user INI store (organisation "Velmo",
/// application "VRNConfigTool") shared by the library and the front end.
///
/// Every write made through `setValue` or `setValueIfNotSet` announces its
/// key with `settingChanged`. There is one instance per process:
///
///     Settings::instance()->setValue("firmwarePath", dir);
class Settings : public QSettings
{
    Q_OBJECT
public:
    ~Settings() override;

    /// The process-wide instance, created on first use.
    static Settings* instance();
    /// Deletes the instance; the next `instance()` opens the store again.
    static void destroy();

    /// Stores `value` and emits `settingChanged`, also when nothing changed.
    Q_INVOKABLE void setValue(const QString& key, const QVariant& value);
    Q_INVOKABLE QVariant value(const QString& key, const QVariant& defaultValue) const;
    /// Stores `value` only when `key` is absent (an empty stored value counts
    /// as present); emits `settingChanged` only when it stored.
    Q_INVOKABLE void setValueIfNotSet(const QString& key, const QVariant& value);
    /// The stored value converted by QVariant's rules ("true" is true).
    Q_INVOKABLE bool boolValue(const QString& key, bool defaultValue) const;
    /// Hook for library-wide defaults; there are none: every reader gives its
    /// own default.
    Q_INVOKABLE void initToDefaults();

signals:
    void settingChanged(const QString& key);

protected:
    Settings();
};

#endif // SETTINGS_H
