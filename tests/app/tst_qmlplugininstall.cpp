// The QML plugin from an installed tree (a program of its own: a process
// loads one plugin per module).
#include "vrnconfigtoolqml.h"
#include "vrnconfigtoolqml_p.h"

#include <QFile>
#include <QProcess>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QTemporaryDir>
#include <QtTest>

class tst_QmlPluginInstall : public QObject
{
    Q_OBJECT

private slots:
    void installedTree();
};

// Installs the project into a temporary prefix, then loads the module from
// there alone: the plugin must sit where an installed application looks
// ("<bin>/../bin/qml/VRNConfigTool") and be the file the engine maps.
void tst_QmlPluginInstall::installedTree()
{
    QTemporaryDir prefix;
    QProcess install;
    install.start(QStringLiteral(VRN_CMAKE_COMMAND),
                  {QStringLiteral("--install"), QStringLiteral(VRN_BINARY_DIR), QStringLiteral("--prefix"), prefix.path()});
    QVERIFY(install.waitForFinished(60000));
    QCOMPARE(install.exitCode(), 0);

    const QString appDir = prefix.path() + QStringLiteral("/bin");
    // The installed program finds the installed libraries by itself.
    QProcess app;
    app.start(appDir + QStringLiteral("/vrnconfigtool"), {QStringLiteral("--help")});
    QVERIFY(app.waitForFinished(10000));
    QCOMPARE(app.exitCode(), 0);
    const QString pluginDir = appDir + QStringLiteral("/../bin/qml/VRNConfigTool");
    const QString plugin = QDir(pluginDir).canonicalPath() + QLatin1Char('/') + VRNConfigToolQml::pluginFileName();
    QVERIFY2(QFile::exists(plugin), qPrintable(plugin));

    QQmlEngine engine;
    QVERIFY(VRNConfigToolQmlPrivate::load(&engine, {pluginDir}));
    QQmlComponent component(&engine);
    component.setData(QByteArray("import VRNConfigTool 1.0\nGetLabelJob {}"), QUrl::fromLocalFile(QStringLiteral("/installed.qml")));
    QScopedPointer<QObject> object(component.create());
    QVERIFY2(object, qPrintable(component.errorString()));
    QFile maps(QStringLiteral("/proc/self/maps"));
    QVERIFY(maps.open(QIODevice::ReadOnly));
    QVERIFY(maps.readAll().contains(plugin.toUtf8()));
}

QTEST_MAIN(tst_QmlPluginInstall)
#include "tst_qmlplugininstall.moc"
