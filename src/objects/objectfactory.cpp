#include "objectfactory.h"
#include "objectfactory_p.h"
#include "pubobjectfactory.h"

#include "busfactory.h"
#include "lru50object.h"
#include "nullvariant.h"
#include "objectquerymodel.h"
#include "qmlsharedobject.h"
#include "settingtoolobject.h"
#include "singleton.h"
#include "tx30object.h"
#include "tx50dcobject.h"
#include "vrnobject_p.h"
#include "vrnobjectworker.h"
#include "vrnstdobject.h"
#include "registrysql_p.h"

#include <QCoreApplication>
#include <QDebug>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QMetaType>
#include <QSet>
#include <QSqlError>
#include <QStandardPaths>

namespace {
void warnSql(const char* what, const QSqlQuery& query)
{
    qWarning() << "[ObjectFactory]:" << what << query.lastError().text();
}

// The node type a row stands for: the one discovery saw (`seen`), else
// the one of the row's kind; a row without either counts as a standard node.
VRN::NodeType rowNodeType(const QVariant& seen, const QVariant& kind)
{
    if (!seen.isNull())
        return VRN::NodeType(seen.toUInt());
    return VRNObject::nodeType(VRNObject::intToType(kind.isNull() ? 1 : kind.toLongLong()));
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

const char* const GenerationProperty = "_vrnRegistryGeneration";

QString tr(const char* text)
{
    return QCoreApplication::translate("ObjectFactory", text);
}

// Refuses a registry file: its connection goes, the file stays.
bool refuse(const QString& connection, const QString& why, QString* error)
{
    if (error)
        *error = why;
    {
        QSqlDatabase db = QSqlDatabase::database(connection, false);
        db.close();
    }
    QSqlDatabase::removeDatabase(connection);
    return false;
}

// A new registry is made whole under a name of its own, already in WAL mode,
// and then put in place only if no other program put one there first. Two
// tools that start on the same new file then never meet in the switch to the
// log (which takes the file to itself, and which SQLite does not wait for),
// and a tool that fails never removes a file another has opened. False
// (with the cause) only when nothing could be made; a file another program
// made meanwhile is a success.
bool createRegistryFile(const QString& file, QString* why)
{
    const QString temp = QStringLiteral("%1.%2.new").arg(file).arg(QCoreApplication::applicationPid());
    const QString connection = QStringLiteral("VRNRegistryNew_%1").arg(temp);
    bool made = false;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connection);
        db.setDatabaseName(temp);
        if (db.open()) {
            QSqlQuery query = RegistrySql::query(db);
            made = query.exec(QStringLiteral("PRAGMA journal_mode=WAL")) && query.next()
                && query.value(0).toString() == QLatin1String("wal");
            if (!made)
                *why = query.lastError().databaseText().isEmpty() ? query.lastError().text() : query.lastError().databaseText();
        } else {
            *why = db.lastError().text();
        }
        db.close();
    }
    QSqlDatabase::removeDatabase(connection);
    // Refuses to replace: the file of whoever came first stays.
    made = made && (QFile::rename(temp, file) || QFileInfo::exists(file));
    for (const char* suffix : {"", "-wal", "-shm", "-journal"})
        QFile::remove(temp + QLatin1String(suffix));
    return made;
}

// The columns of the registry's Devices table, the uuid its integer primary
// key: a table of another layout would take rows without identities.
bool devicesLayoutFits(QSqlQuery& query)
{
    if (!query.exec(QStringLiteral("PRAGMA table_info(Devices)")))
        return false;
    QStringList columns;
    bool uuidKey = false;
    while (query.next()) {
        const QString name = query.value(1).toString().toLower();
        columns << name;
        if (name == QLatin1String("uuid"))
            uuidKey = query.value(5).toInt() == 1 && query.value(2).toString().compare(QLatin1String("INTEGER"), Qt::CaseInsensitive) == 0;
    }
    for (const char* needed : {"nodeid", "type", "label", "serialnumber"})
        if (!columns.contains(QLatin1String(needed)))
            return false;
    return uuidKey;
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

bool registryBusy(const QSqlError& error)
{
    const QString code = error.nativeErrorCode();
    return code == QLatin1String("5") || code == QLatin1String("6")
        || error.databaseText().contains(QLatin1String("locked"), Qt::CaseInsensitive);
}

QString registryErrorText(const QSqlError& error)
{
    if (registryBusy(error))
        return tr("the device registry is locked by another program");
    const QString text = error.databaseText().isEmpty() ? error.text() : error.databaseText();
    return tr("the device registry refused the change: %1").arg(text);
}

void ObjectFactoryPrivate::noteFailure(const QSqlError& error)
{
    lastError = registryErrorText(error);
    emit q_ptr->writeFailed(lastError);
}

bool ObjectFactoryPrivate::write(QSqlQuery& query, const QString& statement)
{
    // SQLite waits out the busy timeout itself, except where waiting could
    // not help this statement (a read that became a write meets a newer
    // snapshot): that one is tried again, within the same bound.
    QElapsedTimer clock;
    clock.start();
    for (int attempt = 0;; ++attempt) {
        if (statement.isEmpty() ? query.exec() : query.exec(statement))
            return true;
        if (!registryBusy(query.lastError()) || clock.elapsed() >= ObjectFactory::BusyTimeout || attempt >= 50) {
            noteFailure(query.lastError());
            return false;
        }
    }
}

bool ObjectFactoryPrivate::beginWrite(bool* own)
{
    *own = false;
    QSqlQuery query = RegistrySql::query(db);
    QElapsedTimer clock;
    clock.start();
    for (int attempt = 0;; ++attempt) {
        // IMMEDIATE: the write lock is taken (and waited for) at the start,
        // so what the transaction reads stays true until it commits.
        if (query.exec(QStringLiteral("BEGIN IMMEDIATE"))) {
            *own = true;
            return true;
        }
        const QSqlError error = query.lastError();
        // The caller's own transaction holds the work.
        if (error.databaseText().contains(QLatin1String("within a transaction")))
            return true;
        if (!registryBusy(error) || clock.elapsed() >= ObjectFactory::BusyTimeout || attempt >= 50) {
            noteFailure(error);
            return false;
        }
    }
}

bool ObjectFactoryPrivate::endWrite(bool commit)
{
    QSqlQuery query = RegistrySql::query(db);
    if (!commit) {
        query.exec(QStringLiteral("ROLLBACK"));
        return false;
    }
    if (write(query, QStringLiteral("COMMIT")))
        return true;
    query.exec(QStringLiteral("ROLLBACK"));
    return false;
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
    prepare();
}

void ObjectFactoryPrivate::keepDeviceCount(QSqlQuery& query)
{
    // The number of rows of Devices, kept by the database on every insert
    // and delete whichever tool makes it, so that a list learns its length
    // from one page instead of counting every leaf of an index (on a shared
    // file another tool's write has often just emptied the page cache). The
    // table, its triggers and its first count are made in one transaction:
    // a row another tool adds meanwhile is counted exactly once. Not on a
    // registry that cannot be written; the lists count rows themselves then.
    // (A row that REPLACE removes fires no delete trigger: nothing here
    // writes Devices that way.)
    // Once made, nothing is written here: opening a registry another tool
    // holds locked does not wait for it.
    if (readOnly
        || (query.exec(QStringLiteral("SELECT COUNT(*) FROM sqlite_master WHERE name IN "
                                      "('DevicesCount', 'devicesCountInsert', 'devicesCountDelete')"))
            && query.next() && query.value(0).toInt() == 3)
        || !query.exec(QStringLiteral("BEGIN IMMEDIATE")))
        return;
    const bool kept = query.exec(QStringLiteral("CREATE TABLE IF NOT EXISTS DevicesCount(n INTEGER NOT NULL)"))
        && query.exec(QStringLiteral("CREATE TRIGGER IF NOT EXISTS devicesCountInsert AFTER INSERT ON Devices "
                                     "BEGIN UPDATE DevicesCount SET n = n + 1; END"))
        && query.exec(QStringLiteral("CREATE TRIGGER IF NOT EXISTS devicesCountDelete AFTER DELETE ON Devices "
                                     "BEGIN UPDATE DevicesCount SET n = n - 1; END"))
        && query.exec(QStringLiteral("INSERT INTO DevicesCount(n) SELECT (SELECT COUNT(*) FROM Devices) "
                                     "WHERE NOT EXISTS (SELECT 1 FROM DevicesCount)"));
    if (!kept) {
        warnSql("failed to keep the device count", query);
        query.exec(QStringLiteral("ROLLBACK"));
    } else if (!query.exec(QStringLiteral("COMMIT"))) {
        warnSql("failed to keep the device count", query);
        query.exec(QStringLiteral("ROLLBACK"));
    }
}

void ObjectFactoryPrivate::prepare()
{
    path = db.databaseName() == QLatin1String(":memory:") ? QString() : db.databaseName();
    readOnly = db.connectOptions().contains(QLatin1String("QSQLITE_OPEN_READONLY"));
    nodeQueries.clear();
    QSqlQuery query = RegistrySql::query(db);
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
                              "devicesSerialNumberIndex ON Devices(serialNumber)",
                              // The list in its usual order (node id, then uuid) read from one
                              // index that holds every shown column: a page of rows then lies
                              // on one or two index pages instead of one table page per row,
                              // and a jump steps over rows without reading them. On a shared
                              // file this matters most: another tool's every write empties the
                              // page cache, and each page read again costs a fault or a read.
                              "devicesListIndex ON Devices(nodeID, uuid, type, label, serialNumber)"}) {
        if (!query.exec(QStringLiteral("CREATE INDEX IF NOT EXISTS ") + QLatin1String(index)))
            warnSql("failed to create Devices index", query);
    }
    // Beside the rows: the node type discovery saw (a motor with inputs is
    // listed as a motor, but takes only its own firmware).
    if (!query.exec(QStringLiteral("CREATE TABLE IF NOT EXISTS DevicesNodeTypes(deviceUUID INTEGER PRIMARY KEY "
                                   "REFERENCES Devices(uuid) ON DELETE CASCADE, nodeType INTEGER)")))
        warnSql("failed to create DevicesNodeTypes table", query);

    keepDeviceCount(query);

    selectRow = RegistrySql::query(db);
    selectRow.prepare(QStringLiteral("SELECT uuid, nodeID, type, label, serialNumber FROM Devices WHERE uuid=?"));
    insertRow = RegistrySql::query(db);
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
    raw->setProperty(GenerationProperty, generation);
    if (built.size() >= 2 * cache.maxCost() && built.size() % cache.maxCost() == 0)
        built.removeAll(QPointer<VRNObject>());
    built.append(raw);
    cache.insert(uuid, new QSharedPointer<VRNObject>(obj), 1);
    return obj;
}

bool ObjectFactoryPrivate::groupSlotsKnown(VRNObject* object, const QList<unsigned int>& groupSlots, QString* error)
{
    // A read-only registry lists what it knows; what the devices say is not kept.
    if (!object || object->uuid() == 0 || readOnly)
        return true;
    lastError.clear();
    if (q_ptr->setDeviceGroups(object->uuid(), groupSlots))
        return true;
    if (error)
        *error = lastError.isEmpty() ? QCoreApplication::translate("ObjectFactory", "the device is not in the registry") : lastError;
    return false;
}

QList<unsigned int> ObjectFactoryPrivate::numbers(const QString& statement, const QVariant& value)
{
    QList<unsigned int> out;
    QSqlQuery query = RegistrySql::query(db);
    query.prepare(statement);
    if (value.userType() == QMetaType::QVariantList) {
        for (const QVariant& v : value.toList())
            query.addBindValue(v);
    } else if (value.isValid()) {
        query.addBindValue(value);
    }
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
    QSqlQuery query = RegistrySql::query(db);
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
    if (it == workers.end() || (!it->isNull() && it->toStrongRef().data() != worker)) {
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
        QSqlQuery fresh = RegistrySql::query(db);
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
    // Lists of uuids and addresses reach QML (results, discovery) by this name.
    qRegisterMetaType<QList<unsigned int>>("QList<uint>");
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
    // The check and the insert are one transaction: another process that
    // registers the same node at the same moment waits, then finds it listed.
    bool own = false;
    if (!d->beginWrite(&own)) {
        qWarning() << "[ObjectFactory]: failed to create object" << d->lastError;
        return {};
    }
    if (alreadyExist(nodeID, type)) {
        if (own)
            d->endWrite(false);
        qDebug() << "[ObjectFactory]: object already exists";
        return {};
    }
    d->insertRow.bindValue(0, nodeID == 0 ? nullVariant<int>() : QVariant(nodeID));
    d->insertRow.bindValue(1, int(type));
    if (!d->write(d->insertRow)) {
        warnSql("failed to create object", d->insertRow);
        if (own)
            d->endWrite(false);
        return {};
    }
    const auto uuid = VRNObject::UUID(d->insertRow.lastInsertId().toInt());
    d->insertRow.finish();
    if (own && !d->endWrite(true)) {
        qWarning() << "[ObjectFactory]: failed to create object" << d->lastError;
        return {};
    }
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
    QSqlQuery query = RegistrySql::query(d->db);
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
    // An object of a registry the factory has left belongs to another bus:
    // its uuid names some other device here.
    const QVariant generation = object->property(GenerationProperty);
    if (generation.isValid() && generation.toInt() != d->generation) {
        qWarning() << "[ObjectFactory]: failed to create Devices database" << QStringLiteral("object of another registry");
        return false;
    }
    query.prepare(QStringLiteral("UPDATE Devices SET nodeID = ?, type = ?, label = ? WHERE uuid = ?"));
    // The row keeps the node number; the address's top byte is the class's
    // node type, which the row's type column already says. Number 0 stays
    // NULL, as at creation.
    const quint32 nodeNumber = VRN::getNumber(object->address());
    query.addBindValue(nodeNumber ? QVariant(nodeNumber) : nullVariant<uint>());
    query.addBindValue(int(object->type()));
    // An unknown label is written as an empty text, never as NULL.
    query.addBindValue(label.isNull() ? QStringLiteral("") : label);
    query.addBindValue(object->uuid());
    if (!d->write(query)) {
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
    QSqlQuery query = RegistrySql::query(d->db);
    query.prepare(QStringLiteral("DELETE FROM Devices WHERE uuid = ?"));
    query.addBindValue(uuid);
    if (!d->write(query))
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
    QSqlQuery query = RegistrySql::query(d_func()->db);
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
    connect(this, &ObjectFactory::registryChanged, model, &ObjectQueryModel::onRegistryChanged);
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
    QSqlQuery query = RegistrySql::query(d->db);
    query.prepare(QStringLiteral("SELECT COUNT(*) FROM Devices WHERE uuid=?"));
    query.addBindValue(uuid);
    if (!query.exec() || !query.next() || query.value(0).toInt() == 0)
        return false;
    query.finish();
    // One transaction: a reader never sees the device in none of its groups.
    bool own = false;
    if (!d->beginWrite(&own))
        return false;
    bool ok = query.prepare(QStringLiteral("DELETE FROM DevicesGroups WHERE deviceUUID=?"));
    query.addBindValue(uuid);
    ok = ok && d->write(query);
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
        ok = d->write(query);
    }
    if (!ok) {
        warnSql("failed to create DevicesGroups database", query);
        if (own)
            d->endWrite(false);
        return false;
    }
    if (own && !d->endWrite(true))
        return false;
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

// --- registry files ---------------------------------------------------------

QString ObjectFactory::registryFolder()
{
    // The organisation and application of the settings store: the same for
    // every tool of the user, whatever the program's own name.
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + QStringLiteral("/Velmo/VRNConfigTool");
}

QString ObjectFactory::registryFile(const QString& busUuid, const QString& folder)
{
    const QString dir = folder.isEmpty() ? registryFolder() : folder;
    if (busUuid.isEmpty())
        return dir + QStringLiteral("/devices.sqlite");
    QString name = busUuid;
    for (QChar& c : name)
        if (!(c.isLetterOrNumber() && c.unicode() < 128) && c != QLatin1Char('.') && c != QLatin1Char('-'))
            c = QLatin1Char('_');
    return dir + QStringLiteral("/devices-%1.sqlite").arg(name);
}

bool ObjectFactory::openRegistry(const QString& file, QString* error, const QString& connection)
{
    if (file == QLatin1String(":memory:")) {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connection);
        db.setDatabaseName(file);
        return db.open() || refuse(connection, db.lastError().text(), error);
    }
    const QFileInfo info(file);
    if (info.isDir())
        return refuse(connection, tr("the device registry %1 is a folder").arg(file), error);
    const bool existed = info.exists();
    if (existed && info.size() > 0) {
        // SQLite would take a short file of anything for an empty database
        // and write over it.
        QFile head(file);
        if (!head.open(QIODevice::ReadOnly) || head.read(16) != QByteArray("SQLite format 3", 16))
            return refuse(connection, tr("%1 is not a device registry: not an SQLite file").arg(file), error);
    }
    const QString folder = info.absolutePath();
    if (!existed && !QDir().mkpath(folder))
        return refuse(connection, tr("cannot create the folder %1").arg(folder), error);
    if (!existed && !QFileInfo(folder).isWritable())
        return refuse(connection, tr("the device registry %1 cannot be created: the folder cannot be written").arg(file), error);
    // A file or folder that cannot be written: the registry is read only,
    // for listing and reading; the log of another writer is read, not made.
    const bool readOnly = existed && (!info.isWritable() || !QFileInfo(folder).isWritable());
    QString why;
    if (!existed && !createRegistryFile(file, &why))
        return refuse(connection, tr("cannot create the device registry %1: %2").arg(file, why), error);
    // From here the file exists and may be open in another program: a
    // failure leaves it be.
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connection);
        db.setDatabaseName(file);
        QString options = QStringLiteral("QSQLITE_BUSY_TIMEOUT=%1").arg(int(BusyTimeout));
        if (readOnly)
            options += QStringLiteral(";QSQLITE_OPEN_READONLY");
        db.setConnectOptions(options);
        if (!db.open())
            return refuse(connection, tr("cannot open the device registry %1: %2").arg(file, db.lastError().text()), error);
        QSqlQuery query = RegistrySql::query(db);
        auto failed = [&](const QString& what) {
            const QSqlError e = query.lastError();
            why = registryBusy(e) ? tr("the device registry %1 is locked by another program").arg(file)
                                  : what.arg(file, e.databaseText().isEmpty() ? e.text() : e.databaseText());
        };
        // Several tools at once: readers never wait for the writer, and a
        // writer waits its turn (the busy timeout) rather than failing.
        if (!readOnly && (!query.exec(QStringLiteral("PRAGMA journal_mode=WAL")) || !query.next()))
            failed(tr("cannot open the device registry %1: %2"));
        // With the log, NORMAL keeps the file whole through a power cut; only
        // the last changes before it may be lost. A sync per device created
        // would make discovery wait on the disk.
        query.exec(QStringLiteral("PRAGMA synchronous=NORMAL"));
        // Another tool's every write empties this connection's page cache;
        // pages read through a memory map come from the system's cache
        // instead.
        query.exec(QStringLiteral("PRAGMA mmap_size=268435456"));
        // The list views and selections are temporary tables of the
        // connection: kept in memory, as with a registry held in memory.
        query.exec(QStringLiteral("PRAGMA temp_store=MEMORY"));
        QStringList tables;
        if (why.isEmpty()) {
            if (query.exec(QStringLiteral("SELECT name FROM sqlite_master WHERE type = 'table'")))
                while (query.next())
                    tables << query.value(0).toString();
            else
                failed(tr("%1 is not a device registry: %2"));
        }
        if (why.isEmpty() && !tables.isEmpty() && !tables.contains(QStringLiteral("Devices")))
            why = tr("%1 is not a device registry: it holds other tables").arg(file);
        if (why.isEmpty() && tables.contains(QStringLiteral("Devices")) && !devicesLayoutFits(query))
            why = tr("%1 is not a device registry: its Devices table has another layout").arg(file);
        // Damage found now, before a single frame is sent on its word.
        if (why.isEmpty()) {
            if (!query.exec(QStringLiteral("PRAGMA quick_check")))
                failed(tr("the device registry %1 is damaged: %2"));
            else if (query.next() && query.value(0).toString() != QLatin1String("ok"))
                why = tr("the device registry %1 is damaged: %2").arg(file, query.value(0).toString());
        }
        query.finish();
    }
    return why.isEmpty() || refuse(connection, why, error);
}

bool ObjectFactory::switchRegistry(const QString& file, QString* error)
{
    Q_D(ObjectFactory);
    static int connections = 0;
    const QString name = QStringLiteral("VRNRegistry_%1").arg(++connections);
    QString why;
    const bool ok = openRegistry(file, &why, name);
    if (!ok) {
        qWarning() << "[ObjectFactory]: failed to open registry" << why;
        openRegistry(QStringLiteral(":memory:"), nullptr, name);
    }
    if (error)
        *error = why;
    // Nothing of the old registry stays reachable: its objects leave the bus
    // (they would follow it onto the new one and reach the device of the same
    // number there), and its cache and workers go.
    BusFactory* buses = BusFactory::instance();
    for (const QPointer<VRNObject>& object : qAsConst(d->built)) {
        if (!object)
            continue;
        disconnect(buses, &BusFactory::busChanged, object, &VRNObject::attach);
        object->attach(nullptr);
    }
    d->built.clear();
    d->cache.clear();
    d->workers.clear();
    ++d->generation;
    const QString old = d->db.connectionName();
    d->selectRow = QSqlQuery();
    d->insertRow = QSqlQuery();
    d->nodeQueries.clear();
    d->db = QSqlDatabase::database(name);
    d->lastError.clear();
    d->prepare();
    emit registryChanged();
    if (old != name)
        QSqlDatabase::removeDatabase(old);
    if (!ok) {
        d->lastError = why;
        emit writeFailed(why);
    }
    return ok;
}

QString ObjectFactory::registryPath() const
{
    return d_func()->path;
}

bool ObjectFactory::isReadOnly() const
{
    return d_func()->readOnly;
}

QString ObjectFactory::lastError() const
{
    return d_func()->lastError;
}

// --- what discovery learns --------------------------------------------------

VRNObject::Type ObjectFactory::kindOfNodeType(VRN::NodeType nodeType)
{
    switch (nodeType) {
    case VRN::NodeMotor:
    case VRN::NodeMotorIO:
        return VRNObject::DtsMotor;
    case VRN::NodeTX30: return VRNObject::TX30;
    case VRN::NodeLRU50: return VRNObject::LRU50;
    case VRN::NodeTX50DC: return VRNObject::TX50DC;
    case VRN::NodeDCMotor: return VRNObject::DtsDcMotor;
    case VRN::NodeSettingTool: return VRNObject::SettingTool;
    default: return VRNObject::DtsStd;
    }
}

VRNObject::UUID ObjectFactory::settleKind(VRN::Addr addr, VRNObject::UUID created)
{
    Q_D(ObjectFactory);
    const unsigned number = VRN::getNumber(addr);
    const VRNObject::Type kind = kindOfNodeType(VRN::getType(addr));
    const VRNObject::UUID listed = findObject(number, kind);
    const QSharedPointer<VRNObject> made = created != 0 && created != listed ? object(created) : nullptr;
    VRNObject::UUID uuid = listed;
    QSqlQuery query = RegistrySql::query(d->db);
    if (made && VRN::getNumber(made->address()) == number) {
        if (listed != 0) {
            // The device is listed under its own kind already: the row
            // discovery made under its table's kind goes again.
            destroyObject(created);
        } else if (made->type() != kind) {
            query.prepare(QStringLiteral("UPDATE Devices SET type = ? WHERE uuid = ?"));
            query.addBindValue(int(kind));
            query.addBindValue(created);
            if (!d->write(query))
                return 0;
            // Built again from the row, as the class of its kind; the one of
            // the table's kind leaves the bus.
            made->attach(nullptr);
            disconnect(BusFactory::instance(), &BusFactory::busChanged, made.data(), &VRNObject::attach);
            d->cache.remove(created);
            d->workers.remove(created);
            emit objectChanged(created);
            uuid = created;
        } else {
            uuid = created;
        }
    }
    if (uuid == 0 || d->readOnly)
        return uuid;
    query.prepare(QStringLiteral("INSERT OR REPLACE INTO DevicesNodeTypes(deviceUUID, nodeType) VALUES (?, ?)"));
    query.addBindValue(uuid);
    query.addBindValue(int(VRN::getType(addr)));
    return d->write(query) ? uuid : 0;
}

VRN::NodeType ObjectFactory::deviceNodeType(VRNObject::UUID uuid)
{
    Q_D(ObjectFactory);
    const QList<unsigned> seen = d->numbers(QStringLiteral("SELECT nodeType FROM DevicesNodeTypes WHERE deviceUUID=?"), uuid);
    if (!seen.isEmpty())
        return rowNodeType(seen.first(), QVariant());
    const QList<unsigned> kind = d->numbers(QStringLiteral("SELECT type FROM Devices WHERE uuid=?"), uuid);
    return rowNodeType(QVariant(), kind.isEmpty() ? QVariant() : QVariant(kind.first()));
}

ObjectFactory::AddressProblem ObjectFactory::addressProblem(VRN::Addr addr)
{
    const quint32 number = VRN::getNumber(addr);
    if (number == 0)
        return NumberNone;
    if (number == VRN::BroadcastNumber)
        return NumberBroadcast;
    if (VRN::isReservedNumber(number))
        return NumberTool;
    if (VRN::getType(addr) == VRN::NodeTool)
        return TypeTool;
    return VRN::isDeviceType(VRN::getType(addr)) ? AddressValid : TypeReserved;
}

ObjectFactory::AddressProblem ObjectFactory::deviceProblem(VRNObject::UUID uuid)
{
    Q_D(ObjectFactory);
    const QList<unsigned> number = d->numbers(QStringLiteral("SELECT ifnull(nodeID, 0) FROM Devices WHERE uuid=?"), uuid);
    if (number.isEmpty())
        return AddressValid;
    return addressProblem(VRN::makeAddr(deviceNodeType(uuid), int(number.first())));
}

QVariantList ObjectFactory::invalidDevices(const QVariantList& uuids)
{
    Q_D(ObjectFactory);
    QVariantList out;
    // One pass over the registry rather than three statements a device: a
    // job for every device of a large network is checked in a moment.
    QSqlQuery query = RegistrySql::query(d->db);
    if (!query.exec(QStringLiteral("SELECT d.uuid, ifnull(d.nodeID, 0), ifnull(d.type, 0), n.nodeType FROM Devices d "
                                   "LEFT JOIN DevicesNodeTypes n ON n.deviceUUID = d.uuid"))) {
        warnSql("failed to check the rows", query);
        for (const QVariant& uuid : uuids)
            if (deviceProblem(uuid.toUInt()) != AddressValid)
                out.append(uuid);
        return out;
    }
    QSet<VRNObject::UUID> invalid;
    while (query.next()) {
        const VRN::Addr addr = VRN::makeAddr(rowNodeType(query.value(3), query.value(2)), int(query.value(1).toUInt()));
        if (addressProblem(addr) != AddressValid)
            invalid.insert(query.value(0).toUInt());
    }
    if (invalid.isEmpty())
        return out;
    for (const QVariant& uuid : uuids)
        if (invalid.contains(uuid.toUInt()))
            out.append(uuid);
    return out;
}

bool ObjectFactory::isNetworkNode(VRNObject::UUID uuid)
{
    Q_D(ObjectFactory);
    const QList<unsigned> kind = d->numbers(QStringLiteral("SELECT type FROM Devices WHERE uuid=?"), uuid);
    return !kind.isEmpty() && VRNObject::isNetworkNode(VRNObject::intToType(int(kind.first())));
}

bool ObjectFactory::setSerialNumber(VRNObject::UUID uuid, const QByteArray& serialNumber)
{
    Q_D(ObjectFactory);
    QSqlQuery query = RegistrySql::query(d->db);
    query.prepare(QStringLiteral("UPDATE Devices SET serialNumber = ? WHERE uuid = ?"));
    query.addBindValue(serialNumber);
    query.addBindValue(uuid);
    if (!d->write(query))
        return false;
    emit objectChanged(uuid);
    return true;
}

QList<VRNObject::UUID> ObjectFactory::setOccurrences(unsigned nodeID, VRNObject::Type type, int count)
{
    Q_D(ObjectFactory);
    auto rows = [&] {
        return d->numbers(QStringLiteral("SELECT uuid FROM Devices WHERE nodeID = ? AND type = ? ORDER BY uuid"),
                          QVariantList{nodeID, int(type)});
    };
    QList<VRNObject::UUID> uuids = rows();
    // Another device answering to the number: a row of its own, made beside
    // createObject, which lists each number and kind once.
    while (uuids.size() < count) {
        QSqlQuery insert = RegistrySql::query(d->db);
        insert.prepare(QStringLiteral("INSERT INTO Devices(nodeID, type) values (?, ?)"));
        insert.addBindValue(nodeID);
        insert.addBindValue(int(type));
        if (!d->write(insert))
            return rows();
        const auto uuid = VRNObject::UUID(insert.lastInsertId().toInt());
        uuids.append(uuid);
        emit objectCreated(object(uuid), false);
    }
    // The number answers once again: the rows added for the others go,
    // newest first; the first row, the one discovery made, stays.
    for (int i = uuids.size() - 1; i >= qMax(1, count); --i)
        if (destroyObject(uuids.at(i)))
            uuids.removeAt(i);
    return uuids;
}

bool ObjectFactory::storeSerialNumberRead(VRNObject* object)
{
    auto device = qobject_cast<VRNStdObject*>(object);
    if (!device)
        return false;
    // Written by a statement of its own: save() never writes it.
    return setSerialNumber(object->uuid(), device->proxyStdConfig().getConstData().serialNumber);
}

bool ObjectFactory::storeLabelRead(VRNObject* object)
{
    auto device = qobject_cast<VRNStdObject*>(object);
    if (device && !object->isDirty()) {
        const QByteArray read = device->proxyStdConfig().getConstData().label;
        StdConfigData local = device->localStdConfig();
        if (!read.isNull() && local.getConstData().label != read) {
            local.data().label = read;
            // Taken as the device's own state, not as an edit of the user's.
            device->updateLocalStdConfig(local, true);
        }
    }
    return save(object);
}
