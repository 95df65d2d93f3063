#ifndef BPKMANIFEST_H
#define BPKMANIFEST_H

#include <QByteArray>
#include <QList>
#include <QString>

/// What a firmware package says of itself: the node types it fits, its
/// version, the size of the plain image, the block size it is sent in, the
/// image digest, and how the image is encrypted (chunk size and nonce).
///
/// Stored as "manifest.json" in the package:
///
///     {"format":1,"nodeTypes":[1,6],"version":[2,1,0,17],"size":32768,
///      "blockSize":16,"digest":"<32 hex digits>","chunkSize":4096,
///      "nonce":"<32 hex digits>"}
///
/// `fromJson()` accepts only a manifest whose every field is present, of its
/// type and in range; anything else is refused with a reason.
struct BpkManifest
{
    enum : int {
        Format = 1,
        MaxImageSize = 1 << 20,   ///< 1 MiB: block numbers stay below 65536
        MaxBlockSize = 16,        ///< what one frame carries
        DefaultChunkSize = 4096,
        MaxChunkSize = 1 << 16
    };

    QList<int> nodeTypes;     ///< `VRN::NodeType` values the image runs on
    quint8 major = 0;
    quint8 minor = 0;
    quint8 patch = 0;
    quint16 build = 0;
    int size = 0;             ///< bytes of the plain image
    int blockSize = MaxBlockSize;
    QByteArray digest;        ///< 16 bytes (`Cryptography::digest` of the plain image)
    int chunkSize = DefaultChunkSize;
    QByteArray nonce;         ///< 16 bytes

    /// Number of blocks the image is sent in.
    int blockCount() const;
    /// "major.minor.patch", with ".build" when build is not 0.
    QString versionString() const;
    /// Negative, zero or positive as this version is older, equal or newer.
    int compareVersion(quint8 major, quint8 minor, quint8 patch, quint16 build) const;
    bool fits(int nodeType) const { return nodeTypes.contains(nodeType); }

    QByteArray toJson() const;
    static bool fromJson(const QByteArray& json, BpkManifest* out, QString* error);

    /// Node type names as the tools take them: "motor", "tx30", "keypad",
    /// "sensor", "interface", "motorio", "lru50", "tx50dc", "dcmotor",
    /// "settingtool"; -1 when unknown.
    static int nodeTypeFromName(const QString& name);
    static QString nodeTypeName(int type);
    /// "2.1.0.17" or "2.1.0"; false when it is not three or four numbers in range.
    static bool parseVersion(const QString& text, BpkManifest* out);
};

#endif // BPKMANIFEST_H
