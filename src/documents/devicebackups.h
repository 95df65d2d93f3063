#ifndef DEVICEBACKUPS_H
#define DEVICEBACKUPS_H

#include <QJsonObject>

class NetworkDocument;

/// The registry's memory of each device's last backup: its document entry,
/// kept in the table `DeviceBackups` of the registry's database (the default
/// SQL connection) beside the registry's own tables, so that a broken
/// device's settings can be given to its replacement without the file.
class DeviceBackups
{
public:
    /// Keeps every entry of `document` as its device's last backup.
    static bool store(const NetworkDocument& document);
    /// The last backup of device `uuid`; empty when there is none.
    static QJsonObject last(quint32 uuid);
    /// The registry's device whose last backup read the serial number `serial`; 0 for none.
    static quint32 findSerial(const QString& serial);
};

#endif // DEVICEBACKUPS_H
