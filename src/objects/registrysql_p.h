// Not part of the library's API: SQL helpers shared by the registry's list models.
#ifndef REGISTRYSQL_P_H
#define REGISTRYSQL_P_H

#include "vrnobject.h"

#include <QDebug>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>

namespace RegistrySql {

/// Every uuid of `table` in its order; on failure the warning
/// "[<className>]: failed to execute select query:" and an empty list.
inline QList<VRNObject::UUID> uuids(const QSqlDatabase& db, const QString& table, const char* className)
{
    QList<VRNObject::UUID> result;
    QSqlQuery query(db);
    query.setForwardOnly(true);
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
