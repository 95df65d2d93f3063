#ifndef VRNOBJECT_H
#define VRNOBJECT_H

#include "configdata.h"
#include "runtimedata.h"
#include "vrn.h"
#include "vrnnode.h"

#include <QByteArray>
#include <QObject>
#include <QScopedPointer>

class VRNBus;
class VRNObjectPrivate;

/// One device known to the tool.
///
/// A device object keeps two configuration records of its kind: the *proxy*
/// record, what was last read from the device, and the *local* record, what
/// the user wants the device to have; plus one `RuntimeData` record. It owns
/// the protocol node through which tasks reach the device. Objects are made,
/// stored and destroyed by the object factory, which sets `uuid`, `type` and
/// the node address and attaches the node to the open bus (`attach()`).
///
/// Change rules, at every level (`setLocalConfig`, `setProxyConfig` and the
/// typed `updateLocal...`/`updateProxy...` accessors of the subclasses):
/// - A record of the level is merged with that level's merge
///   (`ConfigDataData::update`). When the merge reports a change, a local
///   change makes the object dirty unless `isInit` is set, the sync state is
///   re-evaluated and the level's typed local signal is emitted.
/// - `setLocalConfig`/`setProxyConfig` given a record of a shallower level
///   erase the object's own level of the record ("not known") instead.
/// - Then, when the record differs from what it was, a local change makes
///   the object dirty unless `isInit` is set, and `localConfigChanged` or
///   `proxyConfigChanged` is emitted.
/// A local change with `isInit` set (values that come from the database)
/// only changes the record: the object stays as dirty or clean as it was,
/// the sync state is not re-evaluated and no signal is emitted, except the
/// typed one of an erased level.
///
/// `dirty` means the object holds changes that `save()` has not yet written
/// to the device database. `sync` means the local record equals the proxy
/// record; `syncChanged` is emitted whenever that state flips.
///
/// `label` is the local label when the local record knows one (not null),
/// otherwise the proxy label; objects without a standard level have none.
///
/// `isUpToDate` is the state of the device's firmware against the firmware
/// catalogue: `UpToDateUnknown` until a firmware check ran, then `UpToDate`
/// or `OutOfDate` (a newer package exists). Only the firmware check writes it.
class VRNObject : public QObject
{
    Q_OBJECT
    Q_PROPERTY(VRNObject::UUID uuid READ uuid CONSTANT)
    Q_PROPERTY(VRN::Addr address READ address WRITE setNodeAddress)
    Q_PROPERTY(VRNObject::Type type READ type CONSTANT)
    Q_PROPERTY(QByteArray label READ label)
    Q_PROPERTY(VRNObject::IsUpToDate isUpToDate READ isUpToDate WRITE setIsUpToDate NOTIFY isUpToDateChanged)
    Q_PROPERTY(bool sync READ isSynced NOTIFY syncChanged)
    Q_PROPERTY(bool dirty READ isDirty NOTIFY dirtyChanged)
    Q_PROPERTY(ConfigData localConfig READ localConfig NOTIFY localConfigChanged)
    Q_PROPERTY(ConfigData proxyConfig READ proxyConfig NOTIFY proxyConfigChanged)
    Q_PROPERTY(RuntimeData proxyRuntime READ proxyRuntime NOTIFY proxyRuntimeChanged)
    Q_PROPERTY(bool autosave READ autosave WRITE setAutosave)

public:
    /// Identity of a device: the primary key of its database row.
    typedef quint32 UUID;

    /// Device kind. `TypeMax` equals `SettingTool`, deliberately.
    /// The type column of the registry, registrations and the look-ups by
    /// number may carry any int, known kind or not: the fixed underlying
    /// type makes every such number a value of `Type`.
    enum Type : int {
        VRNObj = 0,
        DtsStd = 1,
        DtsMotor = 2,
        DtsDcMotor = 3,
        LRU50 = 4,
        TX50DC = 5,
        TX30 = 6,
        SettingTool = 7,
        TypeMax = 7
    };
    Q_ENUM(Type)

    enum IsUpToDate { UpToDateUnknown = 0, UpToDate = 1, OutOfDate = 2 };
    Q_ENUM(IsUpToDate)

    /// One entry of the process-wide type registry: `type` gives `meta`,
    /// and, unless `forwardOnly`, `meta` gives `type`. A later registration
    /// of the same key replaces the earlier one.
    class Registration
    {
    public:
        Registration(Type type, const QMetaObject& meta, bool forwardOnly = false);
    };

    explicit VRNObject(QObject* parent = nullptr);
    ~VRNObject() override;

    /// The class registered for `type`; null when none.
    static const QMetaObject* typeToMetaObject(Type type);
    /// The type registered for `meta`; `VRNObj` (0) when none.
    static Type metaObjectToType(const QMetaObject* meta);
    /// True when `base` is a proper superclass of `derived`.
    static bool isAncestor(const QMetaObject& base, const QMetaObject& derived);
    /// The key of `type`: "VRNObj", "DtsStd", ...; "SettingTool" for 7.
    Q_INVOKABLE static QString typeToString(Type type);
    /// A stored integer as a type; logs a warning and gives `VRNObj` when out of range.
    static Type intToType(qlonglong value);
    /// The protocol node type of a device kind, for `VRN::makeAddr`
    /// (`NodeTool`, 0, for `VRNObj`, which has no kind of its own).
    static VRN::NodeType nodeType(Type type);
    /// True for the kinds that are nodes of the device network and answer
    /// the node requests (label, serial number, groups, versions): every kind
    /// built on `VRNStdObject`. A setting tool only carries settings to the
    /// nodes and answers none of them, so no job is sent to it.
    static bool isNetworkNode(Type type);
    /// Registers the records, the enums, "VRNObject::UUID", "VRN::Addr" and
    /// the integer-to-`Type` converter with the meta-type system. Runs at
    /// load time; calling it again does nothing.
    static void registerMetaTypes();

    Q_INVOKABLE VRNNode* node() const;
    UUID uuid() const;
    VRN::Addr address() const;
    /// Sets the address on the node.
    void setNodeAddress(unsigned int address);
    Type type() const;
    QByteArray label() const;
    IsUpToDate isUpToDate() const;
    void setIsUpToDate(IsUpToDate state);

    Q_INVOKABLE bool isSynced() const;
    /// Merges the proxy record into the local record at the object's own
    /// level only, when the object is not synchronised and the proxy's fields
    /// of that level are valid. The levels below are left alone (a motor's
    /// label is not copied): each level is synchronised by its own call.
    Q_INVOKABLE virtual void synchronize();
    /// Whether the local record holds what a device of this kind needs.
    Q_INVOKABLE virtual bool isValid() const;
    Q_INVOKABLE virtual void setLocalConfig(const ConfigData& data, bool isInit = false);
    Q_INVOKABLE ConfigData localConfig() const;
    Q_INVOKABLE virtual void setProxyConfig(const ConfigData& data);
    Q_INVOKABLE ConfigData proxyConfig() const;
    /// Replaces the runtime record and always emits `proxyRuntimeChanged`.
    Q_INVOKABLE void setProxyRuntime(const RuntimeData& data);
    Q_INVOKABLE RuntimeData proxyRuntime() const;
    /// Merges runtime values (every field is taken); `proxyRuntimeChanged` when it differs.
    void updateProxyRuntime(const RuntimeData& data);
    Q_INVOKABLE bool isDirty() const;
    /// Emits `dirtyChanged` when the flag changes.
    void setDirty(bool dirty);
    bool autosave() const;
    void setAutosave(bool autosave);

    /// Writes the object through the device registry (`ObjectRegistry`).
    /// False when not dirty, when no registry is installed (with the warning
    /// "[VRNObject]: failed to retrieve ObjectFactory") or when the registry
    /// fails; otherwise the object becomes clean.
    bool save();

public slots:
    /// Attaches the node to `bus` (null detaches it).
    void attach(VRNBus* bus);
    /// `save()` when autosave is set. The destructor calls it while the
    /// object is still whole: a connection to `destroyed()` would run after
    /// the private part is gone.
    void onDestroyedAutoSave();

signals:
    void syncChanged(bool sync);
    void dirtyChanged(bool dirty);
    void localConfigChanged(ConfigData data);
    void proxyConfigChanged(ConfigData data);
    void proxyRuntimeChanged(RuntimeData data);
    void isUpToDateChanged(VRNObject::IsUpToDate isUpToDate);

protected:
    VRNObject(VRNObjectPrivate& dd, QObject* parent);
    QScopedPointer<VRNObjectPrivate> d_ptr;
    Q_DECLARE_PRIVATE(VRNObject)

private:
    Q_DISABLE_COPY(VRNObject)
    // The factory sets the identity and the type in the private part.
    friend class ObjectFactory;
    friend class ObjectFactoryPrivate;
};

#endif // VRNOBJECT_H
