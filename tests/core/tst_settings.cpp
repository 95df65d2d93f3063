#include "settings.h"

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

class tst_Settings : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanupTestCase();
    void storedPerUserAsIni();
    void writesAnnounceTheirKey();
    void setValueIfNotSetKeepsAnyStoredValue_data();
    void setValueIfNotSetKeepsAnyStoredValue();
    void boolValue_data();
    void boolValue();

private:
    QTemporaryDir m_config;
};

void tst_Settings::initTestCase()
{
    QVERIFY(m_config.isValid());
    // Before the first QSettings: the per-user location is read once.
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(m_config.path()));
}

void tst_Settings::init()
{
    Settings::instance()->clear();
}

void tst_Settings::cleanupTestCase()
{
    Settings::destroy();
}

void tst_Settings::storedPerUserAsIni()
{
    QCOMPARE(Settings::instance()->format(), QSettings::IniFormat);
    QCOMPARE(Settings::instance()->fileName(),
             m_config.path() + QStringLiteral("/Velmo/VRNConfigTool.ini"));
}

void tst_Settings::writesAnnounceTheirKey()
{
    Settings* s = Settings::instance();
    QSignalSpy changed(s, &Settings::settingChanged);
    s->setValue(QStringLiteral("firmwarePath"), QStringLiteral("/opt/fw"));
    s->setValue(QStringLiteral("firmwarePath"), QStringLiteral("/opt/fw"));
    s->setValueIfNotSet(QStringLiteral("theme"), QStringLiteral("dark"));
    QCOMPARE(changed.count(), 3);
    QCOMPARE(changed.at(1).at(0).toString(), QStringLiteral("firmwarePath"));
    QCOMPARE(changed.at(2).at(0).toString(), QStringLiteral("theme"));
    QCOMPARE(s->value(QStringLiteral("theme"), QVariant()).toString(), QStringLiteral("dark"));
}

void tst_Settings::setValueIfNotSetKeepsAnyStoredValue_data()
{
    QTest::addColumn<QVariant>("stored");
    QTest::newRow("text") << QVariant(QStringLiteral("kept"));
    QTest::newRow("empty text") << QVariant(QString(""));
    QTest::newRow("false") << QVariant(false);
    QTest::newRow("zero") << QVariant(0);
}

void tst_Settings::setValueIfNotSetKeepsAnyStoredValue()
{
    QFETCH(QVariant, stored);
    Settings* s = Settings::instance();
    s->setValue(QStringLiteral("key"), stored);
    QSignalSpy changed(s, &Settings::settingChanged);
    s->setValueIfNotSet(QStringLiteral("key"), QStringLiteral("other"));
    QCOMPARE(changed.count(), 0);
    QCOMPARE(s->value(QStringLiteral("key"), QVariant()), stored);
}

void tst_Settings::boolValue_data()
{
    QTest::addColumn<QVariant>("stored"); // invalid: key absent
    QTest::addColumn<bool>("defaultValue");
    QTest::addColumn<bool>("expected");
    QTest::newRow("absent, default true") << QVariant() << true << true;
    QTest::newRow("absent, default false") << QVariant() << false << false;
    QTest::newRow("text true") << QVariant(QStringLiteral("true")) << false << true;
    QTest::newRow("text false") << QVariant(QStringLiteral("false")) << true << false;
    QTest::newRow("bool false") << QVariant(false) << true << false;
    QTest::newRow("number 1") << QVariant(1) << false << true;
}

void tst_Settings::boolValue()
{
    QFETCH(QVariant, stored);
    QFETCH(bool, defaultValue);
    QFETCH(bool, expected);
    Settings* s = Settings::instance();
    if (stored.isValid())
        s->setValue(QStringLiteral("flag"), stored);
    QCOMPARE(s->boolValue(QStringLiteral("flag"), defaultValue), expected);
}

QTEST_GUILESS_MAIN(tst_Settings)
#include "tst_settings.moc"
