#include "dtsmotorproxy.h"
#include "lru50object.h"
#include "objectregistry.h"
#include "settingtoolobject.h"
#include "tx30object.h"
#include "tx50dcobject.h"
#include "vrnobjectworker.h"

#include <QSignalSpy>
#include <QTest>

namespace {

// Stands in for the object factory behind the registry hook.
class FakeRegistry : public ObjectRegistry
{
public:
    FakeRegistry() { setInstance(this); }
    ~FakeRegistry() override { setInstance(nullptr); }
    bool saveObject(VRNObject* object) override
    {
        saved.append(object->label());
        return accept;
    }
    void objectWorkerDestroyed(VRNObjectWorker* worker) override { workerObjects.append(worker->vrnObject()); }

    bool accept = true;
    QList<QByteArray> saved;
    QList<QSharedPointer<VRNObject>> workerObjects;
};

StdConfigData labelled(const QByteArray& label)
{
    StdConfigData s;
    s.data().label = label;
    return s;
}

MotorConfigData validMotor(quint16 limit)
{
    MotorConfigData m;
    MotorConfigDataData& p = m.data();
    p.rotDirection = 0;
    p.upEndLimit = limit;
    p.downEndLimit = 0;
    p.ips = {{100, 10}};
    return m;
}

// Spies on every change signal of an object.
struct Spies
{
    explicit Spies(VRNObject* o)
        : dirty(o, &VRNObject::dirtyChanged)
        , sync(o, &VRNObject::syncChanged)
        , local(o, &VRNObject::localConfigChanged)
        , proxy(o, &VRNObject::proxyConfigChanged)
    {
    }
    QSignalSpy dirty;
    QSignalSpy sync;
    QSignalSpy local;
    QSignalSpy proxy;
};

} // namespace

class tst_VRNObject : public QObject
{
    Q_OBJECT

private slots:
    void typeTables();
    void objectsOfEachClass();
    void localChangeMakesDirtyAndSignals();
    void isInitChangesSilently();
    void mergeChangeWithoutRecordChange();
    void shallowerRecordErasesOwnLevel();
    void proxyChangeFlipsSync();
    void typedAccessorsMergeAtTheirLevel();
    void synchronizeAtOwnLevelOnly();
    void validityPerLevel();
    void labelPrefersLocal();
    void eraseAllLevels();
    void runtimeSignals();
    void save();
    void autosaveOnDestruction();
    void workerHoldsObject();
};

// Type to class and back for 0..TypeMax is checked class by class in
// objectsOfEachClass; the names are the "typeName" of vrnconfig's list.
void tst_VRNObject::typeTables()
{
    QCOMPARE(VRNObject::typeToMetaObject(VRNObject::Type(8)), nullptr);
    QCOMPARE(VRNObject::metaObjectToType(&QObject::staticMetaObject), VRNObject::VRNObj);

    QVERIFY(VRNObject::isAncestor(VRNMotorObject::staticMetaObject, TX50DCObject::staticMetaObject));
    QVERIFY(!VRNObject::isAncestor(VRNStdObject::staticMetaObject, SettingToolObject::staticMetaObject));
    QVERIFY(!VRNObject::isAncestor(VRNStdObject::staticMetaObject, VRNStdObject::staticMetaObject));
    QVERIFY(!VRNObject::isAncestor(TX30Object::staticMetaObject, VRNStdObject::staticMetaObject));

    QVariant stored = QVariant::fromValue(qlonglong(5));
    QVERIFY(stored.canConvert<VRNObject::Type>());
    QCOMPARE(stored.value<VRNObject::Type>(), VRNObject::TX50DC);
    QTest::ignoreMessage(QtWarningMsg, "[VRNObject]: Type conversion failed for: 9");
    QCOMPARE(VRNObject::intToType(9), VRNObject::VRNObj);
    QTest::ignoreMessage(QtWarningMsg, "[VRNObject]: Type conversion failed for: -1");
    QCOMPARE(VRNObject::intToType(-1), VRNObject::VRNObj);
}

void tst_VRNObject::objectsOfEachClass()
{
    const QList<QSharedPointer<VRNObject>> objects = {
        QSharedPointer<VRNObject>(new VRNObject), QSharedPointer<VRNObject>(new VRNStdObject),
        QSharedPointer<VRNObject>(new VRNMotorObject), QSharedPointer<VRNObject>(new VRNDCMotorObject),
        QSharedPointer<VRNObject>(new LRU50Object), QSharedPointer<VRNObject>(new TX50DCObject),
        QSharedPointer<VRNObject>(new TX30Object), QSharedPointer<VRNObject>(new SettingToolObject),
    };
    for (int t = VRNObject::VRNObj; t <= VRNObject::TypeMax; ++t) {
        const VRNObject* obj = objects.at(t).data();
        QCOMPARE(int(obj->type()), t);
        QCOMPARE(obj->metaObject(), VRNObject::typeToMetaObject(VRNObject::Type(t)));
        // VRNObject was registered for 0, then for 7: the later entry holds.
        QCOMPARE(int(VRNObject::metaObjectToType(obj->metaObject())), t == VRNObject::VRNObj ? int(VRNObject::SettingTool) : t);
        const bool motor = t >= VRNObject::DtsMotor && t <= VRNObject::TX30;
        const bool standard = motor || t == VRNObject::DtsStd;
        QCOMPARE(qobject_cast<DTSMotorProxy*>(obj->node()) != nullptr, motor);
        QCOMPARE(qobject_cast<DTSStdProxy*>(obj->node()) != nullptr, standard);
        QCOMPARE(StdConfigData::hasLevel(obj->localConfig()), standard);
        QCOMPARE(MotorConfigData::hasLevel(obj->proxyConfig()), motor);
        QCOMPARE(DCMotorConfigData::hasLevel(obj->localConfig()), t == VRNObject::DtsDcMotor || t == VRNObject::TX50DC || t == VRNObject::TX30);
    }
}

void tst_VRNObject::localChangeMakesDirtyAndSignals()
{
    VRNStdObject obj;
    Spies spies(&obj);
    QSignalSpy typed(&obj, &VRNStdObject::localStdConfigChanged);
    QVERIFY(!obj.isDirty());

    obj.setLocalConfig(labelled("Hall"));
    QVERIFY(obj.isDirty());
    QCOMPARE(spies.dirty.count(), 1);
    QCOMPARE(spies.dirty.at(0).at(0).toBool(), true);
    QCOMPARE(typed.count(), 1);
    QCOMPARE(typed.at(0).at(0).value<StdConfigData>().getConstData().label, QByteArray("Hall"));
    QCOMPARE(spies.local.count(), 1);
    QCOMPARE(spies.sync.count(), 1);   // both unknown before: synced, now not
    QCOMPARE(spies.sync.at(0).at(0).toBool(), false);

    obj.setLocalConfig(labelled("Kitchen"));
    QCOMPARE(spies.dirty.count(), 1);   // already dirty
    QCOMPARE(spies.local.count(), 2);
    QCOMPARE(spies.sync.count(), 1);

    obj.setLocalConfig(labelled("Kitchen"));   // equal: nothing at all
    QCOMPARE(typed.count(), 2);
    QCOMPARE(spies.local.count(), 2);
}

void tst_VRNObject::isInitChangesSilently()
{
    VRNMotorObject obj;
    Spies spies(&obj);
    QSignalSpy typed(&obj, &VRNMotorObject::localMotorConfigChanged);
    obj.setLocalConfig(validMotor(300), true);
    obj.updateLocalStdConfig(labelled("init"), true);
    QCOMPARE(obj.localMotorConfig().getConstData().upEndLimit, quint16(300));
    QCOMPARE(obj.label(), QByteArray("init"));
    QVERIFY(!obj.isDirty());
    QVERIFY(!obj.isSynced());
    QCOMPARE(spies.dirty.count() + spies.sync.count() + spies.local.count() + typed.count(), 0);

    // The next real change reports the sync state the initialisation left.
    obj.updateLocalStdConfig(labelled("user"));
    QVERIFY(obj.isDirty());
    QCOMPARE(spies.sync.count(), 1);
    QCOMPARE(spies.local.count(), 1);
}

void tst_VRNObject::mergeChangeWithoutRecordChange()
{
    // A motor merge whose motor fields are equal but whose label differs
    // reports a change: the object turns dirty although nothing was copied.
    MotorConfigData initial = validMotor(10);
    initial.data().label = "mine";
    VRNMotorObject obj(initial);
    Spies spies(&obj);
    MotorConfigData other = validMotor(10);
    other.data().label = "theirs";
    obj.setLocalConfig(other);
    QVERIFY(obj.isDirty());
    QCOMPARE(obj.label(), QByteArray("mine"));
    QCOMPARE(spies.local.count(), 0);
}

void tst_VRNObject::shallowerRecordErasesOwnLevel()
{
    VRNMotorObject obj(validMotor(50));
    obj.updateLocalStdConfig(labelled("keep"), true);
    QSignalSpy typed(&obj, &VRNMotorObject::localMotorConfigChanged);
    obj.setLocalConfig(labelled("ignored"));
    QCOMPARE(typed.count(), 1);
    QVERIFY(!obj.isLocalEndLimitsValid());
    QVERIFY(!obj.isLocalDirectionValid());
    QCOMPARE(obj.label(), QByteArray("keep"));
    QVERIFY(obj.isDirty());
}

void tst_VRNObject::proxyChangeFlipsSync()
{
    VRNStdObject obj;
    Spies spies(&obj);
    QVERIFY(obj.isSynced());
    obj.setProxyConfig(labelled("dev"));
    QVERIFY(!obj.isDirty());
    QCOMPARE(spies.proxy.count(), 1);
    QCOMPARE(spies.local.count(), 0);
    QCOMPARE(spies.sync.count(), 1);
    QVERIFY(!obj.isSynced());
    QVERIFY(!obj.isLabelSynced());

    obj.setLocalConfig(labelled("dev"));
    QCOMPARE(spies.sync.count(), 2);
    QCOMPARE(spies.sync.at(1).at(0).toBool(), true);
    QVERIFY(obj.property("sync").toBool());
}

void tst_VRNObject::typedAccessorsMergeAtTheirLevel()
{
    VRNDCMotorObject obj;
    QSignalSpy stdSignal(&obj, &VRNStdObject::localStdConfigChanged);
    QSignalSpy dcSignal(&obj, &VRNDCMotorObject::localDCMotorConfigChanged);
    DCMotorConfigData dc;
    dc.data().label = "dc";
    dc.data().upRollingSpeed = 20;
    dc.data().upEndLimit = 77;

    obj.updateLocalStdConfig(dc);   // standard fields only
    QCOMPARE(stdSignal.count(), 1);
    QCOMPARE(dcSignal.count(), 0);
    QCOMPARE(obj.label(), QByteArray("dc"));
    QCOMPARE(obj.localDCMotorConfig().getConstData().upRollingSpeed, quint8(0));
    QCOMPARE(obj.localDCMotorConfig().getConstData().upEndLimit, MotorConfigDataData::UnknownLimit);

    obj.setLocalConfig(dc);   // the object's level: DC fields only
    QCOMPARE(dcSignal.count(), 1);
    QCOMPARE(obj.localDCMotorConfig().getConstData().upRollingSpeed, quint8(20));
    QCOMPARE(obj.localDCMotorConfig().getConstData().upEndLimit, MotorConfigDataData::UnknownLimit);

    obj.updateProxyMotorConfig(dc);
    QCOMPARE(obj.proxyMotorConfig().getConstData().upEndLimit, quint16(77));
    QVERIFY(obj.proxyMotorConfig().getConstData().label.isNull());
}

void tst_VRNObject::synchronizeAtOwnLevelOnly()
{
    VRNMotorObject obj;
    MotorConfigData proxy = validMotor(900);
    proxy.data().label = "dev";
    proxy.data().groups = {1};
    proxy.data().appVersion.major = 1;   // the standard level is valid too
    obj.setProxyConfig(proxy);
    obj.updateProxyStdConfig(proxy);
    QSignalSpy typed(&obj, &VRNMotorObject::localMotorConfigChanged);

    obj.synchronize();
    QCOMPARE(typed.count(), 1);
    QCOMPARE(obj.localMotorConfig().getConstData().upEndLimit, quint16(900));
    QVERIFY(obj.localMotorConfig().getConstData().label.isNull());   // no cascade
    QVERIFY(!obj.isSynced());
    QVERIFY(obj.isDirty());

    obj.VRNStdObject::synchronize();
    QVERIFY(obj.isSynced());
    QCOMPARE(obj.label(), QByteArray("dev"));
    obj.synchronize();   // synchronised: nothing more
    QCOMPARE(typed.count(), 1);
}

void tst_VRNObject::validityPerLevel()
{
    StdConfigData std;
    std.data().groups = {0};
    std.data().appVersion.major = 2;
    VRNDCMotorObject obj;
    obj.updateLocalStdConfig(std);
    obj.updateLocalMotorConfig(validMotor(5));
    QVERIFY(!obj.isValid());   // DC level unknown
    QVERIFY(obj.VRNMotorObject::isValid());
    DCMotorConfigData dc;
    dc.data().upRollingSpeed = dc.data().downRollingSpeed = dc.data().slowRollingSpeed = 10;
    dc.data().softStartValue = dc.data().softStopValue = 5;
    obj.updateLocalDCMotorConfig(dc);
    QVERIFY(obj.isValid());
    obj.updateLocalStdConfig(StdConfigData());
    QVERIFY(!obj.isValid());   // a standard level without version or groups
    QVERIFY(VRNObject().isValid());
    QVERIFY(SettingToolObject().isValid());
}

void tst_VRNObject::labelPrefersLocal()
{
    VRNStdObject obj;
    QVERIFY(obj.label().isNull());
    obj.updateProxyStdConfig(labelled("device"));
    QCOMPARE(obj.property("label").toByteArray(), QByteArray("device"));
    // Comparison goes by length and bytes: an empty label equals a null one,
    // so merging it over "not known" changes nothing.
    obj.updateLocalStdConfig(labelled(""));
    QCOMPARE(obj.label(), QByteArray("device"));
    obj.updateLocalStdConfig(labelled("mine"));
    QCOMPARE(obj.label(), QByteArray("mine"));
    QVERIFY(SettingToolObject().label().isNull());
}

void tst_VRNObject::eraseAllLevels()
{
    MotorConfigData m = validMotor(3);
    m.data().label = "x";
    VRNMotorObject obj(m);
    QSignalSpy local(&obj, &VRNObject::localConfigChanged);
    obj.eraseLocalConfig();
    QCOMPARE(local.count(), 1);
    QCOMPARE(obj.localMotorConfig(), MotorConfigData());
    QVERIFY(obj.localMotorConfig().getConstData().label.isNull());
    obj.eraseLocalConfig();
    QCOMPARE(local.count(), 1);
}

void tst_VRNObject::runtimeSignals()
{
    VRNMotorObject obj;
    QSignalSpy spy(&obj, &VRNObject::proxyRuntimeChanged);
    RuntimeData r;
    r.data().posPulse = 10;
    obj.setProxyRuntime(r);
    obj.setProxyRuntime(r);   // the same reading again is still reported
    QCOMPARE(spy.count(), 2);
    obj.updateProxyRuntime(r);   // a merge reports differences only
    QCOMPARE(spy.count(), 2);
    r.data().networkErrorStat.crcError = 2;
    obj.updateProxyRuntime(r);
    QCOMPARE(spy.count(), 3);
    QCOMPARE(obj.proxyRuntime(), r);
    QVERIFY(!obj.isDirty());
}

void tst_VRNObject::save()
{
    VRNStdObject obj;
    QVERIFY(!obj.save());   // clean: nothing to write
    obj.setLocalConfig(labelled("a"));

    QTest::ignoreMessage(QtWarningMsg, "[VRNObject]: failed to retrieve ObjectFactory");
    QVERIFY(!obj.save());
    QVERIFY(obj.isDirty());

    FakeRegistry registry;
    registry.accept = false;
    QVERIFY(!obj.save());
    QVERIFY(obj.isDirty());

    registry.accept = true;
    QSignalSpy dirty(&obj, &VRNObject::dirtyChanged);
    QVERIFY(obj.save());
    QCOMPARE(dirty.count(), 1);
    QCOMPARE(dirty.at(0).at(0).toBool(), false);
    QCOMPARE(registry.saved, (QList<QByteArray>{"a", "a"}));
}

void tst_VRNObject::autosaveOnDestruction()
{
    FakeRegistry registry;
    {
        VRNStdObject obj;
        obj.setLocalConfig(labelled("auto"));
    }
    QVERIFY(registry.saved.isEmpty());
    {
        VRNStdObject obj;
        obj.setAutosave(true);
        obj.setLocalConfig(labelled("auto"));
    }
    QCOMPARE(registry.saved, QList<QByteArray>{"auto"});
}

void tst_VRNObject::workerHoldsObject()
{
    FakeRegistry registry;
    QSharedPointer<VRNObject> object(new VRNMotorObject);
    QPointer<VRNObject> watch = object.data();
    auto* worker = new VRNObjectWorker(object);
    QCOMPARE(worker->name(), QStringLiteral("VRNMotorObject"));
    object.reset();
    QVERIFY(watch);   // the worker keeps it alive

    VRNStdObject other;
    worker->setObject(&other);
    QVERIFY(!watch);
    QVERIFY(worker->vrnObject().isNull());

    QSharedPointer<VRNObject> third(new VRNStdObject);
    worker->setObject(third);
    worker->ObjectWorker::setObject(nullptr);   // through the base class too
    QVERIFY(worker->vrnObject().isNull());
    worker->setObject(third);
    delete worker;
    QCOMPARE(registry.workerObjects.size(), 1);
    QCOMPARE(registry.workerObjects.at(0), third);
}

QTEST_GUILESS_MAIN(tst_VRNObject)
#include "tst_vrnobject.moc"
