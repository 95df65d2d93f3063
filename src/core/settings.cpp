#include "settings.h"

#include "pubsettings.h"
#include "singleton.h"

Settings::Settings()
    : QSettings(QSettings::IniFormat, QSettings::UserScope,
                QStringLiteral("Velmo"), QStringLiteral("VRNConfigTool"))
{
}

Settings::~Settings() = default;

Settings* Settings::instance()
{
    return Singleton<PubSettings>::instance();
}

void Settings::destroy()
{
    Singleton<PubSettings>::destroy();
}

void Settings::setValue(const QString& key, const QVariant& value)
{
    QSettings::setValue(key, value);
    emit settingChanged(key);
}

QVariant Settings::value(const QString& key, const QVariant& defaultValue) const
{
    return QSettings::value(key, defaultValue);
}

void Settings::setValueIfNotSet(const QString& key, const QVariant& value)
{
    if (contains(key))
        return;
    setValue(key, value);
}

bool Settings::boolValue(const QString& key, bool defaultValue) const
{
    return QSettings::value(key, QVariant(defaultValue)).toBool();
}

void Settings::initToDefaults()
{
}
