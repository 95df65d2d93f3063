#include "objectfactory.h"
#include "objectfactory_p.h"
#include "pubobjectfactory.h"

#include "busfactory.h"
#include "lru50object.h"
#include "objectquerymodel.h"
#include "qmlsharedobject.h"
#include "settingtoolobject.h"
#include "singleton.h"
#include "tx30object.h"
#include "tx50dcobject.h"
#include "vrnobject_p.h"
#include "vrnobjectworker.h"

#include <QDebug>
#include <QMetaType>
#include <QSqlError>

namespace {
void warnSql(const char* what, const QSqlQuery& query)
{
    qWarning() << "[ObjectFactory]:" << what << query.lastError().text();
}

// A stored node id or type of NULL reads back as 0, so 0 also matches NULL.
QString matchOrNull(const char* column, unsigned value)
{
    const QString name = QString::fromLatin1(column);
    return value == 0 ? QStringLiteral("(%1 IS NULL OR %1 = 0)").arg(name) : name + QStringLiteral(" = ?");
}

// A device class whose local record starts from the row's label and serial number.
template <class Obj, class Record>
VRNObject* withRecord(const QByteArray& label, const QByteArray& serialNumber)
{
    Record config;
    config.data().label = label;
    config.data().serialNumber = serialNumber;
    return new Obj(config);
}

VRNObject* build(int& type, const QByteArray& label, const QByteArray& serialNumber)
{
    switch (type) {
    case VRNObject::VRNObj:
        return new VRNObject;
    case VRNObject::DtsStd:
        return withRecord<VRNStdObject, StdConfigData>(label, serialNumber);
    case VRNObject::DtsMotor:
        return withRecord<VRNMotorObject, MotorConfigData>(label, serialNumber);
    case VRNObject::DtsDcMotor:
        return withRecord<VRNDCMotorObject, DCMotorConfigData>(label, serialNumber);
    case VRNObject::LRU50:
        return withRecord<LRU50Object, MotorConfigData>(label, serialNumber);
    case VRNObject::TX50DC:
        return withRecord<TX50DCObject, DCMotorConfigData>(label, serialNumber);
    case VRNObject::TX30:
        return withRecord<TX30Object, DCMotorConfigData>(label, serialNumber);
    case VRNObject::SettingTool:
        return new SettingToolObject;
    default:
        qWarning() << "[ObjectFactory]: unknown object type:" << type;
        type = VRNObject::DtsStd;
        return withRecord<VRNStdObject, StdConfigData>(label, serialNumber);
    }
}

template <typename T>
QmlSharedObject* wrap(QObject* parent, const QSharedPointer<T>& object)
{
    return object ? new QmlSharedObject(object.template staticCast<QObject>(), parent) : nullptr;
}
} // namespace

ObjectFactoryPrivate::ObjectFactoryPrivate(ObjectFactory* q) : q_ptr(q)
{
    cache.setMaxCost(200);
    ObjectRegistry::setInstance(this);
}

ObjectFactoryPrivate::~ObjectFactoryPrivate()
{
    cache.clear();
    workers.clear();
    if (ObjectRegistry::instance() == this)
        ObjectRegistry::setInstance(nullptr);
}

bool ObjectFactoryPrivate::saveObject(VRNObject* object)
{
    return q_ptr->save(object);
}

void ObjectFactoryPrivate::init()
{
    db = QSqlDatabase::database(QSqlDatabase::defaultConnection, true);
    if (!db.isValid()) {
        qWarning() << "[ObjectFactory]: no database open," << "opening in-memory database";
        db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"));
        db.setDatabaseName(QStringLiteral(":memory:"));
        db.open();
    }
    QSqlQuery query(db);
    query.exec(QStringLiteral("PRAGMA foreign_keys = ON;"));
    if (!query.exec(QStringLiteral("CREATE TABLE IF NOT EXISTS Devices(uuid INTEGER PRIMARY KEY NOT NULL,"
                                   "nodeID INTEGER DEFAULT %1,type INTEGER DEFAULT %2,label TEXT DEFAULT NULL,"
                                   "serialNumber BLOB DEFAULT NULL)")
                        .arg(0)
                        .arg(1)))
        warnSql("failed to create Devices database", query);
    if (!query.exec(QStringLiteral("CREATE TABLE IF NOT EXISTS DevicesGroups(deviceUUID INTEGER REFERENCES "
                                   "Devices(uuid) ON DELETE CASCADE,groupID INTEGER)"))
        || !query.exec(QStringLiteral("CREATE INDEX IF NOT EXISTS groupIndex ON DevicesGroups( groupID, deviceUUID )")))
        warnSql("failed to create DevicesGroups database", query);
    // Indexes beyond the schema's own groupIndex: the list views sort on
    // these columns and find a row's position by counting over them (labels
    // sort without regard to case); without them every page read and every
    // row look-up scans the whole table.
    for (const char* index : {"devicesNodeIDIndex ON Devices(nodeID)", "devicesNodeTypeIndex ON Devices(nodeID, type)", "devicesTypeIndex ON Devices(type)",
                              "devicesLabelIndex ON Devices(label)", "devicesLowerLabelIndex ON Devices(lower(label))",
                              "devicesSerialNumberIndex ON Devices(serialNumber)"}) {
        if (!query.exec(QStringLiteral("CREATE INDEX IF NOT EXISTS ") + QLatin1String(index)))
            warnSql("failed to create Devices index", query);
    }

    selectRow = QSqlQuery(db);
    selectRow.prepare(QStringLiteral("SELECT uuid, nodeID, type, label, serialNumber FROM Devices WHERE uuid=?"));
    insertRow = QSqlQuery(db);
    insertRow.prepare(QStringLiteral("INSERT INTO Devices(nodeID, type) values (?, ?)"));
}

QSharedPointer<VRNObject> ObjectFactoryPrivate::object(VRNObject::UUID uuid, const QSqlQuery& query)
{
    bool ok = false;
    int nodeID = query.value(1).toInt(&ok);
    if (!ok)
        nodeID = 0;
    int type = query.value(2).toInt(&ok);
    if (!ok)
        type = 1;
    const QByteArray label = query.value(3).toByteArray();
    const QByteArray serialNumber = query.value(4).toByteArray();

    VRNObject* raw = build(type, label, serialNumber);
    QSharedPointer<VRNObject> obj(raw);
    raw->d_func()->uuid = uuid;
    raw->d_func()->type = VRNObject::Type(type);
    raw->setNodeAddress(VRN::makeAddr(VRNObject::nodeType(VRNObject::Type(type)), nodeID));
    raw->setDirty(false);
    BusFactory* buses = BusFactory::instance();
    obj->attach(buses->bus());
    QObject::connect(buses, &BusFactory::busChanged, raw, &VRNObject::attach, Qt::DirectConnection);
    cache.insert(uuid, new QSharedPointer<VRNObject>(obj), 1);
    return obj;
}

void ObjectFactoryPrivate::groupSlotsKnown(VRNObject* object, const QList<unsigned int>& groupSlots)
{
    if (object && object->uuid() != 0)
        q_ptr->setDeviceGroups(object->uuid(), groupSlots);
}

QList<unsigned int> ObjectFactoryPrivate::numbers(const QString& statement, const QVariant& value)
{
    QList<unsigned int> out;
    QSqlQuery query(db);
    query.setForwardOnly(true);
    query.prepare(statement);
    if (value.isValid())
        query.addBindValue(value);
    if (!query.exec()) {
        warnSql("failed to run SQLQuery:", query);
        return out;
    }
    while (query.next())
        out.append(query.value(0).toUInt());
    return out;
}

QList<unsigned> ObjectFactoryPrivate::loadDeviceGroups(VRNObject::UUID uuid)
{
    QList<unsigned> groups;
    QSqlQuery query(db);
    query.setForwardOnly(true);
    query.prepare(QStringLiteral("SELECT groupID FROM DevicesGroups WHERE deviceUUID=?"));
    query.bindValue(0, uuid);
    if (!query.exec()) {
        qWarning() << "[ObjectFactory]: failed to retrieve deviceGroups: " << query.lastError().text();
        return groups;
    }
    while (query.next())
        groups.append(query.value(0).toUInt());
    return groups;
}

void ObjectFactoryPrivate::onObjectWorkerDestroyed(VRNObjectWorker* worker)
{
    const QSharedPointer<VRNObject> obj = worker->vrnObject();
    if (!obj) {
        qWarning() << "[ObjectFactory]: internal error VRNObjectWorker " << "is not associated with any VRNObject";
        return;
    }
    auto it = workers.find(obj->uuid());
    // Only the entry of this worker goes: a newer live one stays.
    if (it == workers.end() || (!it->isNull() && it->data() != worker)) {
        qWarning() << "[ObjectFactory]: internal error failed to remove " << "deleted object worker";
        return;
    }
    workers.erase(it);
}

bool ObjectFactoryPrivate::nodeListed(unsigned nodeID, int type, VRNObject::UUID* uuid)
{
    QString statement = QStringLiteral("SELECT uuid FROM Devices WHERE ") + matchOrNull("nodeID", nodeID);
    if (type >= 0)
        statement += QStringLiteral(" AND ") + matchOrNull("type", unsigned(type));
    statement += QStringLiteral(" LIMIT 1");
    auto prepared = nodeQueries.find(statement);
    if (prepared == nodeQueries.end()) {
        QSqlQuery fresh(db);
        fresh.setForwardOnly(true);
        fresh.prepare(statement);
        prepared = nodeQueries.insert(statement, fresh);
    }
    QSqlQuery& query = *prepared;
    if (nodeID != 0)
        query.addBindValue(nodeID);
    if (type > 0)
        query.addBindValue(type);
    if (!query.exec()) {
        warnSql("failed to run SQLQuery:", query);
        return false;
    }
    const bool found = query.next();
    if (found && uuid)
        *uuid = query.value(0).toUInt();
    query.finish();
    return found;
}

ObjectFactory::ObjectFactory() : d_ptr(new ObjectFactoryPrivate(this))
{
    VRNObject::registerMetaTypes();
    d_ptr->init();
}

ObjectFactory::~ObjectFactory() = default;

ObjectFactory* ObjectFactory::instance()
{
    return Singleton<PubObjectFactory>::instance();
}

void ObjectFactory::destroy()
{
    Singleton<PubObjectFactory>::destroy();
}

QSharedPointer<VRNObject> ObjectFactory::createObject(VRNObject::Type type, unsigned nodeID, bool select)
{
    Q_D(ObjectFactory);
    if (alreadyExist(nodeID, type)) {
        qDebug() << "[ObjectFactory]: object already exists";
        return {};
    }
    d->insertRow.bindValue(0, nodeID == 0 ? QVariant(QVariant::Int) : QVariant(nodeID));
    d->insertRow.bindValue(1, int(type));
    if (!d->insertRow.exec()) {
        warnSql("failed to create object", d->insertRow);
        return {};
    }
    const auto uuid = VRNObject::UUID(d->insertRow.lastInsertId().toInt());
    d->insertRow.finish();
    qDebug() << "[ObjectFactory]: object created with uuid" << uuid;
    QSharedPointer<VRNObject> obj = object(uuid);
    emit objectCreated(obj, select);
    return obj;
}

QSharedPointer<VRNObject> ObjectFactory::object(VRNObject::UUID uuid)
{
    Q_D(ObjectFactory);
    if (QSharedPointer<VRNObject>* cached = d->cache.object(uuid))
        return *cached;
    d->selectRow.bindValue(0, uuid);
    if (!d->selectRow.exec()) {
        warnSql("failed to run SQLQuery:", d->selectRow);
        return {};
    }
    QSharedPointer<VRNObject> obj;
    if (d->selectRow.next())
        obj = d->object(uuid, d->selectRow);
    d->selectRow.finish();
    return obj;
}

QSharedPointer<VRNObject> ObjectFactory::objectFromCache(VRNObject::UUID uuid)
{
    QSharedPointer<VRNObject>* cached = d_func()->cache.object(uuid);
    return cached ? *cached : QSharedPointer<VRNObject>();
}

bool ObjectFactory::isObjectInCache(VRNObject::UUID uuid) const
{
    return d_func()->cache.contains(uuid);
}

QSharedPointer<VRNObjectWorker> ObjectFactory::objectWorker(VRNObject::UUID uuid)
{
    Q_D(ObjectFactory);
    if (QSharedPointer<VRNObjectWorker> alive = d->workers.value(uuid).toStrongRef())
        return alive;
    const QSharedPointer<VRNObject> obj = object(uuid);
    if (!obj) {
        qWarning() << "[ObjectFactory]: unknown worker" << uuid;
        return {};
    }
    QSharedPointer<VRNObjectWorker> worker(new VRNObjectWorker(obj, nullptr));
    d->workers.insert(uuid, worker);
    return worker;
}

bool ObjectFactory::save(VRNObject* object)
{
    Q_D(ObjectFactory);
    if (!object)
        return false;
    const QString label = QString::fromUtf8(object->label());
    QSqlQuery query(d->db);
    // A quote ends the label in the row's historical text form: such labels
    // have always been refused, and still are, before any SQL runs. The
    // values themselves are bound, never written into the statement's text:
    // spliced in, a label read from a device such as `x' WHERE 1=1 --` would
    // overwrite every row of the registry.
    if (label.contains(QLatin1Char('\''))) {
        qWarning() << "[ObjectFactory]: failed to create Devices database"
                   << QStringLiteral("label holds a single quote");
        return false;
    }
    query.prepare(QStringLiteral("UPDATE Devices SET nodeID = ?, type = ?, label = ? WHERE uuid = ?"));
    // The row keeps the node number; the address's top byte is the class's
    // node type, which the row's type column already says. Number 0 stays
    // NULL, as at creation.
    const quint32 nodeNumber = VRN::getNumber(object->address());
    query.addBindValue(nodeNumber ? QVariant(nodeNumber) : QVariant(QVariant::UInt));
    query.addBindValue(int(object->type()));
    // An unknown label is written as an empty text, never as NULL.
    query.addBindValue(label.isNull() ? QStringLiteral("") : label);
    query.addBindValue(object->uuid());
    if (!query.exec()) {
        warnSql("failed to create Devices database", query);
        return false;
    }
    emit objectChanged(object->uuid());
    return true;
}

bool ObjectFactory::destroyObject(VRNObject::UUID uuid)
{
    Q_D(ObjectFactory);
    const QSharedPointer<VRNObject> obj = object(uuid);
    const VRN::Addr addr = obj ? obj->address() : 0;
    emit beginObjectDestroy(uuid);
    QSqlQuery query(d->db);
    query.prepare(QStringLiteral("DELETE FROM Devices WHERE uuid = ?"));
    query.addBindValue(uuid);
    if (!query.exec())
        warnSql("failed to destroy object", query);
    const int n = query.numRowsAffected();
    qDebug() << "[ObjectFactory]: object destroyed(" << (n > 0 ? "true" : "false") << ")";
    d->cache.remove(uuid);
    emit objectDestroyed(uuid, addr);
    return n > 0;
}

bool ObjectFactory::destroyObjectQml(VRNObject::UUID uuid)
{
    return destroyObject(uuid);
}

QList<VRN::Addr> ObjectFactory::nodeAddrs()
{
    QList<VRN::Addr> addrs;
    QSqlQuery query(d_func()->db);
    query.setForwardOnly(true);
    if (!query.exec(QStringLiteral("SELECT nodeID FROM Devices "))) {
        warnSql("failed to run SQLQuery:", query);
        return addrs;
    }
    while (query.next())
        addrs.append(query.value(0).toUInt());
    return addrs;
}

bool ObjectFactory::alreadyListed(VRN::Addr addr)
{
    return d_func()->nodeListed(addr, -1);
}

bool ObjectFactory::alreadyExist(unsigned nodeID, VRNObject::Type type)
{
    return d_func()->nodeListed(nodeID, int(type));
}

VRNObject::UUID ObjectFactory::findObject(unsigned nodeID, VRNObject::Type type)
{
    VRNObject::UUID uuid = 0;
    d_func()->nodeListed(nodeID, int(type), &uuid);
    return uuid;
}

ObjectQueryModel* ObjectFactory::createQueryModel(QObject* parent)
{
    auto model = new ObjectQueryModel(d_func()->db, parent);
    connect(this, &ObjectFactory::objectCreated, model, &ObjectQueryModel::onObjectCreated);
    connect(this, &ObjectFactory::beginObjectDestroy, model, &ObjectQueryModel::onBeginObjectDestroy);
    connect(this, &ObjectFactory::objectDestroyed, model, &ObjectQueryModel::onEndObjectDestroyed);
    connect(this, &ObjectFactory::objectChanged, model, &ObjectQueryModel::onObjectChanged);
    return model;
}

QList<unsigned int> ObjectFactory::deviceGroups(VRNObject::UUID uuid)
{
    return d_func()->numbers(QStringLiteral("SELECT DISTINCT groupID FROM DevicesGroups WHERE deviceUUID=? ORDER BY groupID"),
                             uuid);
}

bool ObjectFactory::setDeviceGroups(VRNObject::UUID uuid, const QList<unsigned int>& groups)
{
    Q_D(ObjectFactory);
    QSqlQuery query(d->db);
    query.prepare(QStringLiteral("SELECT COUNT(*) FROM Devices WHERE uuid=?"));
    query.addBindValue(uuid);
    if (!query.exec() || !query.next() || query.value(0).toInt() == 0)
        return false;
    // One transaction: a reader never sees the device in none of its groups.
    const bool own = d->db.transaction();
    bool ok = query.prepare(QStringLiteral("DELETE FROM DevicesGroups WHERE deviceUUID=?"));
    query.addBindValue(uuid);
    ok = ok && query.exec();
    QList<unsigned int> seen;
    if (ok)
        ok = query.prepare(QStringLiteral("INSERT INTO DevicesGroups(deviceUUID, groupID) VALUES (?, ?)"));
    for (unsigned int group : groups) {
        if (!ok)
            break;
        if (group == 0 || seen.contains(group))
            continue;
        seen.append(group);
        query.addBindValue(uuid);
        query.addBindValue(group);
        ok = query.exec();
    }
    if (!ok) {
        warnSql("failed to create DevicesGroups database", query);
        if (own)
            d->db.rollback();
        return false;
    }
    if (own)
        d->db.commit();
    emit deviceGroupsChanged(uuid);
    return true;
}

QList<VRNObject::UUID> ObjectFactory::groupMembers(unsigned int group)
{
    return d_func()->numbers(QStringLiteral("SELECT DISTINCT deviceUUID FROM DevicesGroups WHERE groupID=? ORDER BY deviceUUID"),
                             group);
}

QList<unsigned int> ObjectFactory::groupIds()
{
    return d_func()->numbers(QStringLiteral("SELECT DISTINCT groupID FROM DevicesGroups ORDER BY groupID"));
}

QMetaEnum ObjectFactory::DevicesTableColumnMetaEnum()
{
    return QMetaEnum::fromType<DevicesTableColumn>();
}

QString ObjectFactory::columnName(DevicesTableColumn column)
{
    QString key = QString::fromLatin1(DevicesTableColumnMetaEnum().valueToKey(column));
    if (key.endsWith(QLatin1String("column"), Qt::CaseInsensitive))
        key.chop(6);
    return key;
}

QString ObjectFactory::columnToString(DevicesTableColumn column) const
{
    return columnName(column);
}

QString ObjectFactory::typeToString(VRNObject::Type type) const
{
    return VRNObject::typeToString(type);
}

QSqlDatabase ObjectFactory::database() const
{
    return d_func()->db;
}

bool ObjectFactory::clear()
{
    return false;
}

void ObjectFactory::flush()
{
}

QmlSharedObject* ObjectFactory::objectQml(QObject* parent, VRNObject::UUID uuid)
{
    return wrap(parent, object(uuid));
}

QmlSharedObject* ObjectFactory::objectWorkerQml(QObject* parent, VRNObject::UUID uuid)
{
    return wrap(parent, objectWorker(uuid));
}

QmlSharedObject* ObjectFactory::createObjectQml(QObject* parent, VRNObject::Type type, VRN::Addr nodeID, bool select)
{
    return wrap(parent, createObject(type, nodeID, select));
}
