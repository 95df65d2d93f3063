#include "networkdocument.h"

#include "jsonschemavalidator.h"
#include "dts.h"
#include "vrndcmotorobject.h"

#include <QCoreApplication>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSaveFile>

namespace {

QString tr(const char* text)
{
    return QCoreApplication::translate("NetworkDocument", text);
}

const QString Unread = QStringLiteral("unread");

QJsonValue pulsesJson(quint16 pulses)
{
    return pulses == 0xFFFF ? QJsonValue() : QJsonValue(int(pulses));
}

QJsonObject rampJson(bool on, quint8 value)
{
    return {{QStringLiteral("on"), on}, {QStringLiteral("value"), int(value)}};
}

// Fills `section` of `entry` from the object's proxy records, which a read
// that ended well has just set; false when they hold no value all the same
// (a not-known value), so that nothing unread is written out.
bool fill(const QString& section, VRNObject& object, QJsonObject& entry)
{
    auto node = qobject_cast<VRNStdObject*>(&object);
    auto motor = qobject_cast<VRNMotorObject*>(&object);
    auto dc = qobject_cast<VRNDCMotorObject*>(&object);
    if (!node)
        return false;
    const StdConfigDataData& s = node->proxyStdConfig().getConstData();
    // A text read is known even when empty (a label cleared by factory
    // values): the caller names only sections whose read ended well.
    if (section == QLatin1String("serialNumber")) {
        entry.insert(section, QString::fromUtf8(s.serialNumber));
    } else if (section == QLatin1String("label")) {
        entry.insert(section, QString::fromUtf8(s.label));
    } else if (section == QLatin1String("groups")) {
        if (s.groups.size() != 16)
            return false;
        QJsonArray groups;
        for (VRN::Addr g : s.groups)
            groups.append(qint64(g));
        entry.insert(section, groups);
    } else if (section == QLatin1String("firmwareVersion")) {
        if (!s.appVersion.isValid())
            return false;
        entry.insert(section, s.appVersion.toString());
    } else if (motor && section == QLatin1String("direction")) {
        const qint32 d = motor->proxyMotorConfig().getConstData().rotDirection;
        if (d != DTSMotor::DirectionStandard && d != DTSMotor::DirectionReversed)
            return false;
        entry.insert(section, d == DTSMotor::DirectionReversed ? QStringLiteral("reversed") : QStringLiteral("standard"));
    } else if (motor && section == QLatin1String("limits")) {
        // 0xFFFF is both "not known" and "not set on the device": the section
        // counts as read because its job ended well (see the caller).
        const MotorConfigDataData& m = motor->proxyMotorConfig().getConstData();
        entry.insert(section, QJsonObject{{QStringLiteral("up"), pulsesJson(m.upEndLimit)},
                                          {QStringLiteral("down"), pulsesJson(m.downEndLimit)}});
    } else if (motor && section == QLatin1String("ips")) {
        const auto& ips = motor->proxyMotorConfig().getConstData().ips;
        if (ips.size() != 16)
            return false;
        QJsonArray array;
        for (const auto& ip : ips)
            array.append(pulsesJson(ip.pulse));
        entry.insert(section, array);
    } else if (dc && section == QLatin1String("speed")) {
        const DCMotorConfigDataData& d = dc->proxyDCMotorConfig().getConstData();
        if (!dc->proxyDCMotorConfig().isSpeedValid())
            return false;
        entry.insert(section, QJsonObject{{QStringLiteral("up"), int(d.upRollingSpeed)},
                                          {QStringLiteral("down"), int(d.downRollingSpeed)},
                                          {QStringLiteral("slow"), int(d.slowRollingSpeed)}});
    } else if (dc && section == QLatin1String("ramp")) {
        const DCMotorConfigDataData& d = dc->proxyDCMotorConfig().getConstData();
        if (!dc->proxyDCMotorConfig().isRampValid())
            return false;
        entry.insert(section, QJsonObject{{QStringLiteral("start"), rampJson(d.softStartStatus, d.softStartValue)},
                                          {QStringLiteral("stop"), rampJson(d.softStopStatus, d.softStopValue)}});
    } else {
        return false;
    }
    return true;
}

} // namespace

const char* NetworkDocument::formatName()
{
    return "vrn-network-configuration";
}

QJsonObject NetworkDocument::schema()
{
    QFile file(QStringLiteral(":/documents/network-document.schema.json"));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QJsonDocument::fromJson(file.readAll()).object();
}

bool NetworkDocument::fromJson(const QByteArray& bytes, NetworkDocument& document, QString& error)
{
    QJsonParseError parseError;
    const QJsonDocument json = QJsonDocument::fromJson(bytes, &parseError);
    if (parseError.error != QJsonParseError::NoError) {
        error = tr("/: not JSON (%1 at byte %2)").arg(parseError.errorString()).arg(parseError.offset);
        return false;
    }
    if (!json.isObject()) {
        error = tr("/: not a network configuration (a JSON object is expected)");
        return false;
    }
    const QJsonObject root = json.object();
    // The version first: a document of another format fails here, in words
    // that say so, rather than on whichever field changed.
    const QJsonValue version = root.value(QStringLiteral("formatVersion"));
    if (root.value(QStringLiteral("format")).toString() == QLatin1String(formatName()) && version.isDouble()
        && version.toDouble() != FormatVersion) {
        error = tr("/formatVersion: format version %1; this tool reads version %2")
                    .arg(version.toDouble()).arg(FormatVersion);
        return false;
    }
    JsonSchemaValidator validator(schema());
    if (!validator.validate(root)) {
        error = validator.message();
        return false;
    }
    NetworkDocument result;
    result.bus = root.value(QStringLiteral("bus")).toString();
    result.time = root.value(QStringLiteral("time")).toString();
    result.toolVersion = root.value(QStringLiteral("toolVersion")).toString();
    const QJsonArray devices = root.value(QStringLiteral("devices")).toArray();
    QHash<qint64, int> nodes;
    for (int i = 0; i < devices.size(); ++i) {
        const QJsonObject entry = devices.at(i).toObject();
        const QString at = QStringLiteral("/devices/%1").arg(i);
        const int type = kindOf(entry.value(QStringLiteral("kind")).toString());
        const QStringList sections = sectionsOf(type);
        for (auto it = entry.begin(); it != entry.end(); ++it) {
            if (sectionsOf(VRNObject::TX30).contains(it.key()) && !sections.contains(it.key())) {
                error = tr("%1/%2: a device of the kind %3 has no %2").arg(at, it.key(), kindKey(type));
                return false;
            }
        }
        // Two devices may share a node number (a fault the registry keeps
        // apart by kind); the same kind twice on one number is one device twice.
        const qint64 node = entry.value(QStringLiteral("node")).toVariant().toLongLong();
        const qint64 key = node | (qint64(type) << 32);
        if (nodes.contains(key)) {
            error = tr("%1/node: node %2 of this kind is already described by /devices/%3").arg(at).arg(node).arg(nodes.value(key));
            return false;
        }
        nodes.insert(key, i);
        result.devices.append(entry);
    }
    document = result;
    return true;
}

bool NetworkDocument::load(const QString& fileName, NetworkDocument& document, QString& error)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        error = tr("cannot read %1: %2").arg(fileName, file.errorString());
        return false;
    }
    if (!fromJson(file.readAll(), document, error)) {
        error = QStringLiteral("%1: %2").arg(fileName, error);
        return false;
    }
    return true;
}

QByteArray NetworkDocument::toJson() const
{
    QJsonArray array;
    for (const QJsonObject& d : devices)
        array.append(d);
    const QJsonObject root{{QStringLiteral("format"), QLatin1String(formatName())},
                           {QStringLiteral("formatVersion"), FormatVersion},
                           {QStringLiteral("bus"), bus},
                           {QStringLiteral("time"), time},
                           {QStringLiteral("toolVersion"), toolVersion},
                           {QStringLiteral("devices"), array}};
    return QJsonDocument(root).toJson(QJsonDocument::Indented);
}

bool NetworkDocument::save(const QString& fileName, QString& error) const
{
    QSaveFile file(fileName);
    if (!file.open(QIODevice::WriteOnly) || file.write(toJson()) < 0 || !file.commit()) {
        error = tr("cannot write %1: %2").arg(fileName, file.errorString());
        return false;
    }
    return true;
}

int NetworkDocument::indexOfNode(quint32 node) const
{
    for (int i = 0; i < devices.size(); ++i) {
        if (devices.at(i).value(QStringLiteral("node")).toVariant().toUInt() == node)
            return i;
    }
    return -1;
}

int NetworkDocument::indexOfSerial(const QByteArray& serial) const
{
    for (int i = 0; !serial.isEmpty() && i < devices.size(); ++i) {
        if (devices.at(i).value(QStringLiteral("serialNumber")).toString().toUtf8() == serial)
            return i;
    }
    return -1;
}

int NetworkDocument::indexOfUuid(quint32 uuid) const
{
    for (int i = 0; i < devices.size(); ++i) {
        if (devices.at(i).value(QStringLiteral("uuid")).toVariant().toUInt() == uuid)
            return i;
    }
    return -1;
}

QStringList NetworkDocument::sectionsOf(int type)
{
    switch (type) {
    case VRNObject::DtsStd:
        return {QStringLiteral("serialNumber"), QStringLiteral("label"), QStringLiteral("groups"),
                QStringLiteral("firmwareVersion")};
    case VRNObject::DtsMotor:
    case VRNObject::LRU50:
        return {QStringLiteral("serialNumber"), QStringLiteral("label"), QStringLiteral("groups"),
                QStringLiteral("direction"), QStringLiteral("limits"), QStringLiteral("ips"),
                QStringLiteral("firmwareVersion")};
    case VRNObject::DtsDcMotor:
    case VRNObject::TX50DC:
    case VRNObject::TX30:
        return {QStringLiteral("serialNumber"), QStringLiteral("label"), QStringLiteral("groups"),
                QStringLiteral("direction"), QStringLiteral("limits"), QStringLiteral("ips"),
                QStringLiteral("speed"), QStringLiteral("ramp"), QStringLiteral("firmwareVersion")};
    default:
        return {};
    }
}

bool NetworkDocument::isSetting(const QString& section)
{
    return section != QLatin1String("serialNumber") && section != QLatin1String("firmwareVersion");
}

QString NetworkDocument::kindKey(int type)
{
    return VRNObject::typeToString(VRNObject::Type(type));
}

int NetworkDocument::kindOf(const QString& key)
{
    for (int t = VRNObject::DtsStd; t <= VRNObject::TypeMax; ++t) {
        if (kindKey(t) == key)
            return t;
    }
    return -1;
}

QJsonObject NetworkDocument::entryOf(VRNObject& object, const QStringList& read)
{
    const VRN::Addr address = object.address();
    QJsonObject entry{{QStringLiteral("uuid"), qint64(object.uuid())},
                      {QStringLiteral("node"), qint64(address & 0xFFFFFF)},
                      {QStringLiteral("nodeType"), int(VRN::getType(address))},
                      {QStringLiteral("kind"), kindKey(object.type())}};
    QJsonArray unread;
    for (const QString& section : sectionsOf(object.type())) {
        if (!read.contains(section) || !fill(section, object, entry))
            unread.append(section);
    }
    entry.insert(Unread, unread);
    return entry;
}

QList<QPair<QString, QJsonValue>> NetworkDocument::settings(const QJsonObject& entry)
{
    QList<QPair<QString, QJsonValue>> result;
    const QStringList sections = sectionsOf(kindOf(entry.value(QStringLiteral("kind")).toString()));
    for (const QString& section : sections) {
        if (!isSetting(section) || !entry.contains(section))
            continue;
        const QJsonValue value = entry.value(section);
        const QString at = QLatin1Char('/') + section;
        if (section == QLatin1String("groups") || section == QLatin1String("ips")) {
            const QJsonArray array = value.toArray();
            for (int i = 0; i < array.size(); ++i)
                result.append({at + QLatin1Char('/') + QString::number(i), array.at(i)});
        } else if (section == QLatin1String("limits")) {
            result.append({at + QStringLiteral("/up"), value.toObject().value(QStringLiteral("up"))});
            result.append({at + QStringLiteral("/down"), value.toObject().value(QStringLiteral("down"))});
        } else {
            result.append({at, value});
        }
    }
    return result;
}
