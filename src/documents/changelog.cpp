#include "changelog.h"

#include "objectfactory.h"
#include "registrysql_p.h"

#include <QCoreApplication>
#include <QDebug>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>

namespace {

bool ensureTable(QSqlDatabase& db)
{
    QSqlQuery query = RegistrySql::query(db);
    if (query.exec(QStringLiteral("CREATE TABLE IF NOT EXISTS ChangeLog(id INTEGER PRIMARY KEY, time TEXT NOT NULL, "
                                  "tool TEXT, deviceUUID INTEGER, nodeID INTEGER, field TEXT, oldValue TEXT, "
                                  "newValue TEXT, outcome TEXT)"))
        && query.exec(QStringLiteral("CREATE INDEX IF NOT EXISTS changeLogDevice ON ChangeLog(deviceUUID, time)")))
        return true;
    qWarning() << "[ChangeLog]: failed to create the change log:" << query.lastError().text();
    return false;
}

} // namespace

QJsonObject ChangeLog::Entry::toJson() const
{
    auto value = [](const QString& text) {
        return text.isEmpty() ? QJsonValue() : QJsonDocument::fromJson("[" + text.toUtf8() + "]").array().at(0);
    };
    return {{QStringLiteral("time"), time.toString(Qt::ISODateWithMs)},
            {QStringLiteral("tool"), tool},
            {QStringLiteral("uuid"), qint64(uuid)},
            {QStringLiteral("node"), qint64(node)},
            {QStringLiteral("field"), field},
            {QStringLiteral("old"), value(oldValue)},
            {QStringLiteral("new"), value(newValue)},
            {QStringLiteral("outcome"), outcome}};
}

bool ChangeLog::append(const Entry& entry)
{
    QSqlDatabase db = ObjectFactory::instance()->database();
    if (!db.isOpen() || !ensureTable(db))
        return false;
    QSqlQuery query = RegistrySql::query(db);
    query.prepare(QStringLiteral("INSERT INTO ChangeLog(time, tool, deviceUUID, nodeID, field, oldValue, newValue, outcome) "
                                 "VALUES (?, ?, ?, ?, ?, ?, ?, ?)"));
    query.addBindValue(entry.time.toUTC().toString(Qt::ISODateWithMs));
    query.addBindValue(entry.tool);
    query.addBindValue(qint64(entry.uuid));
    query.addBindValue(qint64(entry.node));
    query.addBindValue(entry.field);
    query.addBindValue(entry.oldValue);
    query.addBindValue(entry.newValue);
    query.addBindValue(entry.outcome);
    if (query.exec())
        return true;
    qWarning() << "[ChangeLog]: failed to append:" << query.lastError().text();
    return false;
}

QList<ChangeLog::Entry> ChangeLog::entries(const QList<quint32>& uuids, const QDateTime& since)
{
    QList<Entry> result;
    QSqlDatabase db = ObjectFactory::instance()->database();
    if (!db.isOpen() || !ensureTable(db))
        return result;
    QSqlQuery query = RegistrySql::query(db);
    // Times are stored as ISO text in UTC with milliseconds: text order is time order.
    query.prepare(QStringLiteral("SELECT time, tool, deviceUUID, nodeID, field, oldValue, newValue, outcome FROM ChangeLog "
                                 "WHERE time >= ? ORDER BY time, id"));
    query.addBindValue(since.isValid() ? since.toUTC().toString(Qt::ISODateWithMs) : QStringLiteral(""));
    if (!query.exec()) {
        qWarning() << "[ChangeLog]: failed to read:" << query.lastError().text();
        return result;
    }
    while (query.next()) {
        Entry e;
        e.time = QDateTime::fromString(query.value(0).toString(), Qt::ISODateWithMs);
        e.tool = query.value(1).toString();
        e.uuid = query.value(2).toUInt();
        e.node = query.value(3).toUInt();
        e.field = query.value(4).toString();
        e.oldValue = query.value(5).toString();
        e.newValue = query.value(6).toString();
        e.outcome = query.value(7).toString();
        if (uuids.isEmpty() || uuids.contains(e.uuid))
            result.append(e);
    }
    return result;
}

QString ChangeLog::toolName()
{
    return QCoreApplication::applicationName();
}

QString ChangeLog::text(const QJsonValue& value)
{
    if (value.isUndefined())
        return QString();
    const QByteArray array = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
    return QString::fromUtf8(array.mid(1, array.size() - 2));
}
