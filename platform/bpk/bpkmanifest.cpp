#include "bpkmanifest.h"

#include "cryptography.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

const char* const TypeNames[] = {"tool", "motor", "tx30", "keypad", "sensor", "interface",
                                 "motorio", "lru50", "tx50dc", "dcmotor", "settingtool"};
const int TypeCount = int(sizeof(TypeNames) / sizeof(TypeNames[0]));

bool intIn(const QJsonValue& v, int lo, int hi, int* out)
{
    if (!v.isDouble())
        return false;
    const double d = v.toDouble();
    if (d != double(qint64(d)) || d < lo || d > hi)
        return false;
    *out = int(d);
    return true;
}

bool hexOf(const QJsonValue& v, int size, QByteArray* out)
{
    const QString text = v.toString();
    if (!v.isString() || text.size() != size * 2)
        return false;
    for (QChar c : text) {
        if (!c.isDigit() && !(c >= QLatin1Char('a') && c <= QLatin1Char('f')))
            return false;
    }
    *out = QByteArray::fromHex(text.toLatin1());
    return out->size() == size;
}

} // namespace

int BpkManifest::blockCount() const
{
    return blockSize > 0 ? (size + blockSize - 1) / blockSize : 0;
}

QString BpkManifest::versionString() const
{
    QString text = QStringLiteral("%1.%2.%3").arg(major).arg(minor).arg(patch);
    if (build != 0)
        text += QLatin1Char('.') + QString::number(build);
    return text;
}

int BpkManifest::compareVersion(quint8 otherMajor, quint8 otherMinor, quint8 otherPatch, quint16 otherBuild) const
{
    const quint64 mine = quint64(major) << 32 | quint64(minor) << 24 | quint64(patch) << 16 | build;
    const quint64 other = quint64(otherMajor) << 32 | quint64(otherMinor) << 24 | quint64(otherPatch) << 16 | otherBuild;
    return mine < other ? -1 : (mine > other ? 1 : 0);
}

QByteArray BpkManifest::toJson() const
{
    QJsonArray types;
    for (int t : nodeTypes)
        types.append(t);
    QJsonObject o;
    o.insert(QStringLiteral("format"), int(Format));
    o.insert(QStringLiteral("nodeTypes"), types);
    o.insert(QStringLiteral("version"), QJsonArray{major, minor, patch, build});
    o.insert(QStringLiteral("size"), size);
    o.insert(QStringLiteral("blockSize"), blockSize);
    o.insert(QStringLiteral("digest"), QString::fromLatin1(digest.toHex()));
    o.insert(QStringLiteral("chunkSize"), chunkSize);
    o.insert(QStringLiteral("nonce"), QString::fromLatin1(nonce.toHex()));
    return QJsonDocument(o).toJson(QJsonDocument::Compact);
}

bool BpkManifest::fromJson(const QByteArray& json, BpkManifest* out, QString* error)
{
    auto refuse = [error](const char* why) {
        if (error)
            *error = QString::fromLatin1(why);
        return false;
    };
    QJsonParseError parseError;
    const QJsonDocument doc = QJsonDocument::fromJson(json, &parseError);
    if (parseError.error != QJsonParseError::NoError || !doc.isObject())
        return refuse("manifest is not a JSON object");
    const QJsonObject o = doc.object();
    int format = 0;
    if (!intIn(o.value(QStringLiteral("format")), Format, Format, &format))
        return refuse("manifest format unknown");
    BpkManifest m;
    const QJsonValue types = o.value(QStringLiteral("nodeTypes"));
    if (!types.isArray() || types.toArray().isEmpty() || types.toArray().size() > TypeCount)
        return refuse("manifest names no node type");
    for (const QJsonValue& t : types.toArray()) {
        int type = 0;
        if (!intIn(t, 1, TypeCount - 1, &type))
            return refuse("manifest node type out of range");
        m.nodeTypes.append(type);
    }
    const QJsonArray version = o.value(QStringLiteral("version")).toArray();
    int parts[4] = {0, 0, 0, 0};
    if (version.size() != 4 || !intIn(version[0], 0, 254, &parts[0]) || !intIn(version[1], 0, 255, &parts[1])
        || !intIn(version[2], 0, 255, &parts[2]) || !intIn(version[3], 0, 65535, &parts[3]))
        return refuse("manifest version out of range");
    m.major = quint8(parts[0]);
    m.minor = quint8(parts[1]);
    m.patch = quint8(parts[2]);
    m.build = quint16(parts[3]);
    if (!intIn(o.value(QStringLiteral("size")), 1, MaxImageSize, &m.size))
        return refuse("manifest image size out of range");
    if (!intIn(o.value(QStringLiteral("blockSize")), 1, MaxBlockSize, &m.blockSize))
        return refuse("manifest block size out of range");
    if (!intIn(o.value(QStringLiteral("chunkSize")), 1, MaxChunkSize, &m.chunkSize))
        return refuse("manifest chunk size out of range");
    if (!hexOf(o.value(QStringLiteral("digest")), Cryptography::DigestSize, &m.digest))
        return refuse("manifest digest malformed");
    if (!hexOf(o.value(QStringLiteral("nonce")), Cryptography::NonceSize, &m.nonce))
        return refuse("manifest nonce malformed");
    if (out)
        *out = m;
    return true;
}

int BpkManifest::nodeTypeFromName(const QString& name)
{
    for (int i = 1; i < TypeCount; ++i) {
        if (name.compare(QLatin1String(TypeNames[i]), Qt::CaseInsensitive) == 0)
            return i;
    }
    bool ok = false;
    const int n = name.toInt(&ok);
    return ok && n > 0 && n < TypeCount ? n : -1;
}

QString BpkManifest::nodeTypeName(int type)
{
    return type >= 0 && type < TypeCount ? QString::fromLatin1(TypeNames[type]) : QString::number(type);
}

bool BpkManifest::parseVersion(const QString& text, BpkManifest* out)
{
    const QStringList parts = text.split(QLatin1Char('.'));
    if (parts.size() < 3 || parts.size() > 4)
        return false;
    const int limits[4] = {254, 255, 255, 65535};
    int values[4] = {0, 0, 0, 0};
    for (int i = 0; i < parts.size(); ++i) {
        bool ok = false;
        values[i] = parts[i].toInt(&ok);
        if (!ok || values[i] < 0 || values[i] > limits[i])
            return false;
    }
    out->major = quint8(values[0]);
    out->minor = quint8(values[1]);
    out->patch = quint8(values[2]);
    out->build = quint16(values[3]);
    return true;
}
