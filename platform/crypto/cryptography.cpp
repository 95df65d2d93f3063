#include "cryptography.h"

#include <QtEndian>

#include <sodium.h>

namespace {

QByteArray chunkNonce(quint64 index, const QByteArray& nonce)
{
    QByteArray full = nonce;
    full.resize(crypto_aead_xchacha20poly1305_ietf_NPUBBYTES);
    qToLittleEndian<quint64>(index, full.data() + Cryptography::NonceSize);
    return full;
}

const unsigned char* bytes(const QByteArray& a)
{
    return reinterpret_cast<const unsigned char*>(a.constData());
}

unsigned char* bytes(QByteArray& a)
{
    return reinterpret_cast<unsigned char*>(a.data());
}

} // namespace

static_assert(Cryptography::NonceSize + 8 == crypto_aead_xchacha20poly1305_ietf_NPUBBYTES, "nonce layout");
static_assert(Cryptography::ImageKeySize == crypto_aead_xchacha20poly1305_ietf_KEYBYTES, "key size");
static_assert(Cryptography::TagSize == crypto_aead_xchacha20poly1305_ietf_ABYTES, "tag size");
static_assert(Cryptography::PublicKeySize == crypto_sign_PUBLICKEYBYTES, "public key size");
static_assert(Cryptography::SecretKeySize == crypto_sign_SECRETKEYBYTES, "secret key size");
static_assert(Cryptography::SignatureSize == crypto_sign_BYTES, "signature size");

bool Cryptography::init()
{
    return sodium_init() >= 0;
}

Cryptography::SigningKeys Cryptography::generateSigningKeys()
{
    SigningKeys keys;
    if (!init())
        return keys;
    keys.publicKey.resize(PublicKeySize);
    keys.secretKey.resize(SecretKeySize);
    crypto_sign_keypair(bytes(keys.publicKey), bytes(keys.secretKey));
    return keys;
}

QByteArray Cryptography::randomBytes(int size)
{
    if (size <= 0 || !init())
        return QByteArray();
    QByteArray out(size, Qt::Uninitialized);
    randombytes_buf(out.data(), size_t(size));
    return out;
}

QByteArray Cryptography::sign(const QByteArray& data, const QByteArray& secretKey)
{
    if (secretKey.size() != SecretKeySize || !init())
        return QByteArray();
    QByteArray sig(SignatureSize, Qt::Uninitialized);
    crypto_sign_detached(bytes(sig), nullptr, bytes(data), size_t(data.size()), bytes(secretKey));
    return sig;
}

bool Cryptography::verify(const QByteArray& data, const QByteArray& signature, const QByteArray& publicKey)
{
    if (signature.size() != SignatureSize || publicKey.size() != PublicKeySize || !init())
        return false;
    return crypto_sign_verify_detached(bytes(signature), bytes(data), size_t(data.size()), bytes(publicKey)) == 0;
}

QByteArray Cryptography::encryptChunk(const QByteArray& plain, quint64 index, const QByteArray& nonce,
                                      const QByteArray& key)
{
    if (key.size() != ImageKeySize || nonce.size() != NonceSize || !init())
        return QByteArray();
    const QByteArray n = chunkNonce(index, nonce);
    QByteArray out(plain.size() + TagSize, Qt::Uninitialized);
    unsigned long long outLen = 0;
    crypto_aead_xchacha20poly1305_ietf_encrypt(bytes(out), &outLen, bytes(plain), size_t(plain.size()),
                                               nullptr, 0, nullptr, bytes(n), bytes(key));
    out.resize(int(outLen));
    return out;
}

QByteArray Cryptography::decryptChunk(const QByteArray& cipher, quint64 index, const QByteArray& nonce,
                                      const QByteArray& key, bool* ok)
{
    if (ok)
        *ok = false;
    if (key.size() != ImageKeySize || nonce.size() != NonceSize || cipher.size() < TagSize || !init())
        return QByteArray();
    const QByteArray n = chunkNonce(index, nonce);
    QByteArray out(cipher.size() - TagSize, Qt::Uninitialized);
    unsigned long long outLen = 0;
    if (crypto_aead_xchacha20poly1305_ietf_decrypt(bytes(out), &outLen, nullptr, bytes(cipher),
                                                   size_t(cipher.size()), nullptr, 0, bytes(n), bytes(key))
        != 0)
        return QByteArray();
    out.resize(int(outLen));
    if (ok)
        *ok = true;
    return out;
}

QByteArray Cryptography::digest(const QByteArray& data)
{
    QByteArray out(DigestSize, Qt::Uninitialized);
    if (!init())
        return QByteArray();
    crypto_generichash(bytes(out), size_t(DigestSize), bytes(data), size_t(data.size()), nullptr, 0);
    return out;
}
