#ifndef FIRMWAREINFO_H
#define FIRMWAREINFO_H

#include <QList>
#include <QMetaType>
#include <QString>
#include <QStringList>

/// One firmware package as the catalogue lists it: where it is, what it
/// says of itself, and whether its signature verifies with the configured
/// key. A package that cannot be read is listed too (`readable` false, the
/// reason in `error`), so the user sees it and why it is not offered.
///
/// Versions compare as numbers, major first: 2.10.0 is newer than 2.9.3.
class FirmwareInfo
{
    Q_GADGET
    Q_PROPERTY(QString path READ path CONSTANT)
    Q_PROPERTY(QString fileName READ fileName CONSTANT)
    Q_PROPERTY(QString version READ version CONSTANT)
    Q_PROPERTY(QStringList kinds READ kinds CONSTANT)
    Q_PROPERTY(int size READ size CONSTANT)
    Q_PROPERTY(bool readable READ isReadable CONSTANT)
    Q_PROPERTY(bool verified READ isVerified CONSTANT)
    Q_PROPERTY(QString error READ error CONSTANT)

public:
    FirmwareInfo() = default;

    QString path() const { return m_path; }
    QString fileName() const;
    /// "2.1.0" or "2.1.0.17"; empty when unreadable.
    QString version() const;
    /// Names of the node types the image runs on ("motor", "dcmotor", ...).
    QStringList kinds() const;
    QList<int> nodeTypes() const { return m_nodeTypes; }
    /// Bytes of the plain image.
    int size() const { return m_size; }
    bool isReadable() const { return m_readable; }
    /// The signature verifies with the configured key.
    bool isVerified() const { return m_verified; }
    QString error() const { return m_error; }
    /// The package is readable, verified and made for `nodeType`.
    bool fits(int nodeType) const;
    /// Negative, zero or positive as this version is older, equal or newer
    /// than the given one.
    int compareVersion(quint8 major, quint8 minor, quint8 patch, quint16 build) const;
    /// Version as one number, for sorting: major, minor, patch, build.
    quint64 versionKey() const { return m_versionKey; }

    bool operator==(const FirmwareInfo& other) const;
    bool operator!=(const FirmwareInfo& other) const { return !(*this == other); }

    /// Reads the package at `path` and checks its signature with `verifyKey`.
    static FirmwareInfo fromFile(const QString& path, const QByteArray& verifyKey);

private:
    QString m_path;
    QList<int> m_nodeTypes;
    quint64 m_versionKey = 0;
    int m_size = 0;
    bool m_readable = false;
    bool m_verified = false;
    QString m_error;
};

Q_DECLARE_METATYPE(FirmwareInfo)

#endif // FIRMWAREINFO_H
