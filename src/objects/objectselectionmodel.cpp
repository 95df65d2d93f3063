#include "objectselectionmodel.h"
#include "objectselectionmodel_p.h"
#include "registrysql_p.h"

#include "nullvariant.h"
#include "vrnmotorobject.h"

#include <QAtomicInt>
#include <QDebug>
#include <QSqlError>

namespace {
QAtomicInt tableCounter;
}

ObjectSelectionModelPrivate::ObjectSelectionModelPrivate(ObjectSelectionModel* q, const QSqlDatabase& db)
    : q_ptr(q),
      db(db),
      table(QStringLiteral("ObjectSelectionModel_%1").arg(tableCounter.fetchAndAddRelaxed(1))),
      membership(RegistrySql::query(db))
{
    QSqlQuery query = RegistrySql::query(db);
    query.exec(QStringLiteral("CREATE TEMP TABLE IF NOT EXISTS ") + table
               + QStringLiteral("(uuid INTEGER PRIMARY KEY NOT NULL)"));
    membership.prepare(QStringLiteral("SELECT COUNT(*) FROM ") + table + QStringLiteral(" WHERE uuid=?"));
}

bool ObjectSelectionModelPrivate::run(QSqlQuery& query, const QString& statement, const QVariant& criteria,
                                      const char* failure)
{
    bool ok = query.prepare(statement);
    if (ok) {
        // A criterion left undefined (from QML) is bound as NULL: the
        // statement runs and matches no row, instead of failing for want of
        // a value.
        if (criteria.isValid())
            query.addBindValue(criteria);
        else if (statement.contains(QLatin1Char('?')))
            query.addBindValue(nullVariant<int>());
        ok = query.exec();
    }
    if (!ok)
        qWarning() << "[ObjectSelectionModel]:" << failure << query.lastError().text();
    return ok;
}

bool ObjectSelectionModelPrivate::clearTable()
{
    QSqlQuery query = RegistrySql::query(db);
    return run(query, QStringLiteral("DELETE FROM ") + table, QVariant(), "failed to execute clear query");
}

void ObjectSelectionModelPrivate::insertMatching(ObjectFactory::DevicesTableColumn column, const QVariant& criteria)
{
    QSqlQuery query = RegistrySql::query(db);
    run(query,
        QStringLiteral("INSERT OR IGNORE INTO ") + table + QStringLiteral(" (uuid) SELECT uuid FROM ") + deviceTable
            + QStringLiteral(" WHERE ") + ObjectFactory::columnName(column) + QStringLiteral(" = ?"),
        criteria, "failed to execute insert query:");
}

bool ObjectSelectionModelPrivate::updateRowCount()
{
    QSqlQuery query = RegistrySql::query(db);
    if (!run(query, QStringLiteral("SELECT COUNT(*) FROM ") + table, QVariant(), "failed to update row count:")
        || !query.next())
        return false;
    const unsigned count = query.value(0).toUInt();
    if (count == rowCount)
        return false;
    rowCount = count;
    return true;
}

void ObjectSelectionModelPrivate::updateSelectedType()
{
    QSqlQuery query = RegistrySql::query(db);
    if (!run(query,
             QStringLiteral("SELECT DISTINCT (type) FROM ") + deviceTable + QStringLiteral(" WHERE (uuid) IN (SELECT (uuid) FROM ")
                 + table + QLatin1Char(')'),
             QVariant(), "failed to update selected type:"))
        return;
    sharesNoKind = false;
    if (!query.next()) {
        selectedType = VRNObject::Type(0);
        return;
    }
    const int first = query.value(0).toInt();
    const QMetaObject* common = VRNObject::typeToMetaObject(VRNObject::Type(first));
    if (!common) {
        qWarning() << "[ObjectSelectionModel]: invalid object type 1: " << first;
        selectedType = VRNObject::Type(0);
        return;
    }
    bool several = false;
    while (query.next()) {
        const int type = query.value(0).toInt();
        const QMetaObject* other = VRNObject::typeToMetaObject(VRNObject::Type(type));
        if (!other) {
            qWarning() << "[ObjectSelectionModel]: invalid object type 2: " << type;
            selectedType = VRNObject::Type(0);
            return;
        }
        several = true;
        while (common && common != other && !VRNObject::isAncestor(*common, *other))
            common = common->superClass();
    }
    if (!several)
        selectedType = VRNObject::Type(first);
    else
        selectedType = common ? VRNObject::metaObjectToType(common) : VRNObject::Type(0);
    sharesNoKind = several && common == &VRNObject::staticMetaObject;
}

void ObjectSelectionModelPrivate::updateSelectedNodeId()
{
    selectedNodeId = 0;
    QSqlQuery query = RegistrySql::query(db);
    if (!run(query,
             QStringLiteral("SELECT uuid, nodeID FROM ") + deviceTable + QStringLiteral(" WHERE uuid IN (SELECT uuid FROM ")
                 + table + QLatin1Char(')'),
             QVariant(), "failed to update  selected nodeId:"))
        return;
    // Only a single selected device has a node id; an empty or wider
    // selection is logged every time and gives 0.
    if (!query.next() || rowCount != 1) {
        qWarning() << "[ObjectSelectionModel]: query is empty, invalid, or" << "it concerns multiple devices";
        return;
    }
    selectedNodeId = query.value(1).toUInt();
    while (query.next())
        qDebug() << "[ObjectSelectionModel]: next";
    qDebug() << "[ObjectSelectionModel]: m_selectedNodeId" << selectedNodeId;
}

ObjectSelectionModel::ObjectSelectionModel(const QSqlDatabase& db, QObject* parent)
    : QAbstractListModel(parent), d_ptr(new ObjectSelectionModelPrivate(this, db))
{
}

ObjectSelectionModel::~ObjectSelectionModel()
{
    Q_D(ObjectSelectionModel);
    d->membership.clear();
    QSqlQuery query = RegistrySql::query(d->db);
    if (!query.exec(QStringLiteral("DROP TABLE IF EXISTS ") + d->table))
        qWarning() << "[ObjectSelectionModel]: failed to drop table";
}

int ObjectSelectionModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(d_func()->rowCount);
}

QVariant ObjectSelectionModel::data(const QModelIndex& index, int role) const
{
    // A row is its uuid, shown and edited as such; a view asking for a
    // size, a font or a colour gets nothing rather than the uuid.
    if (!index.isValid() || (role != Qt::DisplayRole && role != Qt::EditRole))
        return QVariant();
    return data(index.row());
}

QVariant ObjectSelectionModel::data(int index) const
{
    Q_D(const ObjectSelectionModel);
    QSqlQuery query = RegistrySql::query(d->db);
    if (!query.exec(QStringLiteral("SELECT uuid FROM ") + d->table + QStringLiteral(" LIMIT 1 OFFSET %1").arg(index))) {
        qWarning() << "[ObjectSelectionModel]: failed to get data:" << query.lastError().text();
        return QVariant();
    }
    return query.next() ? QVariant::fromValue<VRNObject::UUID>(query.value(0).toUInt()) : QVariant();
}

bool ObjectSelectionModel::contains(VRNObject::UUID uuid) const
{
    Q_D(const ObjectSelectionModel);
    d->membership.addBindValue(uuid);
    if (!d->membership.exec() || !d->membership.next()) {
        qWarning() << "[ObjectSelectionModel]: failed to execute select query";
        return false;
    }
    const bool found = d->membership.value(0).toInt() != 0;
    d->membership.finish();
    return found;
}

void ObjectSelectionModel::change(const std::function<void()>& statements)
{
    Q_D(ObjectSelectionModel);
    beginResetModel();
    statements();
    d->updateSelectedType();
    // Views read the row count when the reset ends: it must be the new one.
    const bool counted = d->updateRowCount();
    endResetModel();
    // Whoever hears of the new count reads the node id of the new selection.
    d->updateSelectedNodeId();
    if (counted)
        emit rowCountChanged(d->rowCount);
}

void ObjectSelectionModel::addItems(ObjectFactory::DevicesTableColumn column, const QVariant& criteria)
{
    change([&] { d_func()->insertMatching(column, criteria); });
}

void ObjectSelectionModel::removeItems(ObjectFactory::DevicesTableColumn column, const QVariant& criteria)
{
    change([&] {
        Q_D(ObjectSelectionModel);
        QSqlQuery query = RegistrySql::query(d->db);
        d->run(query,
               QStringLiteral("DELETE FROM ") + d->table + QStringLiteral(" WHERE uuid IN (SELECT uuid FROM ")
                   + d->deviceTable + QStringLiteral(" WHERE ") + ObjectFactory::columnName(column) + QStringLiteral(" = ?)"),
               criteria, "failed to execute delete query");
    });
}

void ObjectSelectionModel::setItems(ObjectFactory::DevicesTableColumn column, const QVariant& criteria)
{
    change([&] {
        d_func()->clearTable();
        d_func()->insertMatching(column, criteria);
    });
}

void ObjectSelectionModel::toggleItems(ObjectFactory::DevicesTableColumn column, const QVariant& criteria)
{
    Q_D(ObjectSelectionModel);
    QSqlQuery query = RegistrySql::query(d->db);
    if (!d->run(query,
                QStringLiteral("SELECT COUNT(CASE WHEN uuid NOT IN (SELECT uuid FROM ") + d->table
                    + QStringLiteral(") THEN 1 ELSE NULL END),COUNT(*) FROM ") + d->deviceTable + QStringLiteral(" WHERE ")
                    + ObjectFactory::columnName(column) + QStringLiteral(" = ?"),
                criteria, "failed to get selection matching count:")
        || !query.next())
        return;
    const unsigned unselected = query.value(0).toUInt();
    const unsigned matching = query.value(1).toUInt();
    query.finish();
    if (unselected == 0 && matching == d->rowCount)
        clear();
    else
        setItems(column, criteria);
}

void ObjectSelectionModel::addRows(int offset, int count)
{
    change([&] {
        Q_D(ObjectSelectionModel);
        QSqlQuery query = RegistrySql::query(d->db);
        d->run(query,
               QStringLiteral("INSERT OR IGNORE INTO ") + d->table + QStringLiteral(" (uuid) SELECT uuid FROM ") + d->deviceTable
                   + QStringLiteral(" LIMIT %1 OFFSET %2").arg(count < 0 ? -1 : count).arg(qMax(0, offset)),
               QVariant(), "failed to execute insert query:");
    });
}

void ObjectSelectionModel::addGroup(int group)
{
    change([&] {
        Q_D(ObjectSelectionModel);
        QSqlQuery query = RegistrySql::query(d->db);
        d->run(query,
               QStringLiteral("INSERT OR IGNORE INTO ") + d->table + QStringLiteral(" (uuid) SELECT uuid FROM ") + d->deviceTable
                   + QStringLiteral(" WHERE uuid IN (SELECT deviceUUID FROM DevicesGroups WHERE groupID = ?)"),
               group, "failed to execute insert query:");
    });
}

void ObjectSelectionModel::clear()
{
    Q_D(ObjectSelectionModel);
    beginResetModel();
    d->clearTable();
    d->rowCount = 0;
    endResetModel();
    d->updateSelectedType();
    d->updateSelectedNodeId();
    emit rowCountChanged(0);
}

void ObjectSelectionModel::setDatabase(const QSqlDatabase& db, const QString& deviceTable)
{
    beginResetModel();
    {
        Q_D(ObjectSelectionModel);
        d->membership.clear();
        QSqlQuery query = RegistrySql::query(d->db);
        query.exec(QStringLiteral("DROP TABLE IF EXISTS ") + d->table);
    }
    d_ptr.reset(new ObjectSelectionModelPrivate(this, db));
    d_ptr->deviceTable = deviceTable;
    d_ptr->updateSelectedType();
    endResetModel();
    emit deviceTableChanged(deviceTable);
    emit rowCountChanged(0);
}

void ObjectSelectionModel::destroyObjectsQml()
{
    const QList<VRNObject::UUID> uuids = toList();
    clear();
    ObjectFactory* factory = ObjectFactory::instance();
    for (VRNObject::UUID uuid : uuids)
        factory->destroyObjectQml(uuid);
}

QList<VRNObject::UUID> ObjectSelectionModel::toList() const
{
    return RegistrySql::uuids(d_func()->db, d_func()->table, "ObjectSelectionModel");
}

QString ObjectSelectionModel::tableName() const
{
    return d_func()->table;
}

QString ObjectSelectionModel::deviceTable() const
{
    return d_func()->deviceTable;
}

void ObjectSelectionModel::setDeviceTable(const QString& table)
{
    Q_D(ObjectSelectionModel);
    if (table == d->deviceTable)
        return;
    d->deviceTable = table;
    emit deviceTableChanged(table);
}

unsigned ObjectSelectionModel::count() const
{
    return d_func()->rowCount;
}

VRNObject::Type ObjectSelectionModel::selectedType() const
{
    return d_func()->selectedType;
}

VRNObject::Type ObjectSelectionModel::commonKind() const
{
    return d_func()->sharesNoKind ? VRNObject::VRNObj : d_func()->selectedType;
}

bool ObjectSelectionModel::isMotor() const
{
    const QMetaObject* meta = VRNObject::typeToMetaObject(d_func()->selectedType);
    const QMetaObject& motor = VRNMotorObject::staticMetaObject;
    return meta && (meta == &motor || VRNObject::isAncestor(motor, *meta));
}

VRN::Addr ObjectSelectionModel::selectedNodeId() const
{
    return d_func()->selectedNodeId;
}
