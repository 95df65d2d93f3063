#ifndef OBJECTFACTORY_H
#define OBJECTFACTORY_H

#include "vrnobject.h"

#include <QList>
#include <QMetaEnum>
#include <QObject>
#include <QScopedPointer>
#include <QSharedPointer>
#include <QSqlDatabase>
#include <QVariantList>

class ObjectFactoryPrivate;
class ObjectQueryModel;
class QmlSharedObject;
class VRNObjectWorker;

/// The registry of every known device.
///
/// Each device is one row of the SQL table `Devices` on the default
/// connection (an in-memory SQLite database when the application opened
/// none before the first `instance()`). The factory turns rows into live
/// device objects, keeps the 200 most recently used of them, hands out one
/// worker per device, writes objects back with `save()` and deletes them,
/// announcing each change to the list models.
///
///     auto motor = ObjectFactory::instance()->createObject(VRNObject::DtsMotor, 0x42, true);
///     auto worker = ObjectFactory::instance()->objectWorker(motor->uuid());
class ObjectFactory : public QObject
{
    Q_OBJECT
    /// The file the registry lives in; empty for a registry held in memory.
    Q_PROPERTY(QString registryPath READ registryPath NOTIFY registryChanged)
    /// True when the registry's file cannot be written: reads work, writes are refused.
    Q_PROPERTY(bool readOnly READ isReadOnly NOTIFY registryChanged)
    /// Why the last write to the registry failed, with the database's reason.
    Q_PROPERTY(QString lastError READ lastError NOTIFY writeFailed)
public:
    /// Column positions of `Devices`; `NbOccurColumn` exists only in the
    /// list views (the number of devices sharing the row's node id).
    enum DevicesTableColumn {
        UuidColumn = 0,
        NodeIDColumn = 1,
        TypeColumn = 2,
        LabelColumn = 3,
        SerialNumberColumn = 4,
        NbOccurColumn = 5
    };
    Q_ENUM(DevicesTableColumn)

    /// Why no device can have a node address (the numbers and node types
    /// PROTOCOL.md reserves); `AddressValid` when a device can.
    enum AddressProblem {
        AddressValid = 0,
        NumberNone,       ///< node number 0
        NumberBroadcast,  ///< 0xFFFFFF, every node
        NumberTool,       ///< 1 or 0xFE0000..0xFEFFFF, a configuration tool's
        TypeTool,         ///< node type 0, a configuration tool's
        TypeReserved      ///< node types 15..255
    };
    Q_ENUM(AddressProblem)

    static ObjectFactory* instance();
    /// Deletes the instance (cache and worker table included); the next
    /// `instance()` starts afresh on the default connection.
    static void destroy();
    ~ObjectFactory() override;

    /// Inserts a row and returns its object, or null when a device of that
    /// type and node id is already listed or the insert fails. Node id 0 is
    /// stored as NULL.
    QSharedPointer<VRNObject> createObject(VRNObject::Type type, unsigned nodeID, bool select = false);
    /// The cached object, else one built from the row; null without a row.
    QSharedPointer<VRNObject> object(VRNObject::UUID uuid);
    /// The cached object or null; a hit makes it the most recently used.
    QSharedPointer<VRNObject> objectFromCache(VRNObject::UUID uuid);
    bool isObjectInCache(VRNObject::UUID uuid) const;
    /// The device's one live worker, made when none lives; null for an
    /// unknown uuid. The factory holds workers weakly.
    QSharedPointer<VRNObjectWorker> objectWorker(VRNObject::UUID uuid);
    /// Node ids of every row (0 for a NULL node id), in table order.
    QList<VRN::Addr> nodeAddrs();
    bool alreadyExist(unsigned nodeID, VRNObject::Type type);
    /// The uuid of the device of that type and node id (NULL stored as 0),
    /// 0 when none is listed.
    VRNObject::UUID findObject(unsigned nodeID, VRNObject::Type type);

    /// Group numbers the device belongs to, as the last group read or write
    /// of it found them (table `DevicesGroups`), in ascending order.
    QList<unsigned int> deviceGroups(VRNObject::UUID uuid);
    /// Replaces the device's group membership by the non-zero numbers of
    /// `groups` (each once) and emits `deviceGroupsChanged`. Group reads and
    /// writes call it through the registry hook; `save()` never touches the
    /// membership. False for an unknown uuid or when SQL fails.
    bool setDeviceGroups(VRNObject::UUID uuid, const QList<unsigned int>& groups);
    /// The uuids of the devices known to belong to `group`, ascending.
    QList<VRNObject::UUID> groupMembers(unsigned int group);
    /// Every group number some device is known to belong to, ascending.
    QList<unsigned int> groupIds();

    /// The column's SQL name: its key without "Column" ("NodeID", "Label").
    static QString columnName(DevicesTableColumn column);
    static QMetaEnum DevicesTableColumnMetaEnum();
    /// The connection the registry lives on.
    QSqlDatabase database() const;

    // --- one registry file per bus, shared by every tool -----------------

    /// The folder of the user's registry files, one per bus.
    static QString registryFolder();
    /// The registry file of bus `busUuid` in `folder` (default:
    /// `registryFolder()`): "devices-<identifier>.sqlite", every character
    /// other than a letter, a digit, '.' or '-' written as '_'.
    static QString registryFile(const QString& busUuid, const QString& folder = QString());
    /// Opens `file` as the registry on `connection` (":memory:" for none).
    /// Refused, with the reason in `error` and the connection removed: a
    /// folder, a file that is no SQLite database, one that holds other tables
    /// or a `Devices` table of another layout, a damaged one (quick check), or
    /// one locked by another program. A file that cannot be written opens read
    /// only. Several processes share a file: it is kept in write-ahead-log
    /// mode and every statement waits `BusyTimeout` ms for another writer.
    /// A file that did not exist before is removed again when it is refused.
    static bool openRegistry(const QString& file, QString* error,
                             const QString& connection = QLatin1String(QSqlDatabase::defaultConnection));
    /// Moves the factory to the registry in `file`: every cached object and
    /// worker of the old one is let go, and live objects of it are detached
    /// from the bus so none can reach a device of the new bus; the list models
    /// made by `createQueryModel` then show the new registry. On failure the
    /// factory moves to an empty registry in memory, and false.
    Q_INVOKABLE bool switchRegistry(const QString& file, QString* error = nullptr);
    QString registryPath() const;
    bool isReadOnly() const;
    QString lastError() const;
    /// Milliseconds a statement waits while another process writes.
    enum { BusyTimeout = 5000 };

    // --- what discovery learns beyond the row ---------------------------

    /// The device kind whose commands a node of `nodeType` takes, for every
    /// node type of the device network (a plain standard node for others).
    /// Unlike discovery's own table it knows DC motors and setting tools.
    static VRNObject::Type kindOfNodeType(VRN::NodeType nodeType);
    /// After discovery: the device at node address `addr` (number and node
    /// type), for which discovery made the row `created` (0 or
    /// `BusDiscoverTask::NoObject` when it made none), is listed with the
    /// kind its node type names, and its node type is kept. A row made under
    /// another kind is changed to that kind (its uuid stays), or removed when
    /// the device is listed under its kind already. The device's uuid; 0 when
    /// it has no row or SQL failed.
    Q_INVOKABLE VRNObject::UUID settleKind(VRN::Addr addr, VRNObject::UUID created);
    /// The node type discovery saw for the device; without one, the node type
    /// of its kind (`VRNObject::nodeType`).
    VRN::NodeType deviceNodeType(VRNObject::UUID uuid);
    /// Why no device can have `addr` (a number with its node type).
    static AddressProblem addressProblem(VRN::Addr addr);
    /// The same for the device's row: its node number with the node type
    /// discovery saw (`deviceNodeType`). A row with a problem (an older
    /// registry, a forged answer) is listed as invalid and no job runs on it.
    /// `AddressValid` for a uuid that is not listed.
    Q_INVOKABLE ObjectFactory::AddressProblem deviceProblem(VRNObject::UUID uuid);
    /// The devices of `uuids` whose rows have a problem (`deviceProblem`),
    /// in the order given: those a job over all of them must leave out.
    Q_INVOKABLE QVariantList invalidDevices(const QVariantList& uuids);
    /// True when the listed device is a node of the network that answers
    /// the node requests (`VRNObject::isNetworkNode` of its kind); false for
    /// a setting tool and for a uuid that is not listed.
    Q_INVOKABLE bool isNetworkNode(VRNObject::UUID uuid);
    /// Stores the serial number the device reported (`save` never writes it).
    bool setSerialNumber(VRNObject::UUID uuid, const QByteArray& serialNumber);
    /// After a serial number read: stores the one the device reported in
    /// the object's proxy record (`setSerialNumber`). False for an object
    /// that is no node or when the write fails.
    Q_INVOKABLE bool storeSerialNumberRead(VRNObject* object);
    /// Makes `count` rows list node number `nodeID` (of kind `type`) when
    /// `count` devices answer to it: rows are added (created, not selected)
    /// or the surplus rows without a label or serial number of their own,
    /// newest first, removed. The rows of that number.
    QList<VRNObject::UUID> setOccurrences(unsigned nodeID, VRNObject::Type type, int count);

    /// After a label read: the label the device reported becomes the row's
    /// (and the object's local one), unless the object holds an unwritten
    /// change, which `save` then writes as ever. False when nothing was stored.
    Q_INVOKABLE bool storeLabelRead(VRNObject* object);

    Q_INVOKABLE bool destroyObject(VRNObject::UUID uuid);
    /// Writes node id, type and label of the object's row; the serial
    /// number is never written. A label holding a single quote is refused.
    Q_INVOKABLE bool save(VRNObject* object);
    /// Does nothing and returns false: rows go one by one, through destroyObject.
    Q_INVOKABLE bool clear();
    /// Does nothing: every change is written when it is made.
    Q_INVOKABLE void flush();
    /// A new list of every device, owned by `parent`, kept up to date.
    Q_INVOKABLE ObjectQueryModel* createQueryModel(QObject* parent);
    Q_INVOKABLE QString columnToString(ObjectFactory::DevicesTableColumn column) const;
    Q_INVOKABLE QString typeToString(VRNObject::Type type) const;
    Q_INVOKABLE QmlSharedObject* objectQml(QObject* parent, VRNObject::UUID uuid);
    Q_INVOKABLE QmlSharedObject* objectWorkerQml(QObject* parent, VRNObject::UUID uuid);
    Q_INVOKABLE QmlSharedObject* createObjectQml(QObject* parent, VRNObject::Type type, VRN::Addr nodeID, bool select);
    Q_INVOKABLE bool destroyObjectQml(VRNObject::UUID uuid);
    Q_INVOKABLE bool alreadyListed(VRN::Addr addr);

Q_SIGNALS:
    void objectCreated(QSharedPointer<VRNObject> object, bool selected);
    void objectChanged(VRNObject::UUID uuid);
    void beginObjectDestroy(VRNObject::UUID uuid);
    void objectDestroyed(VRNObject::UUID uuid, VRN::Addr nodeID);
    /// The device's rows of `DevicesGroups` were replaced.
    void deviceGroupsChanged(VRNObject::UUID uuid);
    /// The factory moved to another registry (`switchRegistry`).
    void registryChanged();
    /// A write to the registry failed; `error` holds the database's reason.
    void writeFailed(const QString& error);

protected:
    ObjectFactory();

private:
    Q_DECLARE_PRIVATE(ObjectFactory)
    QScopedPointer<ObjectFactoryPrivate> d_ptr;
};

#endif // OBJECTFACTORY_H
