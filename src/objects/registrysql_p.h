// Not part of the library's API: SQL helpers shared by the code that reads and
// writes the registry (the factory, its list models, the documents).
#ifndef REGISTRYSQL_P_H
#define REGISTRYSQL_P_H

#include "vrnobject.h"

#include <QDebug>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>

namespace RegistrySql {

/// A query on `db` that reads its rows once, in order. Qt's default query
/// keeps every row it has read and makes room for 128 rows of values at each
/// exec; the registry's statements never step back, and that room was one of
/// the largest costs of a read of one row (twice as large on Qt 6, whose
/// values are bigger).
inline QSqlQuery query(const QSqlDatabase& db)
{
    QSqlQuery query(db);
    query.setForwardOnly(true);
    return query;
}

/// Every uuid of `table` in its order; on failure the warning
/// "[<className>]: failed to execute select query:" and an empty list.
inline QList<VRNObject::UUID> uuids(const QSqlDatabase& db, const QString& table, const char* className)
{
    QList<VRNObject::UUID> result;
    QSqlQuery query = RegistrySql::query(db);
    if (!query.exec(QStringLiteral("SELECT uuid FROM ") + table)) {
        const QByteArray prefix = QByteArray("[") + className + "]:";
        qWarning() << prefix.constData() << "failed to execute select query:" << query.lastError().text();
        return result;
    }
    while (query.next())
        result.append(query.value(0).toUInt());
    return result;
}

} // namespace RegistrySql

#endif // REGISTRYSQL_P_H
