#include "firmwareinfo.h"

#include "bpkpackage.h"

#include <QFileInfo>

namespace {

quint64 keyOf(quint8 major, quint8 minor, quint8 patch, quint16 build)
{
    return quint64(major) << 32 | quint64(minor) << 24 | quint64(patch) << 16 | build;
}

} // namespace

QString FirmwareInfo::fileName() const
{
    return QFileInfo(m_path).fileName();
}

QString FirmwareInfo::version() const
{
    if (!m_readable)
        return QString();
    BpkManifest m;
    m.major = quint8(m_versionKey >> 32);
    m.minor = quint8(m_versionKey >> 24);
    m.patch = quint8(m_versionKey >> 16);
    m.build = quint16(m_versionKey);
    return m.versionString();
}

QStringList FirmwareInfo::kinds() const
{
    QStringList names;
    for (int t : m_nodeTypes)
        names.append(BpkManifest::nodeTypeName(t));
    return names;
}

bool FirmwareInfo::fits(int nodeType) const
{
    return m_readable && m_verified && m_nodeTypes.contains(nodeType);
}

int FirmwareInfo::compareVersion(quint8 major, quint8 minor, quint8 patch, quint16 build) const
{
    const quint64 other = keyOf(major, minor, patch, build);
    return m_versionKey < other ? -1 : (m_versionKey > other ? 1 : 0);
}

bool FirmwareInfo::operator==(const FirmwareInfo& o) const
{
    return m_path == o.m_path && m_nodeTypes == o.m_nodeTypes && m_versionKey == o.m_versionKey
        && m_size == o.m_size && m_readable == o.m_readable && m_verified == o.m_verified && m_error == o.m_error;
}

FirmwareInfo FirmwareInfo::fromFile(const QString& path, const QByteArray& verifyKey)
{
    FirmwareInfo info;
    info.m_path = path;
    const BpkPackage pkg = BpkPackage::load(path);
    info.m_readable = pkg.isReadable();
    if (!info.m_readable) {
        info.m_error = pkg.errorString();
        return info;
    }
    const BpkManifest& m = pkg.manifest();
    info.m_nodeTypes = m.nodeTypes;
    info.m_versionKey = keyOf(m.major, m.minor, m.patch, m.build);
    info.m_size = m.size;
    info.m_verified = pkg.verifySignature(verifyKey);
    if (!info.m_verified)
        info.m_error = QStringLiteral("package signature does not verify");
    return info;
}
