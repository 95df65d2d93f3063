#ifndef BPKPACKAGE_H
#define BPKPACKAGE_H

#include "bpkkeys.h"
#include "bpkmanifest.h"

#include <QByteArray>
#include <QString>

/// One firmware package ("*.bpk"): a tar archive that ordinary tools list
/// and unpack, holding three files:
///
/// | entry | content |
/// |---|---|
/// | manifest.json | `BpkManifest` as JSON |
/// | image.enc | the image, chunk after chunk, each encrypted and authenticated (`Cryptography::encryptChunk`) |
/// | signature | Ed25519 signature (64 bytes) over the bytes of manifest.json followed by those of image.enc |
///
/// Reading is in two steps. `read()` takes the archive apart and parses the
/// manifest without trusting it: enough to list a package. `image()` then
/// verifies it completely before anything may use it: the signature with
/// the verify key, every chunk's authentication with the image key, the
/// size and the digest of the plain image. A package that fails anywhere
/// gives an empty image and one line saying why; nothing in here crashes or
/// reads out of bounds on damaged input (the fuzz target runs this code).
///
///     BpkPackage pkg = BpkPackage::load(path);
///     QString error;
///     const QByteArray image = pkg.image(keys, &error);
///     if (image.isEmpty()) qWarning() << error;
class BpkPackage
{
public:
    enum : qint64 {
        MaxFileSize = 4 << 20,  ///< larger files are refused unread
        MaxManifestSize = 4096
    };

    BpkPackage() = default;

    /// Parses an archive held in memory.
    static BpkPackage read(const QByteArray& archive);
    /// Reads and parses the file at `path`.
    static BpkPackage load(const QString& path);

    /// Builds a package of `image` for `manifest`'s node types, version and
    /// block size (size, digest, chunking and nonce are filled in); empty
    /// with a reason when the keys cannot sign and encrypt or the manifest
    /// is out of range.
    static QByteArray build(const BpkManifest& manifest, const QByteArray& image, const BpkKeys& keys,
                            QString* error);

    /// The archive held the three entries and a manifest in range.
    bool isReadable() const { return m_readable; }
    /// Why the package is not readable, or empty.
    QString errorString() const { return m_error; }
    const BpkManifest& manifest() const { return m_manifest; }

    /// The signature verifies with `verifyKey`.
    bool verifySignature(const QByteArray& verifyKey) const;
    /// The plain image, verified completely; empty with `*error` set when
    /// the package is unreadable, the signature does not verify, a chunk
    /// does not decrypt, or the size or digest disagree with the manifest.
    QByteArray image(const BpkKeys& keys, QString* error) const;

private:
    BpkManifest m_manifest;
    QByteArray m_manifestBytes;
    QByteArray m_encrypted;
    QByteArray m_signature;
    QString m_error;
    bool m_readable = false;
};

#endif // BPKPACKAGE_H
