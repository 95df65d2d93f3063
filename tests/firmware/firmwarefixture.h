#ifndef FIRMWAREFIXTURE_H
#define FIRMWAREFIXTURE_H

// Shared set-up of the firmware tests: settings in a temporary folder, keys
// made at run time and configured, and packages written into the folder
// that "firmwarePath" names.

#include "bpkpackage.h"
#include "settings.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

namespace FirmwareFixture {

inline QByteArray image(int size, int seed = 1)
{
    QByteArray out(size, Qt::Uninitialized);
    for (int i = 0; i < size; ++i)
        out[i] = char((i * 131 + seed * 7 + i / 5) & 0xFF);
    return out;
}

struct Folder
{
    QTemporaryDir home;
    BpkKeys keys = BpkKeys::generate();
    QString packages;

    /// Points the settings at the temporary home; call before Settings is used.
    static void redirectSettings(const QTemporaryDir& home)
    {
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(home.filePath(QStringLiteral("config"))));
        Settings::destroy();
    }

    Folder()
    {
        redirectSettings(home);
        packages = home.filePath(QStringLiteral("packages"));
        QDir().mkpath(packages);
        const QString keyFile = home.filePath(QStringLiteral("firmware.keys"));
        keys.save(keyFile, false, nullptr);
        Settings::instance()->setValue(QStringLiteral("firmwareKeyFile"), keyFile);
        Settings::instance()->setValue(QStringLiteral("firmwarePath"), packages);
    }
    ~Folder() { Settings::destroy(); }

    /// Writes package `name` for `types`, version "major.minor.patch", of an
    /// image of `size` bytes; signed with `signer` (the configured keys when null).
    QString add(const QString& name, const QList<int>& types, const QString& version, int size = 200,
                const BpkKeys* signer = nullptr) const
    {
        BpkManifest m;
        m.nodeTypes = types;
        BpkManifest::parseVersion(version, &m);
        const QByteArray archive = BpkPackage::build(m, image(size, m.minor + m.patch), signer ? *signer : keys, nullptr);
        const QString path = QDir(packages).filePath(name);
        QFile f(path);
        f.open(QIODevice::WriteOnly);
        f.write(archive);
        return path;
    }
};

} // namespace FirmwareFixture

#endif // FIRMWAREFIXTURE_H
