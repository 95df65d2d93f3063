#include "objectquerymodel.h"
#include "objectquerymodel_p.h"
#include "nullvariant.h"
#include "objectselectionmodel.h"
#include "registrysql_p.h"

#include <QDebug>
#include <QSqlError>
#include <QSqlRecord>

#include <algorithm>
#include <cctype>

namespace {
const QHash<int, QByteArray>& roles()
{
    static const QHash<int, QByteArray> names{
        {ObjectQueryModel::UuidRole, "uuid"},
        {ObjectQueryModel::NodeIDRole, "nodeID"},
        {ObjectQueryModel::TypeRole, "type"},
        {ObjectQueryModel::LabelRole, "label"},
        {ObjectQueryModel::SerialNumberRole, "serialNumber"},
        {ObjectQueryModel::NbOccurRole, "nbOccur"},
    };
    return names;
}
} // namespace

ObjectQueryModelPrivate::ObjectQueryModelPrivate(ObjectQueryModel* q, const QSqlDatabase& db)
    : q_ptr(q), db(db), indexQuery(RegistrySql::query(db)), firstOfNode(RegistrySql::query(db)), changesQuery(RegistrySql::query(db)),
      versionQuery(RegistrySql::query(db)), keyQuery(RegistrySql::query(db)), betweenQuery(RegistrySql::query(db))
{
    changesQuery.prepare(QStringLiteral("SELECT total_changes()"));
    versionQuery.prepare(QStringLiteral("PRAGMA data_version"));
}

ObjectQueryModelPrivate::Stamp ObjectQueryModelPrivate::stamp()
{
    Stamp now;
    if (changesQuery.exec() && changesQuery.next())
        now.changes = changesQuery.value(0).toLongLong();
    changesQuery.finish();
    if (versionQuery.exec() && versionQuery.next())
        now.version = versionQuery.value(0).toLongLong();
    versionQuery.finish();
    return now;
}

void ObjectQueryModelPrivate::checkAnchors(int expected)
{
    if (!anchorsBuilt)
        return;
    // Rows written past the factory (another connection, another process,
    // a statement of the caller's own) may sit anywhere: positions counted
    // from the anchors would be off by them.
    const Stamp now = stamp();
    if (now.version != anchorStamp.version || now.changes < anchorStamp.changes
        || now.changes > anchorStamp.changes + expected)
        dropAnchors();
    else
        anchorStamp = now;
}

QString ObjectQueryModelPrivate::sortColumnName() const
{
    return ObjectFactory::columnName(sortColumn);
}

void ObjectQueryModelPrivate::select(int newOffset, bool rebuild)
{
    if (rebuild) {
        if (viewName.isEmpty())
            viewName = QStringLiteral("ObjectQueryModel_%1").arg(quintptr(this), 0, 16);
        QSqlQuery query = RegistrySql::query(db);
        // Dropped even on the first build: a model that lived at this address
        // before may have left its view behind.
        query.exec(QStringLiteral("DROP VIEW IF EXISTS %1").arg(viewName));
        QString sortExpr = sortColumnName();
        if (sortColumn == ObjectFactory::LabelColumn)
            sortExpr = QStringLiteral("lower(") + sortExpr + QLatin1Char(')');
        // A filter that few rows pass is applied once, into a table of
        // those rows: otherwise every page read would walk the whole sort
        // index to find them. Where many pass, a page finds its rows at once
        // and the view tests the condition itself.
        narrowFilter = filtered() && collectMatches();
        const QString where = narrowFilter ? QStringLiteral("WHERE c.uuid IN (SELECT uuid FROM ") + matchTable + QStringLiteral(") ")
                            : filtered()   ? QStringLiteral("WHERE ") + filterCondition() + QLatin1Char(' ')
                                           : QString();
        const QString create = QStringLiteral("CREATE TEMP VIEW ") + viewName
            + QStringLiteral(" AS SELECT uuid, nodeID, type, label, serialNumber,"
                             "(SELECT count(*) FROM Devices where nodeID = c.nodeID) AS nbOccur"
                             " FROM  Devices c  ")
            + where + QStringLiteral("ORDER BY ") + sortExpr + QStringLiteral(" ASC, uuid ASC");
        if (!query.exec(create))
            qWarning() << "[ObjectQueryModel]: failed to create SQL view:" << query.lastError().text();
        updateRowCount();
        dropAnchors();
    }
    QSqlQuery query = RegistrySql::query(db);
    page.clear();
    offset = newOffset;
    pageExact = query.prepare(QStringLiteral("SELECT * FROM %1  LIMIT 100 OFFSET %2").arg(viewName).arg(newOffset))
        && readRows(query);
}

bool ObjectQueryModelPrivate::readRows(QSqlQuery& query)
{
    if (!query.exec())
        return false;
    columns = query.record().count();
    while (query.next())
        for (int c = 0; c < columns; ++c)
            page.append(query.value(c));
    query.finish();
    return true;
}

void ObjectQueryModelPrivate::updateRowCount()
{
    QSqlQuery query = RegistrySql::query(db);
    // The view lists every row of Devices (or the filter's): counting the
    // table spares computing each row's duplicate count.
    const QString table = narrowFilter ? matchTable
                        : filtered()   ? QStringLiteral("Devices c WHERE ") + filterCondition()
                                       : QStringLiteral("Devices");
    // Counting reads every leaf page of an index, and on a shared file
    // another tool's last write has emptied the page cache: the count the
    // database keeps (ObjectFactory's DevicesCount) is one page instead. A
    // registry that lacks it (opened read only, made elsewhere) is counted.
    // The count is taken only while both its triggers are there; they also
    // make each insert and delete one row change more (see rowChanges).
    countKept = !filtered()
        && query.exec(QStringLiteral("SELECT n FROM DevicesCount WHERE (SELECT COUNT(*) FROM sqlite_master WHERE type = "
                                     "'trigger' AND name IN ('devicesCountInsert', 'devicesCountDelete')) = 2"))
        && query.next();
    if (countKept) {
        rowCount = query.value(0).toInt();
        query.finish();
        return;
    }
    if (query.exec(QStringLiteral("SELECT COUNT(*) FROM ") + table) && query.next()) {
        rowCount = query.value(0).toInt();
        return;
    }
    qWarning() << "[ObjectQueryModel]: failed to retrieve row count:" << query.lastError().text();
    rowCount = 0;
}

void ObjectQueryModelPrivate::ensurePage(int viewRow)
{
    if (inPage(viewRow))
        return;
    const int target = qMax(0, viewRow - int(PageMargin));
    if (!inPage(target) || !seekPage(target))
        select(target, false);
}

bool ObjectQueryModelPrivate::seekPage(int target)
{
    // Scrolling on: the rows from `target` to the page's end stay, and the
    // rows after its last one are looked up by that row's sort key, which
    // reads the same rows as an OFFSET without stepping over every row
    // before them. NULL keys and the computed duplicate count have no index
    // to look up: OFFSET then. So does a page that may no longer be what
    // the database holds there (its rows were moved by a count that can
    // disagree with the view's order): a key taken from it would carry its
    // error into every later page.
    const int held = pageRows();
    if (!pageExact || sortColumn == ObjectFactory::NbOccurColumn || target <= offset || target >= offset + held)
        return false;
    const QVariant key = cell(held - 1, int(sortColumn));
    if (key.isNull())
        return false;
    const QVariant uuid = cell(held - 1, int(ObjectFactory::UuidColumn));
    const bool label = sortColumn == ObjectFactory::LabelColumn;
    const QString s = label ? QStringLiteral("lower(label)") : sortColumnName();
    const QString k = label ? QStringLiteral("lower(?)") : QStringLiteral("?");
    const QString statement =
        QStringLiteral("SELECT * FROM %1 WHERE %2 >= %3 AND (%2 > %3 OR uuid > ?) LIMIT ?").arg(viewName, s, k);
    if (statement != nextRowsStatement) {
        nextRows = RegistrySql::query(db);
        if (!nextRows.prepare(statement)) {
            nextRowsStatement.clear();
            return false;
        }
        nextRowsStatement = statement;
    }
    const QVector<QVariant> kept = page.mid((target - offset) * columns);
    const QVector<QVariant> before = page;
    page = kept;
    nextRows.bindValue(0, key);
    nextRows.bindValue(1, key);
    nextRows.bindValue(2, uuid);
    nextRows.bindValue(3, int(PageSize) - held + (target - offset));
    if (!readRows(nextRows)) {
        page = before;
        nextRowsStatement.clear();
        return false;
    }
    offset = target;
    return true;
}

bool ObjectQueryModelPrivate::anchoredColumn() const
{
    return sortColumn == ObjectFactory::UuidColumn || sortColumn == ObjectFactory::NodeIDColumn
        || sortColumn == ObjectFactory::TypeColumn;
}

void ObjectQueryModelPrivate::dropAnchors()
{
    anchors.clear();
    anchorsBuilt = false;
}

void ObjectQueryModelPrivate::buildAnchors()
{
    anchors.clear();
    anchorsBuilt = true;
    anchorStamp = stamp();
    ++anchorGeneration;
    // Positions among the rows with a key, in (raw value, uuid) order as
    // the counting statement has it; rows of other storage classes keep
    // their place in the count but make no anchor.
    QSqlQuery query = RegistrySql::query(db);
    const QString c = sortColumnName();
    if (!query.exec(QStringLiteral("SELECT k, uuid, r FROM (SELECT %1 AS k, typeof(%1) AS t, uuid,"
                                   " row_number() OVER (ORDER BY %1, uuid) - 1 AS r FROM Devices WHERE %1 NOTNULL)"
                                   " WHERE r % %2 = 0 AND t = 'integer'")
                        .arg(c)
                        .arg(int(AnchorSpacing)))) {
        qWarning() << "[ObjectQueryModel]: unexpected sql failure (anchors):" << query.lastError().text();
        return;
    }
    while (query.next())
        anchors.append({query.value(0).toLongLong(), query.value(1).toLongLong(), query.value(2).toInt()});
}

bool ObjectQueryModelPrivate::integerKey(VRNObject::UUID uuid, qint64* key, bool* null)
{
    const QString statement = QStringLiteral("SELECT %1, typeof(%1) FROM Devices WHERE uuid = ?").arg(sortColumnName());
    if (null)
        *null = false;
    if (keyQuery.lastQuery() != statement && !keyQuery.prepare(statement))
        return false;
    keyQuery.bindValue(0, uuid);
    if (!keyQuery.exec() || !keyQuery.next()) {
        keyQuery.finish();
        return false;
    }
    const QString type = keyQuery.value(1).toString();
    if (null)
        *null = type == QLatin1String("null");
    const bool integer = type == QLatin1String("integer");
    if (integer)
        *key = keyQuery.value(0).toLongLong();
    keyQuery.finish();
    return integer;
}

void ObjectQueryModelPrivate::anchorNewRow(VRNObject::UUID uuid, int generation)
{
    // Anchors read with the row already in place count it.
    if (!anchorsBuilt || generation != anchorGeneration)
        return;
    qint64 key = 0;
    bool null = false;
    // A NULL key is counted among the NULLs only; another kind of value
    // might sort between the anchors.
    if (integerKey(uuid, &key, &null))
        shiftAnchors(key, uuid, 1);
    else if (!null)
        dropAnchors();
}

void ObjectQueryModelPrivate::shiftAnchors(qint64 key, VRNObject::UUID uuid, int delta)
{
    const Anchor row{key, qint64(uuid), 0};
    auto it = std::lower_bound(anchors.begin(), anchors.end(), row);
    if (delta < 0 && it != anchors.end() && !(row < *it))
        it = anchors.erase(it);
    for (; it != anchors.end(); ++it)
        it->rank += delta;
}

int ObjectQueryModelPrivate::indexOf(VRNObject::UUID uuid)
{
    qint64 key = 0;
    if (!anchoredColumn() || !integerKey(uuid, &key))
        return countIndexOf(uuid);
    checkAnchors();
    if (!anchorsBuilt)
        buildAnchors();
    // The nearest anchor at or before the row; none: count from the start.
    const Anchor row{key, qint64(uuid), 0};
    const auto it = std::upper_bound(anchors.cbegin(), anchors.cend(), row);
    const Anchor* anchor = it == anchors.cbegin() ? nullptr : &*(it - 1);
    const QString c = sortColumnName();
    QString statement;
    QVariantList values;
    if (!anchor) {
        statement = QStringLiteral("SELECT (SELECT COUNT(*) FROM Devices WHERE %1 < ?)"
                                   " + (SELECT COUNT(*) FROM Devices WHERE %1 = ? AND uuid < ?)");
        values = {key, key, uuid};
    } else if (anchor->key == key) {
        statement = QStringLiteral("SELECT COUNT(*) FROM Devices WHERE %1 = ? AND uuid >= ? AND uuid < ?");
        values = {key, anchor->uuid, uuid};
    } else {
        statement = QStringLiteral("SELECT (SELECT COUNT(*) FROM Devices WHERE %1 = ? AND uuid >= ?)"
                                   " + (SELECT COUNT(*) FROM Devices WHERE %1 > ? AND %1 < ?)"
                                   " + (SELECT COUNT(*) FROM Devices WHERE %1 = ? AND uuid < ?)");
        values = {anchor->key, anchor->uuid, anchor->key, key, key, uuid};
    }
    const int base = anchor ? anchor->rank : 0;
    statement = statement.arg(c);
    if (statement != betweenStatement) {
        betweenStatement = betweenQuery.prepare(statement) ? statement : QString();
    }
    for (int i = 0; i < values.size(); ++i)
        betweenQuery.bindValue(i, values.at(i));
    if (betweenStatement.isEmpty() || !betweenQuery.exec() || !betweenQuery.next()) {
        qWarning() << "[ObjectQueryModel]: unexpected sql failure (indexOf):" << betweenQuery.lastError().text();
        betweenStatement.clear();
        return -1;
    }
    const int walked = betweenQuery.value(0).toInt();
    betweenQuery.finish();
    // Rows crowded in between two anchors: place them anew next time.
    if (walked > 4 * AnchorSpacing)
        dropAnchors();
    return base + walked;
}

int ObjectQueryModelPrivate::countIndexOf(VRNObject::UUID uuid)
{
    // The rows of Devices before the device in (raw value, uuid) order, NULL
    // values counted only among themselves. Each count walks an index range
    // of the sort column instead of evaluating every row.
    const QString c = sortColumnName();
    const QString statement = QStringLiteral(
        "SELECT CASE WHEN item.orderVal ISNULL"
        " THEN (SELECT COUNT(*) FROM Devices WHERE %1 ISNULL AND uuid <= ?)"
        " ELSE (SELECT COUNT(*) FROM Devices WHERE %1 < item.orderVal)"
        " + (SELECT COUNT(*) FROM Devices WHERE %1 = item.orderVal AND uuid <= ?) END"
        " FROM (SELECT %1 AS orderVal FROM Devices WHERE uuid = ?) AS item").arg(c);
    if (indexStatement != statement) {
        indexQuery.prepare(statement);
        indexStatement = statement;
    }
    for (int i = 0; i < 3; ++i)
        indexQuery.bindValue(i, uuid);
    if (!indexQuery.exec()) {
        qWarning() << "[ObjectQueryModel]: unexpected sql failure (indexOf):" << indexQuery.lastError().text();
        indexStatement.clear();
        return -1;
    }
    const int count = indexQuery.next() ? indexQuery.value(0).toInt() : 0;
    indexQuery.finish();
    return count > 0 ? count - 1 : -1;
}

void ObjectQueryModelPrivate::refreshDoublonInfo(VRN::Addr address, VRNObject::UUID known, int knownRow, bool pageFresh)
{
    Q_Q(ObjectQueryModel);
    // Rows hold node numbers: the type byte of the address plays no part.
    if (!firstOfNode.exec(QStringLiteral("SELECT uuid FROM Devices WHERE nodeID=%1;").arg(VRN::getNumber(address)))) {
        qWarning() << "[ObjectQueryModel]: unexpected sql failure"
                   << "(refreshDoublonInfo):" << firstOfNode.lastError().text();
        return;
    }
    if (!firstOfNode.next())
        return;
    bool ok = false;
    const VRNObject::UUID first = firstOfNode.value(0).toUInt(&ok);
    firstOfNode.finish();
    if (!ok)
        return;
    const int v = knownRow >= 0 && first == known ? knownRow : indexOf(first);
    if (v < 0)
        return;
    // A page read by the caller a moment ago already shows the new count.
    if (inPage(v) && !pageFresh)
        select(offset, false);
    const QModelIndex index = q->index(mapRow(v), 0);
    emit q->dataChanged(index, index, {ObjectQueryModel::NbOccurRole});
}

QString ObjectQueryModelPrivate::filterCondition() const
{
    // Uncorrelated sub-queries: SQLite reads each value once per statement.
    const QString value = QStringLiteral("(SELECT %1 FROM ") + filterTable + QLatin1Char(')');
    const QString pattern = value.arg(QStringLiteral("pattern"));
    const QString hexPattern = value.arg(QStringLiteral("hexPattern"));
    const QString kindSet = value.arg(QStringLiteral("kinds"));
    const QString grp = value.arg(QStringLiteral("grp"));
    return QStringLiteral("(%1 ISNULL OR c.label LIKE %1 ESCAPE '\\' OR CAST(c.serialNumber AS TEXT) LIKE %1 ESCAPE '\\'"
                          " OR printf('%06X', c.nodeID) LIKE %2)"
                          " AND (%3 = 0 OR (%3 >> c.type) & 1)"
                          " AND (%4 ISNULL OR c.uuid IN (SELECT deviceUUID FROM DevicesGroups WHERE groupID = %4))")
        .arg(pattern, hexPattern, kindSet, grp);
}

void ObjectQueryModelPrivate::tempTable(QString& name, const char* prefix, const char* columns)
{
    if (!name.isEmpty())
        return;
    name = QLatin1String(prefix) + QString::number(quintptr(this), 16);
    QSqlQuery query = RegistrySql::query(db);
    if (!query.exec(QStringLiteral("CREATE TEMP TABLE IF NOT EXISTS ") + name + QLatin1String(columns)))
        qWarning() << "[ObjectQueryModel]: failed to create" << name << query.lastError().text();
}

void ObjectQueryModelPrivate::relist()
{
    Q_Q(ObjectQueryModel);
    q->beginResetModel();
    select(0, true);
    q->endResetModel();
}

bool ObjectQueryModelPrivate::collectMatches()
{
    QSqlQuery query = RegistrySql::query(db);
    tempTable(matchTable, "ObjectQueryModelMatch_", "(uuid INTEGER PRIMARY KEY NOT NULL)");
    // One row more than a narrow filter may have: the scan stops there.
    if (!query.exec(QStringLiteral("DELETE FROM ") + matchTable)
        || !query.exec(QStringLiteral("INSERT INTO ") + matchTable + QStringLiteral(" SELECT uuid FROM Devices c WHERE ")
                       + filterCondition() + QStringLiteral(" LIMIT %1").arg(int(NarrowFilterRows) + 1))) {
        qWarning() << "[ObjectQueryModel]: failed to apply the filter:" << query.lastError().text();
        return false;
    }
    return query.numRowsAffected() <= int(NarrowFilterRows);
}

void ObjectQueryModelPrivate::applyFilter()
{
    Q_Q(ObjectQueryModel);
    QSqlQuery query = RegistrySql::query(db);
    tempTable(filterTable, "ObjectQueryModelFilter_", "(pattern TEXT, hexPattern TEXT, kinds INTEGER, grp INTEGER)");
    // The typed text is bound, never written into a statement; LIKE's own
    // wildcards in it are taken literally.
    QString text = search.trimmed();
    QString escaped = text;
    escaped.replace(QLatin1Char('\\'), QLatin1String("\\\\")).replace(QLatin1Char('%'), QLatin1String("\\%"))
        .replace(QLatin1Char('_'), QLatin1String("\\_"));
    QString hex = text;
    if (hex.startsWith(QLatin1String("0x"), Qt::CaseInsensitive))
        hex = hex.mid(2);
    const bool isHex = !hex.isEmpty() && hex.size() <= 6
        && std::all_of(hex.cbegin(), hex.cend(), [](QChar c) { return isxdigit(c.toLatin1()) != 0; });
    query.exec(QStringLiteral("DELETE FROM ") + filterTable);
    query.prepare(QStringLiteral("INSERT INTO ") + filterTable + QStringLiteral(" VALUES (?, ?, ?, ?)"));
    query.addBindValue(text.isEmpty() ? nullVariant<QString>() : QVariant(QLatin1Char('%') + escaped + QLatin1Char('%')));
    query.addBindValue(isHex ? QVariant(QLatin1Char('%') + hex.toUpper() + QLatin1Char('%')) : nullVariant<QString>());
    query.addBindValue(qint64(kinds));
    query.addBindValue(group >= 0 ? QVariant(group) : nullVariant<int>());
    if (!query.exec())
        qWarning() << "[ObjectQueryModel]: failed to store the filter:" << query.lastError().text();
    relist();
    emit q->filterChanged();
}

ObjectQueryModel::ObjectQueryModel(const QSqlDatabase& db, QObject* parent)
    : QAbstractTableModel(parent), d_ptr(new ObjectQueryModelPrivate(this, db))
{
    qRegisterMetaType<ObjectQueryModel::Role>();
    qRegisterMetaType<Qt::SortOrder>();
    d_ptr->select(0, true);
}

ObjectQueryModel::~ObjectQueryModel()
{
    Q_D(ObjectQueryModel);
    if (!d->filterTable.isEmpty()) {
        // The view reads the filter table: it goes first.
        QSqlQuery query = RegistrySql::query(d->db);
        query.exec(QStringLiteral("DROP VIEW IF EXISTS ") + d->viewName);
        query.exec(QStringLiteral("DROP TABLE IF EXISTS ") + d->filterTable);
        query.exec(QStringLiteral("DROP TABLE IF EXISTS ") + d->matchTable);
    }
}

QString ObjectQueryModel::searchText() const
{
    return d_func()->search;
}

void ObjectQueryModel::setSearchText(const QString& text)
{
    Q_D(ObjectQueryModel);
    if (text == d->search)
        return;
    d->search = text;
    d->applyFilter();
}

QVariantList ObjectQueryModel::kindFilter() const
{
    QVariantList out;
    for (int type = 0; type < 32; ++type)
        if (d_func()->kinds & (1u << type))
            out.append(type);
    return out;
}

void ObjectQueryModel::setKindFilter(const QVariantList& kinds)
{
    Q_D(ObjectQueryModel);
    quint32 bits = 0;
    for (const QVariant& kind : kinds) {
        const int type = kind.toInt();
        if (type >= 0 && type < 32)
            bits |= 1u << type;
    }
    if (bits == d->kinds)
        return;
    d->kinds = bits;
    d->applyFilter();
}

int ObjectQueryModel::groupFilter() const
{
    return d_func()->group;
}

void ObjectQueryModel::setGroupFilter(int group)
{
    Q_D(ObjectQueryModel);
    group = qMax(-1, group);
    if (group == d->group)
        return;
    d->group = group;
    d->applyFilter();
}

bool ObjectQueryModel::isFiltered() const
{
    return d_func()->filtered();
}

QVariantList ObjectQueryModel::knownGroups() const
{
    QVariantList out;
    QSqlQuery query = RegistrySql::query(d_func()->db);
    if (!query.exec(QStringLiteral("SELECT DISTINCT groupID FROM DevicesGroups ORDER BY groupID")))
        qWarning() << "[ObjectQueryModel]: failed to read the groups:" << query.lastError().text();
    while (query.next())
        out.append(query.value(0).toInt());
    return out;
}

void ObjectQueryModel::selectRows(int first, int last)
{
    Q_D(ObjectQueryModel);
    if (d->rowCount == 0)
        return;
    first = qBound(0, first, d->rowCount - 1);
    last = qBound(0, last, d->rowCount - 1);
    const int a = d->mapRow(first), b = d->mapRow(last);
    selectionModel()->addRows(qMin(a, b), qAbs(a - b) + 1);
}

void ObjectQueryModel::selectAll()
{
    selectionModel()->addRows(0, -1);
}

int ObjectQueryModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : d_func()->rowCount;
}

int ObjectQueryModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : 5;
}

QVariant ObjectQueryModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return QVariant();
    auto d = const_cast<ObjectQueryModelPrivate*>(d_func());
    const int v = d->databaseRow(d->mapRow(index.row()));
    d->ensurePage(v);
    if (role >= Qt::UserRole)
        return d->cell(v - d->offset, role - Qt::UserRole);
    // Below the item roles, a cell shows and edits its value, nothing else.
    if (role != Qt::DisplayRole && role != Qt::EditRole)
        return QVariant();
    return d->cell(v - d->offset, index.column());
}

bool ObjectQueryModel::setData(const QModelIndex&, const QVariant&, int)
{
    return false;
}

QHash<int, QByteArray> ObjectQueryModel::roleNames() const
{
    return roles();
}

void ObjectQueryModel::fetch(int viewRow) const
{
    auto d = const_cast<ObjectQueryModelPrivate*>(d_func());
    d->ensurePage(d->databaseRow(viewRow));
}

int ObjectQueryModel::pageOffset() const
{
    return d_func()->offset;
}

QString ObjectQueryModel::viewName() const
{
    return d_func()->viewName;
}

QVariantMap ObjectQueryModel::get(int row) const
{
    QVariantMap map;
    const QModelIndex idx = index(row, 0);
    const auto& names = roles();
    for (auto it = names.cbegin(); it != names.cend(); ++it)
        map.insert(QString::fromLatin1(it.value()), data(idx, it.key()));
    return map;
}

QList<VRNObject::UUID> ObjectQueryModel::toList() const
{
    return RegistrySql::uuids(d_func()->db, d_func()->viewName, "ObjectQueryModel");
}

int ObjectQueryModel::indexOf(VRNObject::UUID uuid) const
{
    return const_cast<ObjectQueryModelPrivate*>(d_func())->indexOf(uuid);
}

ObjectSelectionModel* ObjectQueryModel::selectionModel()
{
    Q_D(ObjectQueryModel);
    if (!d->selection) {
        d->selection = new ObjectSelectionModel(d->db, this);
        d->selection->setDeviceTable(d->viewName);
        connect(d->selection, &ObjectSelectionModel::rowCountChanged, this, &ObjectQueryModel::selectionChanged);
    }
    return d->selection;
}

ObjectQueryModel::Role ObjectQueryModel::sortBy() const
{
    return Role(d_func()->sortColumn + Qt::UserRole);
}

void ObjectQueryModel::setSortBy(Role role)
{
    setSort(role, sortOrder());
}

Qt::SortOrder ObjectQueryModel::sortOrder() const
{
    return d_func()->sortOrder;
}

void ObjectQueryModel::setSortOrder(Qt::SortOrder order)
{
    setSort(sortBy(), order);
}

void ObjectQueryModel::setSort(Role role, Qt::SortOrder order)
{
    Q_D(ObjectQueryModel);
    const auto column = ObjectFactory::DevicesTableColumn(role - Qt::UserRole);
    const bool columnChanged = column != d->sortColumn;
    const bool orderChanged = order != d->sortOrder;
    if (!columnChanged && !orderChanged)
        return;
    beginResetModel();
    d->sortColumn = column;
    d->sortOrder = order;
    if (columnChanged)
        emit sortByChanged(role);
    if (orderChanged)
        emit sortOrderChanged(order);
    if (columnChanged)
        d->select(d->offset, true);
    endResetModel();
}

void ObjectQueryModel::onObjectCreated(QSharedPointer<VRNObject> object, bool selected)
{
    Q_D(ObjectQueryModel);
    if (!object)
        return;
    if (d->filtered()) {
        d->relist();
        if (selected) {
            selectionModel()->clear();
            selectionModel()->addItems(ObjectFactory::NodeIDColumn, VRN::getNumber(object->address()));
        }
        return;
    }
    // The insert being announced is the one change the anchors may have missed.
    d->checkAnchors(d->rowChanges());
    const int generation = d->anchorGeneration;
    const int v = d->indexOf(object->uuid());
    if (v >= 0)
        d->anchorNewRow(object->uuid(), generation);
    bool pageFresh = false;
    if (v >= 0) {
        // The database holds the row already, the model shows it only from
        // the end of the insertion on. The page follows the database first;
        // reads made while the insertion is announced skip the new row.
        if (v < d->offset) {
            ++d->offset;
            d->pageExact = false;
        } else if (v < d->offset + ObjectQueryModelPrivate::PageSize) {
            d->select(d->offset, false);
            pageFresh = true;
        } else {
            d->pageExact = false;
        }
        // The model row in the new order: the old count plus one, mirrored.
        const int row = d->sortOrder == Qt::AscendingOrder ? v : d->rowCount - v;
        d->pendingInsert = v;
        beginInsertRows(QModelIndex(), row, row);
        d->pendingInsert = -1;
        ++d->rowCount;
        endInsertRows();
    }
    d->refreshDoublonInfo(object->address(), object->uuid(), v, pageFresh);
    if (selected) {
        ObjectSelectionModel* selection = selectionModel();
        selection->clear();
        selection->addItems(ObjectFactory::NodeIDColumn, VRN::getNumber(object->address()));
    }
}

void ObjectQueryModel::onObjectChanged(VRNObject::UUID uuid)
{
    Q_D(ObjectQueryModel);
    if (d->filtered()) {
        // The change may take the row into the filter or out of it.
        d->relist();
        return;
    }
    // A save may write the sorted column; it never moves a uuid.
    if (d->sortColumn != ObjectFactory::UuidColumn)
        d->dropAnchors();
    else
        d->checkAnchors(1);
    const int v = d->indexOf(uuid);
    if (v < 0)
        return;
    // Where the row stood before the change, when the page shows it.
    int before = -1;
    for (int i = 0; i < d->pageRows() && before < 0; ++i)
        if (d->cell(i, int(ObjectFactory::UuidColumn)).toUInt() == uuid)
            before = d->offset + i;
    // The change may have moved the row in or out of the page: read it
    // again even when the row now lies elsewhere.
    d->select(d->offset, false);
    const QModelIndex idx = index(d->mapRow(v), 0);
    emit dataChanged(idx, idx, {LabelRole});
    // A change of the sorted column moves the row, and the rows between its
    // old and new places each move by one: views must read them again.
    const bool sortedByWritten = d->sortColumn == ObjectFactory::NodeIDColumn
        || d->sortColumn == ObjectFactory::TypeColumn || d->sortColumn == ObjectFactory::LabelColumn;
    if (sortedByWritten && before != v && d->rowCount > 0) {
        int first = 0, last = d->rowCount - 1;
        if (before >= 0) {
            first = d->mapRow(qMin(before, v));
            last = d->mapRow(qMax(before, v));
            if (first > last)
                std::swap(first, last);
        }
        emit dataChanged(index(first, 0), index(last, columnCount() - 1));
    }
}

void ObjectQueryModel::onBeginObjectDestroy(VRNObject::UUID uuid)
{
    Q_D(ObjectQueryModel);
    if (d->filtered())
        return; // listed anew once it is gone
    const int v = d->indexOf(uuid);
    if (v < 0)
        return;
    // Still in the table: the anchors after it move up when it is gone.
    d->removedKeyKnown = d->anchoredColumn() && d->integerKey(uuid, &d->removedKey);
    if (!d->removedKeyKnown && d->anchoredColumn())
        d->dropAnchors();
    d->pendingRemoval = v;
    const int row = d->mapRow(v);
    beginRemoveRows(QModelIndex(), row, row);
}

void ObjectQueryModel::onEndObjectDestroyed(VRNObject::UUID uuid, VRN::Addr address)
{
    Q_D(ObjectQueryModel);
    if (d->filtered() && d->pendingRemoval < 0) {
        d->relist();
        return;
    }
    if (d->pendingRemoval < 0) {
        qWarning() << "[ObjectQueryModel]: internal error, endObjectDestroyed" << "called without index";
        return;
    }
    const int v = d->pendingRemoval;
    d->pendingRemoval = -1;
    d->checkAnchors(d->rowChanges());
    if (d->removedKeyKnown && d->anchorsBuilt)
        d->shiftAnchors(d->removedKey, uuid, -1);
    d->removedKeyKnown = false;
    if (v < d->offset) {
        --d->offset;
        d->pageExact = false;
    } else if (v < d->offset + ObjectQueryModelPrivate::PageSize) {
        d->select(d->offset, false);
    } else {
        d->pageExact = false;
    }
    --d->rowCount;
    endRemoveRows();
    d->refreshDoublonInfo(address, 0, -1);
}

void ObjectQueryModel::onRegistryChanged()
{
    beginResetModel();
    const ObjectFactory::DevicesTableColumn column = d_ptr->sortColumn;
    const Qt::SortOrder order = d_ptr->sortOrder;
    ObjectSelectionModel* selection = d_ptr->selection;
    const QString search = d_ptr->search;
    const quint32 kinds = d_ptr->kinds;
    const int group = d_ptr->group;
    d_ptr.reset(new ObjectQueryModelPrivate(this, ObjectFactory::instance()->database()));
    d_ptr->sortColumn = column;
    d_ptr->sortOrder = order;
    d_ptr->selection = selection;
    d_ptr->select(0, true);
    endResetModel();
    if (selection)
        selection->setDatabase(d_ptr->db, d_ptr->viewName);
    // The filter stays what the user set; its tables live in the new connection.
    d_ptr->search = search;
    d_ptr->kinds = kinds;
    d_ptr->group = group;
    if (d_ptr->filtered())
        d_ptr->applyFilter();
}
