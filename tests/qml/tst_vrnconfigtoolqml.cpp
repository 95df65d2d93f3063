#include "vrnconfigtoolqml.h"
#include "vrnconfigtoolqml_p.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QQmlEngine>
#include <QTemporaryDir>
#include <QtTest>

class tst_VRNConfigToolQml : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();
    void candidatesInSearchOrder();
    void nullEngineIsTheOnlyComplaint();
    void missingResourcesFailBeforeTheSearch();
    void firstCandidateHoldingThePluginWins();
    void noCandidateLeavesEngineUntouched();
    void secondCallAddsNothing();
    void findsThePluginUnderSysroot();

private:
    /// Makes `dir` (below the temporary folder) hold a plugin file; returns its path.
    QString pluginDir(const QString& dir);

    QScopedPointer<QTemporaryDir> m_tmp;
    QByteArray m_sysroot;
};

void tst_VRNConfigToolQml::init()
{
    m_tmp.reset(new QTemporaryDir);
    QVERIFY(m_tmp->isValid());
    m_sysroot = qgetenv("SYSROOT");
    qunsetenv("SYSROOT");
}

void tst_VRNConfigToolQml::cleanup()
{
    if (!m_sysroot.isNull())
        qputenv("SYSROOT", m_sysroot);
}

QString tst_VRNConfigToolQml::pluginDir(const QString& dir)
{
    const QString path = m_tmp->path() + QLatin1Char('/') + dir;
    if (!QDir().mkpath(path))
        return QString();
    QFile plugin(path + QLatin1Char('/') + VRNConfigToolQml::pluginFileName());
    if (!plugin.open(QIODevice::WriteOnly))
        return QString();
    return path;
}

void tst_VRNConfigToolQml::candidatesInSearchOrder()
{
    const QString install = QStringLiteral("/C:/Program Files/VRNConfigTool/bin/qml/VRNConfigTool");
    QCOMPARE(VRNConfigToolQml::candidateDirs(),
             (QStringList{QStringLiteral(VRN_TEST_BUILD_QML_DIR),
                          QCoreApplication::applicationDirPath() + QStringLiteral("/../bin/qml/VRNConfigTool"),
                          install}));
    qputenv("SYSROOT", "/opt/root");
    QCOMPARE(VRNConfigToolQml::candidateDirs().at(2), QStringLiteral("/opt/root") + install);
}

void tst_VRNConfigToolQml::nullEngineIsTheOnlyComplaint()
{
    // Resources missing too: still only the null engine is reported.
    Q_CLEANUP_RESOURCE(vrnconfigtool);
    QTest::ignoreMessage(QtWarningMsg, "[VRNConfigToolQml]:can't initialize module on a null engine");
    const bool ok = VRNConfigToolQml::load(nullptr);
    Q_INIT_RESOURCE(vrnconfigtool);
    QVERIFY(!ok);
}

void tst_VRNConfigToolQml::missingResourcesFailBeforeTheSearch()
{
    const QString dir = pluginDir(QStringLiteral("a"));
    QQmlEngine engine;
    const QStringList plugins = engine.pluginPathList();
    Q_CLEANUP_RESOURCE(vrnconfigtool);
    QTest::ignoreMessage(QtWarningMsg, "[VRNConfigToolQml]: resources not available");
    const bool ok = VRNConfigToolQmlPrivate::load(&engine, {dir});
    Q_INIT_RESOURCE(vrnconfigtool);
    QVERIFY(!ok);
    QCOMPARE(engine.pluginPathList(), plugins);
}

void tst_VRNConfigToolQml::firstCandidateHoldingThePluginWins()
{
    const QString empty = m_tmp->path() + QStringLiteral("/empty");
    const QString second = pluginDir(QStringLiteral("second"));
    const QString third = pluginDir(QStringLiteral("third"));
    QQmlEngine engine;
    QVERIFY(VRNConfigToolQmlPrivate::load(&engine, {empty, second, third}));
    QVERIFY(engine.pluginPathList().contains(QDir(second).canonicalPath()));
    QVERIFY(!engine.pluginPathList().contains(QDir(third).canonicalPath()));
    QVERIFY(engine.importPathList().contains(QStringLiteral("qrc:/qml")));
}

void tst_VRNConfigToolQml::noCandidateLeavesEngineUntouched()
{
    QQmlEngine engine;
    const QStringList plugins = engine.pluginPathList();
    const QStringList imports = engine.importPathList();
    QTest::ignoreMessage(QtWarningMsg, "[VRNConfigToolQml]: failed to find VRNConfigTool QML plugin");
    QVERIFY(!VRNConfigToolQmlPrivate::load(&engine, {m_tmp->path(), m_tmp->path() + "/missing"}));
    QCOMPARE(engine.pluginPathList(), plugins);
    QCOMPARE(engine.importPathList(), imports);
}

void tst_VRNConfigToolQml::secondCallAddsNothing()
{
    // Spelled with "..", as the candidate beside the application is.
    pluginDir(QStringLiteral("bin/qml"));
    const QString dir = m_tmp->path() + QStringLiteral("/lib/../bin/qml");
    QVERIFY(QDir().mkpath(m_tmp->path() + QStringLiteral("/lib")));
    QQmlEngine engine;
    QVERIFY(VRNConfigToolQmlPrivate::load(&engine, {dir}));
    const QStringList plugins = engine.pluginPathList();
    const QStringList imports = engine.importPathList();
    QVERIFY(VRNConfigToolQmlPrivate::load(&engine, {dir}));
    QCOMPARE(engine.pluginPathList(), plugins);
    QCOMPARE(engine.importPathList(), imports);
    QCOMPARE(imports.count(QStringLiteral("qrc:/qml")), 1);

    // Another engine is prepared on its own.
    QQmlEngine other;
    QVERIFY(VRNConfigToolQmlPrivate::load(&other, {dir}));
    QCOMPARE(other.importPathList().count(QStringLiteral("qrc:/qml")), 1);
}

void tst_VRNConfigToolQml::findsThePluginUnderSysroot()
{
    const QStringList candidates = VRNConfigToolQml::candidateDirs();
    const QString plugin = QLatin1Char('/') + VRNConfigToolQml::pluginFileName();
    if (QFile::exists(candidates.at(0) + plugin) || QFile::exists(candidates.at(1) + plugin))
        QSKIP("a built plugin sits in an earlier candidate folder");
    const QString dir = pluginDir(QStringLiteral("C:/Program Files/VRNConfigTool/bin/qml/VRNConfigTool"));
    QVERIFY(!dir.isEmpty());
    qputenv("SYSROOT", QFile::encodeName(m_tmp->path()));
    QQmlEngine engine;
    QVERIFY(VRNConfigToolQml::load(&engine));
    QVERIFY(engine.pluginPathList().contains(QDir(dir).canonicalPath()));
}

QTEST_GUILESS_MAIN(tst_VRNConfigToolQml)
#include "tst_vrnconfigtoolqml.moc"
