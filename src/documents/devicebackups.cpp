#include "devicebackups.h"

#include "objectfactory.h"

#include "networkdocument.h"
#include "registrysql_p.h"

#include <QDebug>
#include <QJsonDocument>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>

namespace {

bool ensureTable(QSqlDatabase& db)
{
    QSqlQuery query = RegistrySql::query(db);
    if (query.exec(QStringLiteral("CREATE TABLE IF NOT EXISTS DeviceBackups(deviceUUID INTEGER PRIMARY KEY, "
                                  "time TEXT, entry TEXT)")))
        return true;
    qWarning() << "[DeviceBackups]: failed to create the backup table:" << query.lastError().text();
    return false;
}

} // namespace

bool DeviceBackups::store(const NetworkDocument& document)
{
    QSqlDatabase db = ObjectFactory::instance()->database();
    if (!db.isOpen() || !ensureTable(db))
        return false;
    db.transaction();
    QSqlQuery query = RegistrySql::query(db);
    query.prepare(QStringLiteral("INSERT OR REPLACE INTO DeviceBackups(deviceUUID, time, entry) VALUES (?, ?, ?)"));
    for (const QJsonObject& entry : document.devices) {
        query.addBindValue(entry.value(QStringLiteral("uuid")).toVariant().toLongLong());
        query.addBindValue(document.time);
        query.addBindValue(QString::fromUtf8(QJsonDocument(entry).toJson(QJsonDocument::Compact)));
        if (!query.exec()) {
            qWarning() << "[DeviceBackups]: failed to store a backup:" << query.lastError().text();
            db.rollback();
            return false;
        }
    }
    return db.commit();
}

QJsonObject DeviceBackups::last(quint32 uuid)
{
    QSqlDatabase db = ObjectFactory::instance()->database();
    if (!db.isOpen() || !ensureTable(db))
        return {};
    QSqlQuery query = RegistrySql::query(db);
    query.prepare(QStringLiteral("SELECT entry FROM DeviceBackups WHERE deviceUUID = ?"));
    query.addBindValue(qint64(uuid));
    if (!query.exec() || !query.next())
        return {};
    return QJsonDocument::fromJson(query.value(0).toString().toUtf8()).object();
}

quint32 DeviceBackups::findSerial(const QString& serial)
{
    QSqlDatabase db = ObjectFactory::instance()->database();
    if (serial.isEmpty() || !db.isOpen() || !ensureTable(db))
        return 0;
    QSqlQuery query = RegistrySql::query(db);
    if (!query.exec(QStringLiteral("SELECT b.deviceUUID, b.entry FROM DeviceBackups b JOIN Devices d ON d.uuid = b.deviceUUID")))
        return 0;
    while (query.next()) {
        const QJsonObject entry = QJsonDocument::fromJson(query.value(1).toString().toUtf8()).object();
        if (entry.value(QStringLiteral("serialNumber")).toString() == serial)
            return query.value(0).toUInt();
    }
    return 0;
}
