#include "qmldcmotorconfigdata.h"
#include "qmlruntimedata.h"
#include "qmlsharedobject.h"

#include <QPointer>
#include <QTest>

namespace {

QSet<QByteArray> dynamicNames(const QObject& o)
{
    const QList<QByteArray> names = o.dynamicPropertyNames();
    return QSet<QByteArray>(names.cbegin(), names.cend());
}

bool allNull(const QObject& o)
{
    for (const QByteArray& name : o.dynamicPropertyNames()) {
        if (!o.property(name).isNull())
            return false;
    }
    return true;
}

DCMotorConfigData fullDCRecord()
{
    DCMotorConfigData dc;
    DCMotorConfigDataData& p = dc.data();
    p.label = "dc";
    p.serialNumber = "S1";
    p.groups = {0, 0x123, 0};
    p.appVersion.major = 2;
    p.appVersion.minor = 1;
    p.rotDirection = 1;
    p.upEndLimit = 4000;
    p.downEndLimit = 12;
    p.ips = {{100, 10}, {0xFFFF, 30}, {200, 0xFF}};
    p.upRollingSpeed = 28;
    p.softStartValue = 40;
    p.softStopStatus = 1;
    return dc;
}

} // namespace

class tst_QmlConfigData : public QObject
{
    Q_OBJECT

private slots:
    void propertiesCreatedAtConstruction();
    void standardProperties();
    void motorPropertiesRefreshStandard();
    void dcUpdateSetsOnlyDcProperties();
    void configOverloadDowncastsOrForwards();
    void runtimeProperties();
    void sharedObjectKeepsObjectAlive();
};

void tst_QmlConfigData::propertiesCreatedAtConstruction()
{
    QVERIFY(QmlConfigData().dynamicPropertyNames().isEmpty());
    const QmlStdConfigData std;
    QCOMPARE(dynamicNames(std), (QSet<QByteArray>{"networkConfig", "appVersion", "label", "serialNumber"}));
    QVERIFY(allNull(std));
    const QmlDCMotorConfigData dc;
    QCOMPARE(dynamicNames(dc), (QSet<QByteArray>{"networkConfig", "appVersion", "label", "serialNumber",
                                                 "upEndLimit", "downEndLimit"}));
    QVERIFY(allNull(dc));
    const QmlRuntimeData runtime;
    QCOMPARE(runtime.dynamicPropertyNames().size(), 27);
    QVERIFY(allNull(runtime));
}

void tst_QmlConfigData::standardProperties()
{
    QmlStdConfigData w;
    w.update(StdConfigData(fullDCRecord()));
    QCOMPARE(w.property("firmwareVersion"), QVariant(QStringLiteral("2.1.0")));
    QCOMPARE(w.property("label"), QVariant(QByteArray("dc")));
    QCOMPARE(w.property("serialNumber"), QVariant(QByteArray("S1")));
    QCOMPARE(w.property("groups"), QVariant(QVariantList{0u, 0x123u, 0u}));
    QCOMPARE(w.property("groups").toList().at(1).userType(), int(QMetaType::UInt));
    QCOMPARE(w.property("groupsCount"), QVariant(1));
    QVERIFY(w.property("networkConfig").isNull());
    QVERIFY(w.property("appVersion").isNull());

    StdConfigData empties;
    empties.data().groups = {0, 0};
    w.update(empties);
    QCOMPARE(w.property("groupsCount"), QVariant(0));
    QCOMPARE(w.property("groups").toList().size(), 2);

    // The count is kept in eight bits.
    StdConfigData many;
    for (VRN::Addr g = 1; g <= 257; ++g)
        many.data().groups.append(g);
    w.update(many);
    QCOMPARE(w.property("groupsCount"), QVariant(1));
}

void tst_QmlConfigData::motorPropertiesRefreshStandard()
{
    QmlMotorConfigData w;
    const ConfigData record = MotorConfigData(fullDCRecord());
    QVERIFY(QMetaObject::invokeMethod(&w, "update", Q_ARG(ConfigData, record))); // as QML calls it
    QCOMPARE(w.property("rotDirection"), QVariant(1));
    QCOMPARE(w.property("upEndLimit"), QVariant(4000));
    QCOMPARE(w.property("downEndLimit"), QVariant(12));
    QCOMPARE(w.property("ipsPulse"), QVariant(QVariantList{100, 0xFFFF, 200}));
    QCOMPARE(w.property("ipsPct"), QVariant(QVariantList{10, 30, 0xFF}));
    QCOMPARE(w.property("ipsPulseCount"), QVariant(2));
    QCOMPARE(w.property("ipsPctCount"), QVariant(2));
    QCOMPARE(w.property("label"), QVariant(QByteArray("dc")));
    QVERIFY(!w.property("upRollingSpeed").isValid());
}

void tst_QmlConfigData::dcUpdateSetsOnlyDcProperties()
{
    QmlDCMotorConfigData w;
    const DCMotorConfigData dc = fullDCRecord();
    w.update(dc);
    QCOMPARE(w.property("upRollingSpeed"), QVariant(28));
    QCOMPARE(w.property("downRollingSpeed"), QVariant(0));
    QCOMPARE(w.property("softStartValue"), QVariant(40));
    QCOMPARE(w.property("softStopValue"), QVariant(0xFF));
    QCOMPARE(w.property("softStartStatus"), QVariant(false));
    QCOMPARE(w.property("softStopStatus"), QVariant(true));
    QVERIFY(w.property("label").isNull());
    QVERIFY(w.property("upEndLimit").isNull());

    w.update(static_cast<const MotorConfigData&>(dc));
    QCOMPARE(w.property("upEndLimit"), QVariant(4000));
    QCOMPARE(w.property("label"), QVariant(QByteArray("dc")));
}

void tst_QmlConfigData::configOverloadDowncastsOrForwards()
{
    // A motor record through the root overload of a standard wrapper.
    QmlStdConfigData std;
    std.update(ConfigData(MotorConfigData(fullDCRecord())));
    QCOMPARE(std.property("label"), QVariant(QByteArray("dc")));
    QVERIFY(!std.property("rotDirection").isValid());

    // A standard record on a motor wrapper: standard properties only.
    QmlMotorConfigData motor;
    motor.update(ConfigData(StdConfigData(*new StdConfigDataData(fullDCRecord().getConstData()))));
    QCOMPARE(motor.property("label"), QVariant(QByteArray("dc")));
    QVERIFY(motor.property("upEndLimit").isNull());
    QVERIFY(!motor.property("rotDirection").isValid());

    // A DC record sliced to ConfigData still reaches the DC level.
    QmlDCMotorConfigData dc;
    QmlConfigData& asRoot = dc;
    asRoot.update(ConfigData(fullDCRecord()));
    QCOMPARE(dc.property("upRollingSpeed"), QVariant(28));
    QVERIFY(dc.property("label").isNull());

    // A motor record on a DC wrapper falls back to the motor level.
    QmlDCMotorConfigData fallback;
    fallback.update(ConfigData(MotorConfigData(*new MotorConfigDataData(fullDCRecord().getConstData()))));
    QCOMPARE(fallback.property("upEndLimit"), QVariant(4000));
    QVERIFY(!fallback.property("upRollingSpeed").isValid());

    // The root wrapper ignores everything.
    QmlConfigData root;
    root.update(ConfigData(fullDCRecord()));
    QVERIFY(root.dynamicPropertyNames().isEmpty());
}

// Counters keep their full unsigned range; values not received read as 0.
void tst_QmlConfigData::runtimeProperties()
{
    RuntimeData r;
    r.data().networkStat.frameSent = 0xFFFFFFF0u;
    QmlRuntimeData w;
    w.update(r);
    QCOMPARE(w.property("frameSent"), QVariant(0xFFFFFFF0u));
    QCOMPARE(w.property("frameSent").userType(), int(QMetaType::UInt));
    QCOMPARE(w.property("posPulse"), QVariant(0));
    QCOMPARE(w.dynamicPropertyNames().size(), 27); // update names no property of its own
}

void tst_QmlConfigData::sharedObjectKeepsObjectAlive()
{
    QSharedPointer<QObject> object(new QObject);
    QPointer<QObject> watch = object.data();
    auto* owner = new QObject;
    auto* wrapper = new QmlSharedObject(object, owner);
    QCOMPARE(wrapper->property("data").value<QObject*>(), object.data());
    object.reset();
    QVERIFY(watch);
    delete owner;
    QVERIFY(!watch);
}

QTEST_GUILESS_MAIN(tst_QmlConfigData)
#include "tst_qmlconfigdata.moc"
