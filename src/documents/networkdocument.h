#ifndef NETWORKDOCUMENT_H
#define NETWORKDOCUMENT_H

#include <QByteArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QList>
#include <QString>
#include <QStringList>

class VRNObject;

/// One network's configuration as a JSON document: the bus, the time, the
/// tool's version, and one entry per device with its identity (uuid, node
/// number, node type, kind, serial number), everything its kind lets a user
/// set (label, the 16 group slots, direction, end limits, the 16
/// intermediate positions, speeds, ramps) and its firmware version.
///
/// The format is written down in network-document.schema.json beside this
/// file (in the library's resources as ":/documents/network-document.schema.json");
/// `formatVersion` counts its changes. A field that could not be read is left
/// out of its entry and named in the entry's "unread" list: never a zero in
/// its place. An end limit or an intermediate position that is not set on
/// the device is null.
///
///     NetworkDocument doc;
///     QString error;
///     if (!NetworkDocument::fromJson(bytes, doc, error)) // "/devices/2/label: the text is 40 bytes..."
///         return fail(error);
class NetworkDocument
{
public:
    static constexpr int FormatVersion = 1;
    /// The value of the "format" member: what kind of document this is.
    static const char* formatName();

    QString bus;
    /// When the document was taken, ISO 8601 in UTC.
    QString time;
    QString toolVersion;
    /// One object per device, in the order of the document.
    QList<QJsonObject> devices;

    /// Parses and checks `bytes` against the schema and the format version;
    /// false with the place (a JSON pointer) and the reason in `error`.
    static bool fromJson(const QByteArray& bytes, NetworkDocument& document, QString& error);
    /// As `fromJson`, for a file.
    static bool load(const QString& fileName, NetworkDocument& document, QString& error);
    QByteArray toJson() const;
    /// Writes `toJson()` to `fileName` whole or not at all.
    bool save(const QString& fileName, QString& error) const;

    /// The schema as written in the resources.
    static QJsonObject schema();

    /// Index of the entry of node number `node` (or, when `serial` is not
    /// empty, of that serial number); -1 when there is none.
    int indexOfNode(quint32 node) const;
    int indexOfSerial(const QByteArray& serial) const;
    int indexOfUuid(quint32 uuid) const;

    // --- entries ---------------------------------------------------------

    /// The sections a device kind has, in the order they are read and
    /// written: "serialNumber", "label", "groups", "direction", "limits",
    /// "ips", "speed", "ramp", "firmwareVersion".
    static QStringList sectionsOf(int type);
    /// The sections a user sets (not serial number and firmware version).
    static bool isSetting(const QString& section);
    /// The kind's key in a document ("DtsMotor"); its number from the key, -1 when unknown.
    static QString kindKey(int type);
    static int kindOf(const QString& key);

    /// The entry of `object` from what its proxy records hold: the
    /// sections of `read` are filled in, every other section of its kind is
    /// listed as unread.
    static QJsonObject entryOf(VRNObject& object, const QStringList& read);
    /// The settings of `entry` as single fields, named by JSON pointers into
    /// the entry: "/label", "/groups/3", "/direction", "/limits/up",
    /// "/ips/4", "/speed", "/ramp". Unread sections give none.
    static QList<QPair<QString, QJsonValue>> settings(const QJsonObject& entry);
};

#endif // NETWORKDOCUMENT_H
