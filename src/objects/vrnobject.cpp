#include "vrnobject.h"
#include "vrnobject_p.h"

#include "dcmotorconfigdata.h"
#include "lru50object.h"
#include "objectregistry.h"
#include "settingtoolobject.h"
#include "singleton.h"
#include "tx30object.h"
#include "tx50dcobject.h"
#include "vrnbus.h"

#include <QDebug>
#include <QHash>
#include <QMetaEnum>

namespace {

// Both directions of the type registry; created on first use.
struct TypeRegistry
{
    QHash<VRNObject::Type, const QMetaObject*> metaByType;
    QHash<const QMetaObject*, VRNObject::Type> typeByMeta;
};

TypeRegistry& registry()
{
    return *Singleton<TypeRegistry>::instance();
}

// Load-time registrations, in this order: the early entries keep a class
// available for a type until its model class is registered.
const VRNObject::Registration s_registrations[] = {
    {VRNObject::VRNObj, VRNObject::staticMetaObject},
    {VRNObject::SettingTool, VRNObject::staticMetaObject},
    {VRNObject::DtsStd, VRNStdObject::staticMetaObject},
    {VRNObject::DtsMotor, VRNMotorObject::staticMetaObject},
    {VRNObject::LRU50, VRNMotorObject::staticMetaObject, true},
    {VRNObject::LRU50, LRU50Object::staticMetaObject},
    {VRNObject::DtsDcMotor, VRNDCMotorObject::staticMetaObject},
    {VRNObject::TX50DC, TX50DCObject::staticMetaObject},
    {VRNObject::TX30, TX30Object::staticMetaObject},
    {VRNObject::SettingTool, SettingToolObject::staticMetaObject},
};

const bool s_metaTypesRegistered = (VRNObject::registerMetaTypes(), true);

} // namespace

VRNObject::Registration::Registration(Type type, const QMetaObject& meta, bool forwardOnly)
{
    TypeRegistry& r = registry();
    r.metaByType.insert(type, &meta);
    if (!forwardOnly)
        r.typeByMeta.insert(&meta, type);
}

const QMetaObject* VRNObject::typeToMetaObject(Type type)
{
    return registry().metaByType.value(type, nullptr);
}

VRNObject::Type VRNObject::metaObjectToType(const QMetaObject* meta)
{
    return registry().typeByMeta.value(meta, VRNObj);
}

bool VRNObject::isAncestor(const QMetaObject& base, const QMetaObject& derived)
{
    if (&derived == &QObject::staticMetaObject)
        return false;
    for (const QMetaObject* m = derived.superClass(); m; m = m->superClass()) {
        if (m == &base)
            return true;
    }
    return false;
}

QString VRNObject::typeToString(Type type)
{
    return QString::fromLatin1(QMetaEnum::fromType<Type>().valueToKey(type));
}

VRNObject::Type VRNObject::intToType(qlonglong value)
{
    if (value < VRNObj || value > TypeMax) {
        qWarning() << "[VRNObject]: Type conversion failed for:" << value;
        return VRNObj;
    }
    return Type(value);
}

VRN::NodeType VRNObject::nodeType(Type type)
{
    switch (type) {
    case DtsStd: return VRN::NodeKeypad;
    case DtsMotor: return VRN::NodeMotor;
    case DtsDcMotor: return VRN::NodeDCMotor;
    case LRU50: return VRN::NodeLRU50;
    case TX50DC: return VRN::NodeTX50DC;
    case TX30: return VRN::NodeTX30;
    case SettingTool: return VRN::NodeSettingTool;
    case VRNObj: break;
    }
    return VRN::NodeTool;
}

bool VRNObject::isNetworkNode(Type type)
{
    const QMetaObject* meta = typeToMetaObject(type);
    return meta && (meta == &VRNStdObject::staticMetaObject || isAncestor(VRNStdObject::staticMetaObject, *meta));
}

void VRNObject::registerMetaTypes()
{
    qRegisterMetaType<ConfigData>();
    qRegisterMetaType<StdConfigData>();
    qRegisterMetaType<MotorConfigData>();
    qRegisterMetaType<DCMotorConfigData>();
    qRegisterMetaType<RuntimeData>();
    qRegisterMetaType<VRNObject::Type>();
    qRegisterMetaType<VRNObject::IsUpToDate>();
    qRegisterMetaType<VRNObject::UUID>("VRNObject::UUID");
    qRegisterMetaType<VRN::Addr>("VRN::Addr");
    if (!QMetaType::hasRegisteredConverterFunction<qlonglong, VRNObject::Type>())
        QMetaType::registerConverter<qlonglong, VRNObject::Type>(&VRNObject::intToType);
}

// VRNObjectPrivate

VRNObjectPrivate::VRNObjectPrivate(ConfigData* local, ConfigData* proxy, VRNNode* node)
    : proxy(proxy)
    , local(local)
    , node(node)
{
}

VRNObjectPrivate::~VRNObjectPrivate() = default;

void VRNObjectPrivate::change(Side side, const Mutation& mutate, bool isInit,
                              const std::function<void()>& typed)
{
    Q_Q(VRNObject);
    ConfigData& rec = record(side);
    if (side == Local && isInit) {
        // Initialising the local record is silent by design: no dirty flag,
        // no sync re-check, no change signal; only an erased level still
        // says so through its typed signal. `sync` catches up at the next
        // change that is not an initialisation.
        if (mutate(rec) == Erased && typed)
            typed();
        return;
    }
    const ConfigData before = rec;
    const bool dirtying = side == Local;
    const Outcome outcome = mutate(rec);
    if (outcome == Merged) {
        if (dirtying)
            q->setDirty(true);
        updateSync();
    }
    if (outcome != Unchanged && typed)
        typed();
    if (before == rec)
        return;
    if (dirtying)
        q->setDirty(true);
    updateSync();
    if (side == Local)
        emit q->localConfigChanged(rec);
    else
        emit q->proxyConfigChanged(rec);
}

void VRNObjectPrivate::eraseAll(Side side)
{
    change(side, [](ConfigData& rec) {
        if (StdConfigData::hasLevel(rec))
            static_cast<StdConfigData&>(rec).eraseData();
        if (MotorConfigData::hasLevel(rec))
            static_cast<MotorConfigData&>(rec).eraseData();
        if (DCMotorConfigData::hasLevel(rec))
            static_cast<DCMotorConfigData&>(rec).eraseData();
        return Unchanged;
    }, false, {});
}

void VRNObjectPrivate::updateSync()
{
    Q_Q(VRNObject);
    const bool now = q->isSynced();
    if (now == synced)
        return;
    synced = now;
    emit q->syncChanged(now);
}

void VRNObjectPrivate::changeRuntime(const std::function<void(RuntimeData&)>& mutate, bool always)
{
    Q_Q(VRNObject);
    const RuntimeData before = runtime;
    mutate(runtime);
    if (always || before != runtime)
        emit q->proxyRuntimeChanged(runtime);
}

// VRNObject

VRNObject::VRNObject(QObject* parent)
    : VRNObject(*new VRNObjectPrivate(new ConfigData, new ConfigData, new VRNNode), parent)
{
}

VRNObject::VRNObject(VRNObjectPrivate& dd, QObject* parent)
    : QObject(parent)
    , d_ptr(&dd)
{
    Q_D(VRNObject);
    d->q_ptr = this;
    d->synced = isSynced();
}

VRNObject::~VRNObject()
{
    onDestroyedAutoSave();
}

VRNNode* VRNObject::node() const
{
    Q_D(const VRNObject);
    return d->node.get();
}

VRNObject::UUID VRNObject::uuid() const
{
    Q_D(const VRNObject);
    return d->uuid;
}

VRN::Addr VRNObject::address() const
{
    Q_D(const VRNObject);
    return d->node->address();
}

void VRNObject::setNodeAddress(unsigned int address)
{
    Q_D(VRNObject);
    d->node->setAddress(address);
}

VRNObject::Type VRNObject::type() const
{
    Q_D(const VRNObject);
    return d->type;
}

QByteArray VRNObject::label() const
{
    Q_D(const VRNObject);
    for (const ConfigData* rec : {d->local.get(), d->proxy.get()}) {
        if (const auto* p = dynamic_cast<const StdConfigDataData*>(&rec->getConstData())) {
            if (!p->label.isNull())
                return p->label;
        }
    }
    return QByteArray();
}

VRNObject::IsUpToDate VRNObject::isUpToDate() const
{
    Q_D(const VRNObject);
    return d->isUpToDate;
}

void VRNObject::setIsUpToDate(IsUpToDate state)
{
    Q_D(VRNObject);
    if (d->isUpToDate == state)
        return;
    d->isUpToDate = state;
    emit isUpToDateChanged(state);
}

bool VRNObject::isSynced() const
{
    Q_D(const VRNObject);
    return *d->local == *d->proxy;
}

void VRNObject::synchronize()
{
}

bool VRNObject::isValid() const
{
    Q_D(const VRNObject);
    return d->local->isValid();
}

void VRNObject::setLocalConfig(const ConfigData& data, bool isInit)
{
    Q_D(VRNObject);
    d->setAt<ConfigData>(VRNObjectPrivate::Local, data, isInit);
}

ConfigData VRNObject::localConfig() const
{
    Q_D(const VRNObject);
    return *d->local;
}

void VRNObject::setProxyConfig(const ConfigData& data)
{
    Q_D(VRNObject);
    d->setAt<ConfigData>(VRNObjectPrivate::Proxy, data, false);
}

ConfigData VRNObject::proxyConfig() const
{
    Q_D(const VRNObject);
    return *d->proxy;
}

void VRNObject::setProxyRuntime(const RuntimeData& data)
{
    Q_D(VRNObject);
    // Emitted even for an equal record: a fresh reading of an unchanged
    // device is news to whoever shows it (a position display, a diagnostics
    // poll).
    d->changeRuntime([&data](RuntimeData& runtime) { runtime = data; }, true);
}

RuntimeData VRNObject::proxyRuntime() const
{
    Q_D(const VRNObject);
    return d->runtime;
}

void VRNObject::updateProxyRuntime(const RuntimeData& data)
{
    Q_D(VRNObject);
    d->changeRuntime([&data](RuntimeData& runtime) { runtime.updateData(data); });
}

bool VRNObject::isDirty() const
{
    Q_D(const VRNObject);
    return d->dirty;
}

void VRNObject::setDirty(bool dirty)
{
    Q_D(VRNObject);
    if (d->dirty == dirty)
        return;
    d->dirty = dirty;
    emit dirtyChanged(dirty);
}

bool VRNObject::autosave() const
{
    Q_D(const VRNObject);
    return d->autosave;
}

void VRNObject::setAutosave(bool autosave)
{
    Q_D(VRNObject);
    d->autosave = autosave;
}

bool VRNObject::save()
{
    if (!isDirty())
        return false;
    ObjectRegistry* registry = ObjectRegistry::instance();
    if (!registry) {
        qWarning() << "[VRNObject]: failed to retrieve ObjectFactory";
        return false;
    }
    if (!registry->saveObject(this))
        return false;
    setDirty(false);
    return true;
}

void VRNObject::attach(VRNBus* bus)
{
    Q_D(VRNObject);
    d->node->attach(bus);
}

void VRNObject::onDestroyedAutoSave()
{
    if (autosave())
        save();
}
