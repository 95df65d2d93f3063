#include "dcmotorconfigdata.h"
#include "runtimedata.h"

#include <QTest>

using MotorIp = MotorConfigDataData::MotorIp;
Q_DECLARE_METATYPE(MotorIp)

namespace {

DTSStdProxy::AppVersion version(quint8 major, quint8 minor)
{
    DTSStdProxy::AppVersion v;
    v.major = major;
    v.minor = minor;
    return v;
}

void fillStd(StdConfigDataData& p, const QByteArray& label)
{
    p.label = label;
    p.serialNumber = "SN-" + label;
    p.groups = {0x10, 0};
    p.appVersion = version(2, 1);
    p.networkConfig.maxRetry = 3;
}

void fillMotor(MotorConfigDataData& p, quint16 limit)
{
    p.rotDirection = 1;
    p.upEndLimit = limit;
    p.downEndLimit = 10;
    p.ips = {MotorIp{500, 50}};
}

MotorConfigData motor(const QByteArray& label, quint16 limit)
{
    MotorConfigData m;
    fillStd(m.data(), label);
    fillMotor(m.data(), limit);
    return m;
}

StdConfigData standard(const QByteArray& label)
{
    StdConfigData s;
    fillStd(s.data(), label);
    return s;
}

// A standard payload that no field comparison finds equal to anything.
class NeverEqualData : public StdConfigDataData
{
public:
    NeverEqualData* clone() const override { return new NeverEqualData(*this); }
    bool operator==(const ConfigDataData&) const override { return false; }
};

} // namespace

class tst_ConfigData : public QObject
{
    Q_OBJECT

private slots:
    void writeDetachesAndKeepsDynamicType();
    void standardValidity();
    void motorIpsValidity_data();
    void motorIpsValidity();
    void dcValidityIgnoresStatusFlags();
    void comparisonLooksAtSharedLevelsOnly();
    void mergeCopiesDeepestSharedLevel();
    void mergeOfEqualOrUnknownValues();
    void eraseResetsOneLevel();
    void conversionAcrossLevels();
    void assignmentFromShallowerKeepsOwnLevel();
};

void tst_ConfigData::writeDetachesAndKeepsDynamicType()
{
    const MotorConfigData original = motor("A", 100);
    ConfigData copy = original;   // a motor payload behind a root record
    QCOMPARE(&copy.getConstData(), static_cast<const ConfigDataData*>(&original.getConstData()));

    StdConfigData asStd(copy);
    asStd.data().label = "B";
    QCOMPARE(original.getConstData().label, QByteArray("A"));
    const auto* detached = dynamic_cast<const MotorConfigDataData*>(&asStd.getConstData());
    QVERIFY(detached);
    QCOMPARE(detached->upEndLimit, quint16(100));

    copy.eraseData();   // a root-level write still detaches, through clone()
    QVERIFY(dynamic_cast<const MotorConfigDataData*>(&copy.getConstData()));
    QVERIFY(&copy.getConstData() != static_cast<const ConfigDataData*>(&original.getConstData()));

    MotorConfigData defaults;
    defaults.data().rotDirection = 0;
    QCOMPARE(MotorConfigData().getConstData().rotDirection, MotorConfigDataData::UnknownDirection);
}

void tst_ConfigData::standardValidity()
{
    StdConfigData s;
    s.data().appVersion = version(1, 0);
    s.data().groups = {0, 0};
    QVERIFY(s.isGroupValid());
    QVERIFY(!s.isValid());            // label still null
    s.data().label = QByteArray("");  // empty but known
    QVERIFY(s.isLabelValid());
    QVERIFY(s.isValid());             // serial number takes no part
    QVERIFY(!s.isSerialValid());
    s.data().appVersion.clear();
    QVERIFY(!s.isValid());

    // Each level tests only its own fields.
    MotorConfigData m = motor("x", 20);
    m.data().appVersion.clear();
    QVERIFY(m.isValid());
    QVERIFY(!static_cast<const StdConfigData&>(m).StdConfigData::isValid());
}

void tst_ConfigData::motorIpsValidity_data()
{
    QTest::addColumn<QList<MotorIp>>("ips");
    QTest::addColumn<bool>("valid");
    QTest::newRow("empty") << QList<MotorIp>() << false;
    QTest::newRow("one set") << QList<MotorIp>{{100, 10}} << true;
    QTest::newRow("pulse unset") << QList<MotorIp>{{100, 10}, {0xFFFF, 20}} << false;
    QTest::newRow("pct unset") << QList<MotorIp>{{100, 0xFF}} << false;
    QTest::newRow("zeros are set") << QList<MotorIp>{{0, 0}} << true;
}

void tst_ConfigData::motorIpsValidity()
{
    QFETCH(QList<MotorIp>, ips);
    QFETCH(bool, valid);
    MotorConfigData m = motor("x", 20);
    m.data().ips = ips;
    QCOMPARE(m.isMotorIpsValid(), valid);
    QCOMPARE(m.isValid(), valid);   // direction and limits are set
}

void tst_ConfigData::dcValidityIgnoresStatusFlags()
{
    DCMotorConfigData dc;
    DCMotorConfigDataData& p = dc.data();
    p.upRollingSpeed = p.downRollingSpeed = 10;
    QVERIFY(!dc.isSpeedValid());
    p.slowRollingSpeed = 6;
    p.softStartValue = 20;
    QVERIFY(!dc.isValid());
    p.softStopValue = 0;
    QVERIFY(dc.isValid());
    p.softStartStatus = p.softStopStatus = 1;
    QVERIFY(dc.isValid());
}

void tst_ConfigData::comparisonLooksAtSharedLevelsOnly()
{
    const StdConfigData s = standard("L");
    MotorConfigData m = motor("L", 300);
    QVERIFY(m != MotorConfigData());
    QVERIFY(ConfigData(s) == ConfigData(m));
    QVERIFY(ConfigData(m) == ConfigData(s));
    QVERIFY(s == m);
    QVERIFY(m == s);
    m.data().label = "other";
    QVERIFY(s != m);
    QVERIFY(m != s);
    QVERIFY(!m.compareStd(s));
    QVERIFY(m.compareMotor(motor("x", 300)));   // standard fields not looked at
    QVERIFY(ConfigData() == m);                  // the root level is always equal

    // Copies sharing a payload are equal without a field comparison.
    const StdConfigData a(*new NeverEqualData);
    const StdConfigData b = a;
    QVERIFY(a == b);
    QVERIFY(a != StdConfigData(*new NeverEqualData));

    // The network configuration takes part in the comparison...
    StdConfigData n = standard("n");
    StdConfigData other = standard("n");
    QVERIFY(n == other);
    other.data().networkConfig.slotCount = 7;
    QVERIFY(n != other);
    // ... but a merge never copies it.
    QVERIFY(n.merge(other));
    QCOMPARE(n.getConstData().networkConfig.slotCount, quint8(0));
}

void tst_ConfigData::mergeCopiesDeepestSharedLevel()
{
    // Motor from motor: a label difference alone reports a change and
    // copies nothing but the motor fields.
    MotorConfigData target = motor("old", 100);
    QVERIFY(target.merge(motor("new", 100)));
    QCOMPARE(target.getConstData().label, QByteArray("old"));
    QVERIFY(target.merge(motor("new", 200)));
    QCOMPARE(target.getConstData().upEndLimit, quint16(200));
    QCOMPARE(target.getConstData().label, QByteArray("old"));

    // Motor from standard: the standard fields, motor fields untouched.
    StdConfigData source = standard("std");
    source.data().groups = {7};
    source.data().appVersion = version(3, 3);
    target.updateData(ConfigData(source));
    QCOMPARE(target.getConstData().label, QByteArray("std"));
    QCOMPARE(target.getConstData().serialNumber, QByteArray("SN-std"));
    QCOMPARE(target.getConstData().groups, QList<VRN::Addr>{7});
    QCOMPARE(target.getConstData().appVersion, version(3, 3));
    QCOMPARE(target.getConstData().upEndLimit, quint16(200));

    // Standard from motor, and DC from motor.
    StdConfigData s = standard("s");
    QVERIFY(s.merge(ConfigData(motor("m", 1))));
    QCOMPARE(s.getConstData().label, QByteArray("m"));
    DCMotorConfigData dc;
    dc.data().upRollingSpeed = 12;
    QVERIFY(dc.merge(ConfigData(motor("m", 5))));
    QCOMPARE(dc.getConstData().upEndLimit, quint16(5));
    QVERIFY(dc.getConstData().label.isNull());
    QCOMPARE(dc.getConstData().upRollingSpeed, quint8(12));

    // A typed merge on a deeper record stays at the typed level.
    MotorConfigData m = motor("keep", 9);
    QVERIFY(static_cast<StdConfigData&>(m).merge(static_cast<const StdConfigData&>(motor("typed", 1))));
    QCOMPARE(m.getConstData().label, QByteArray("typed"));
    QCOMPARE(m.getConstData().upEndLimit, quint16(9));

    // The root level merges nothing.
    ConfigData root;
    QVERIFY(!root.merge(ConfigData(motor("m", 5))));
}

void tst_ConfigData::mergeOfEqualOrUnknownValues()
{
    MotorConfigData target = motor("same", 100);
    QVERIFY(!target.merge(motor("same", 100)));
    QVERIFY(!target.merge(ConfigData(standard("same"))));
    QCOMPARE(target, motor("same", 100));
    QVERIFY(!DCMotorConfigData().merge(DCMotorConfigData()));

    // "Not known" is a value like any other: it is copied too.
    MotorConfigData source = motor("same", 100);
    source.data().rotDirection = MotorConfigDataData::UnknownDirection;
    source.data().ips.clear();
    target.updateData(source);
    QVERIFY(!target.isDirectionValid());
    QVERIFY(target.getConstData().ips.isEmpty());
}

void tst_ConfigData::eraseResetsOneLevel()
{
    DCMotorConfigData dc;
    fillStd(dc.data(), "dc");
    fillMotor(dc.data(), 40);
    dc.data().upRollingSpeed = 9;
    dc.data().softStartValue = 3;
    dc.data().softStopStatus = 1;
    const DCMotorConfigData before = dc;

    dc.eraseData();
    QCOMPARE(dc.getConstData().upRollingSpeed, quint8(0));
    QCOMPARE(dc.getConstData().softStartValue, quint8(0xFF));
    QCOMPARE(dc.getConstData().softStopStatus, quint8(0));
    QVERIFY(dc.compareMotor(before));
    QVERIFY(dc.compareStd(before));
    QCOMPARE(before.getConstData().upRollingSpeed, quint8(9));

    static_cast<MotorConfigData&>(dc).eraseData();
    QVERIFY(!dc.isEndLimitsValid());
    QVERIFY(dc.getConstData().ips.isEmpty());
    QCOMPARE(dc.getConstData().label, QByteArray("dc"));

    static_cast<StdConfigData&>(dc).eraseData();
    QVERIFY(dc.getConstData().label.isNull());
    QVERIFY(dc.getConstData().groups.isEmpty());
    QCOMPARE(dc.getConstData().networkConfig, DTSStdProxy::NetworkConfig());
}

void tst_ConfigData::conversionAcrossLevels()
{
    const MotorConfigData m = motor("m", 7);
    // Deeper or same level: the payload is shared, also through a root copy.
    const StdConfigData s(m);
    QCOMPARE(static_cast<const ConfigDataData*>(&s.getConstData()),
             static_cast<const ConfigDataData*>(&m.getConstData()));
    const MotorConfigData back{ConfigData(s)};
    QCOMPARE(&back.getConstData(), &m.getConstData());

    // Shallower: not known, then the levels the source has.
    const MotorConfigData fromStd{ConfigData(standard("s"))};
    QCOMPARE(fromStd.getConstData().label, QByteArray("s"));
    QCOMPARE(fromStd.getConstData().networkConfig.maxRetry, quint8(3));
    QVERIFY(!fromStd.isDirectionValid());
    QCOMPARE(dynamic_cast<const DCMotorConfigDataData*>(&fromStd.getConstData()), nullptr);
    QVERIFY(!StdConfigData(ConfigData()).isLabelValid());
}

void tst_ConfigData::assignmentFromShallowerKeepsOwnLevel()
{
    MotorConfigData m = motor("m", 7);
    const MotorConfigData before = m;
    m = ConfigData(standard("s"));
    QCOMPARE(m.getConstData().label, QByteArray("s"));
    QCOMPARE(m.getConstData().upEndLimit, quint16(7));
    QCOMPARE(before.getConstData().label, QByteArray("m"));

    // Through the virtual root operator: the record keeps its own class rules.
    ConfigData& asRoot = m;
    asRoot = ConfigData(motor("deep", 1));
    QCOMPARE(m.getConstData().upEndLimit, quint16(1));
    StdConfigData s = standard("s");
    static_cast<ConfigData&>(s) = ConfigData();
    QVERIFY(StdConfigData::hasLevel(s));
    QCOMPARE(s.getConstData().label, QByteArray("s"));
}

QTEST_GUILESS_MAIN(tst_ConfigData)
#include "tst_configdata.moc"
