#include "vrnconfigtoolqml.h"
#include "vrnconfigtoolqml_p.h"

#include <algorithm>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QQmlEngine>

#ifndef VRN_BUILD_QML_DIR
#define VRN_BUILD_QML_DIR ""
#endif

namespace {
const char ImportRoot[] = "qrc:/qml";
const char ResourceQmldir[] = ":/qml/VRNConfigTool/qmldir";
}

QString VRNConfigToolQml::pluginFileName()
{
#if defined(Q_OS_WIN)
    return QStringLiteral("vrnconfigtoolplugin.dll");
#elif defined(Q_OS_MACOS)
    return QStringLiteral("libvrnconfigtoolplugin.dylib");
#else
    return QStringLiteral("libvrnconfigtoolplugin.so");
#endif
}

QStringList VRNConfigToolQml::candidateDirs()
{
    // fromLatin1 of the raw pointer stops at the first NUL, as a C string would.
    const QByteArray sysroot = qgetenv("SYSROOT");
    return {
        QStringLiteral(VRN_BUILD_QML_DIR),
        QCoreApplication::applicationDirPath() + QStringLiteral("/../bin/qml/VRNConfigTool"),
        QString::fromLatin1(sysroot.constData())
            + QStringLiteral("/C:/Program Files/VRNConfigTool/bin/qml/VRNConfigTool"),
    };
}

bool VRNConfigToolQml::load(QQmlEngine* engine)
{
    return VRNConfigToolQmlPrivate::load(engine, candidateDirs());
}

bool VRNConfigToolQmlPrivate::load(QQmlEngine* engine, const QStringList& candidates)
{
    if (!engine) {
        qWarning("[VRNConfigToolQml]:can't initialize module on a null engine");
        return false;
    }
    if (!QFile::exists(QLatin1String(ResourceQmldir))) {
        qWarning("[VRNConfigToolQml]: resources not available");
        return false;
    }
    const QString plugin = QLatin1Char('/') + VRNConfigToolQml::pluginFileName();
    const auto hit = std::find_if(candidates.cbegin(), candidates.cend(),
                                  [&plugin](const QString& dir) { return QFile::exists(dir + plugin); });
    if (hit == candidates.cend()) {
        qWarning("[VRNConfigToolQml]: failed to find VRNConfigTool QML plugin");
        return false;
    }
    const QString found = *hit;
    // The engine keeps a local plugin folder in canonical form ("a/../b"
    // becomes "b"), so a second call must look for that form too.
    const QStringList pluginPaths = engine->pluginPathList();
    if (!pluginPaths.contains(found, Qt::CaseSensitive)
        && !pluginPaths.contains(QDir(found).canonicalPath(), Qt::CaseSensitive))
        engine->addPluginPath(found);
    const QString importRoot = QLatin1String(ImportRoot);
    if (!engine->importPathList().contains(importRoot, Qt::CaseSensitive))
        engine->addImportPath(importRoot);
    return true;
}
