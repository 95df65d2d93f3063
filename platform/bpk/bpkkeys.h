#ifndef BPKKEYS_H
#define BPKKEYS_H

#include <QByteArray>
#include <QString>

/// The keys of firmware packages: the signing key (held by whoever builds
/// packages, never by a configuration tool), the key that verifies
/// signatures, and the key the images are encrypted with.
///
/// Key files are text, one "name hex" pair a line, lines starting with '#'
/// ignored:
///
///     verify-key 3b6a27bc...   (32 bytes)
///     image-key  9f86d081...   (32 bytes)
///     sign-key   ...           (64 bytes; only in the builder's secret file)
///
/// A tool configures the file with the verify and image keys; `generate()`
/// makes a fresh set at run time, so no private key is ever stored with the
/// sources.
struct BpkKeys
{
    QByteArray verifyKey;
    QByteArray imageKey;
    QByteArray signKey;

    static BpkKeys generate();
    /// False with a reason when the file cannot be read, a line is malformed
    /// or a key has the wrong size; keys the file lacks stay empty.
    static bool load(const QString& path, BpkKeys* keys, QString* error);
    /// Writes the keys that are set (`withSecret` false leaves out the
    /// signing key); the file is readable by its owner only.
    bool save(const QString& path, bool withSecret, QString* error) const;

    bool canVerify() const;
    bool canDecrypt() const;
    bool canSign() const;
};

#endif // BPKKEYS_H
