#ifndef CHANGELOG_H
#define CHANGELOG_H

#include <QDateTime>
#include <QJsonObject>
#include <QJsonValue>
#include <QList>
#include <QString>

/// The registry's record of every write made to a device: when, by which
/// tool, on which device, which field, the value before and after, and how
/// it ended. Kept in the table `ChangeLog` of the registry's database (the
/// default SQL connection), made on first use; the registry's own tables are
/// not touched. Values are stored as JSON text; untrusted text only ever
/// reaches SQLite as a bound value.
///
///     ChangeLog::append({QDateTime::currentDateTimeUtc(), tool, uuid, node, "/label", "\"Old\"", "\"New\"", "ok"});
///     for (const ChangeLog::Entry& e : ChangeLog::entries({uuid}, since)) ...
class ChangeLog
{
public:
    struct Entry
    {
        QDateTime time;
        QString tool;
        quint32 uuid = 0;
        quint32 node = 0;
        /// The field written, a JSON pointer into the device's document entry.
        QString field;
        /// The values before and after, as JSON text ("" when not known).
        QString oldValue;
        QString newValue;
        /// "ok", or why the write failed.
        QString outcome;

        QJsonObject toJson() const;
    };

    /// Appends `entry`; false (with a warning) when the registry refused it.
    static bool append(const Entry& entry);
    /// The entries of `uuids` (every device when empty) at or after `since`
    /// (everything when invalid), oldest first.
    static QList<Entry> entries(const QList<quint32>& uuids = {}, const QDateTime& since = QDateTime());
    /// The name this process writes as its tool: the application's name.
    static QString toolName();
    /// A value as the log keeps it: compact JSON, "" for undefined.
    static QString text(const QJsonValue& value);
};

#endif // CHANGELOG_H
