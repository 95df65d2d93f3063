// The QML plugin, loaded from the build tree: every published class under
// `import VRNConfigTool`, as a singleton, a creatable type or a known but
// uncreatable one.
#include "vrnconfigtoolqml.h"

#include <QFile>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QTemporaryDir>
#include <QtTest>

namespace {
enum Kind { Singleton, Creatable, Uncreatable };

// A component that uses `name` the way its kind allows.
QByteArray componentFor(const QString& name, Kind kind)
{
    QString body;
    if (kind == Singleton)
        body = QStringLiteral("QtObject { property var it: %1 }").arg(name);
    else
        body = QStringLiteral("%1 {}").arg(name);
    return ("import QtQml 2.15\nimport VRNConfigTool 1.0\n" + body).toUtf8();
}
} // namespace

class tst_QmlPlugin : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void types_data();
    void types();

private:
    QTemporaryDir m_home;
};

void tst_QmlPlugin::initTestCase()
{
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(m_home.path()));
    QStandardPaths::setTestModeEnabled(true);
}

void tst_QmlPlugin::types_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("kind");
    for (const char* name : {"Settings", "BusFactory", "ObjectFactory", "GroupFactory"})
        QTest::newRow(name) << name << int(Singleton);
    for (const char* name : {"QMLSerialPortList", "DeviceRecords", "GroupControl", "BusDiscoverJob", "SetNodeDiscoveryJob",
                             "GetFwVersionJob", "GetGroupsJob", "SetGroupsJob", "GetLabelJob", "SetLabelJob", "GetSerialNumberJob",
                             "VisualFeedbackJob", "MotorControlJob", "MotorCtrlMoveJob", "GetDirectionJob",
                             "SetDirectionJob", "GetEndLimitsJob", "SetEndLimitsJob", "GetPositionJob",
                             "SetFactoryDefaultJob", "GetMotorIpsJob", "SetMotorIpJob", "GetSpeedJob",
                             "SetSpeedJob", "GetRampJob", "SetRampJob", "FirmwareLoader",
                             "GetMotorDiagnosticJob", "GetNetworkStatsJob", "SetNetworkStatsJob", "CheckFwJob",
                             "UpdateFwJob", "DirectUpdateFwJob"})
        QTest::newRow(name) << name << int(Creatable);
    for (const char* name : {"ObjectQueryModel", "ObjectSelectionModel", "VRNListenerViewModel", "VRNObject",
                             "VRNStdObject", "VRNMotorObject", "VRNDCMotorObject", "LRU50Object", "TX50DCObject",
                             "TX30Object", "SettingToolObject", "VRNObjectWorker", "QmlStdConfigData",
                             "QmlMotorConfigData", "QmlDCMotorConfigData", "QmlRuntimeData", "QmlSharedObject",
                             "GroupWorker", "GroupTaskResultModel", "QmlGroupTaskResult", "FirmwareJob"})
        QTest::newRow(name) << name << int(Uncreatable);
}

void tst_QmlPlugin::types()
{
    QFETCH(QString, name);
    QFETCH(int, kind);
    QQmlEngine engine;
    QVERIFY(VRNConfigToolQml::load(&engine));
    QQmlComponent component(&engine);
    component.setData(componentFor(name, Kind(kind)), QUrl::fromLocalFile(QStringLiteral("/types.qml")));
    QScopedPointer<QObject> object(component.create());
    if (kind == Uncreatable) {
        QVERIFY(!object);
        QVERIFY2(component.errorString().contains(QStringLiteral("handed out by the library")),
                 qPrintable(component.errorString()));
        return;
    }
    QVERIFY2(object, qPrintable(component.errorString()));
    if (kind == Singleton)
        QVERIFY(object->property("it").value<QObject*>());
}

QTEST_MAIN(tst_QmlPlugin)
#include "tst_qmlplugin.moc"
