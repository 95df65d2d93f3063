#ifndef CRYPTOGRAPHY_H
#define CRYPTOGRAPHY_H

#include <QByteArray>

/// The cryptography the firmware code needs: Ed25519 signatures, the
/// authenticated encryption of firmware images chunk by chunk
/// (XChaCha20-Poly1305), and the image digest (BLAKE2b, 16 bytes) that
/// devices check before they switch to a new image.
///
/// Every function returns an empty array or false on failure (a key of the
/// wrong size, a forged signature, a chunk that does not authenticate); none
/// throws, none aborts. `init()` is called by every function; calling it
/// first is harmless.
///
///     const Cryptography::SigningKeys keys = Cryptography::generateSigningKeys();
///     const QByteArray sig = Cryptography::sign(data, keys.secretKey);
///     Cryptography::verify(data, sig, keys.publicKey); // true
class Cryptography
{
public:
    enum : int {
        PublicKeySize = 32,
        SecretKeySize = 64,
        SignatureSize = 64,
        ImageKeySize = 32,
        NonceSize = 16,   ///< the per-image part of a chunk's nonce
        TagSize = 16,     ///< authentication tag added to every chunk
        DigestSize = 16
    };

    struct SigningKeys {
        QByteArray publicKey;  ///< verifies (32 bytes)
        QByteArray secretKey;  ///< signs (64 bytes); never leaves its owner's files
    };

    /// False when the underlying library cannot start (no random source).
    static bool init();

    static SigningKeys generateSigningKeys();
    /// `size` random bytes.
    static QByteArray randomBytes(int size);

    /// Detached signature of `data`; empty when `secretKey` has the wrong size.
    static QByteArray sign(const QByteArray& data, const QByteArray& secretKey);
    static bool verify(const QByteArray& data, const QByteArray& signature, const QByteArray& publicKey);

    /// Encrypts chunk number `index` of an image: the ciphertext followed by
    /// its tag. The chunk's nonce is `nonce` (16 bytes) followed by `index`,
    /// so no two chunks of an image share one.
    static QByteArray encryptChunk(const QByteArray& plain, quint64 index, const QByteArray& nonce,
                                   const QByteArray& key);
    /// The plain chunk; empty with `*ok` false when the chunk does not
    /// authenticate (damaged, out of place, other key).
    static QByteArray decryptChunk(const QByteArray& cipher, quint64 index, const QByteArray& nonce,
                                   const QByteArray& key, bool* ok);

    /// The 16-byte BLAKE2b digest of an image.
    static QByteArray digest(const QByteArray& data);
};

#endif // CRYPTOGRAPHY_H
