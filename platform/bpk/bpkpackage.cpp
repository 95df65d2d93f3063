#include "bpkpackage.h"

#include "cryptography.h"

#include <QFile>

#include <archive.h>
#include <archive_entry.h>

#include <memory>

namespace {

const char ManifestEntry[] = "manifest.json";
const char ImageEntry[] = "image.enc";
const char SignatureEntry[] = "signature";

using ArchivePtr = std::unique_ptr<struct archive, int (*)(struct archive*)>;

la_ssize_t appendToArray(struct archive*, void* client, const void* buffer, size_t length)
{
    static_cast<QByteArray*>(client)->append(static_cast<const char*>(buffer), int(length));
    return la_ssize_t(length);
}

bool addEntry(struct archive* a, const char* name, const QByteArray& data)
{
    std::unique_ptr<struct archive_entry, void (*)(struct archive_entry*)> entry(archive_entry_new(),
                                                                                  archive_entry_free);
    archive_entry_set_pathname(entry.get(), name);
    archive_entry_set_size(entry.get(), data.size());
    archive_entry_set_filetype(entry.get(), AE_IFREG);
    archive_entry_set_perm(entry.get(), 0644);
    if (archive_write_header(a, entry.get()) != ARCHIVE_OK)
        return false;
    return archive_write_data(a, data.constData(), size_t(data.size())) == la_ssize_t(data.size());
}

qint64 encryptedSize(const BpkManifest& m)
{
    const qint64 chunks = (qint64(m.size) + m.chunkSize - 1) / m.chunkSize;
    return qint64(m.size) + chunks * Cryptography::TagSize;
}

} // namespace

BpkPackage BpkPackage::read(const QByteArray& archive)
{
    BpkPackage pkg;
    auto refuse = [&pkg](const QString& why) {
        pkg.m_error = why;
        pkg.m_readable = false;
        return pkg;
    };
    ArchivePtr a(archive_read_new(), archive_read_free);
    archive_read_support_format_tar(a.get());
    if (archive.isEmpty()
        || archive_read_open_memory(a.get(), archive.constData(), size_t(archive.size())) != ARCHIVE_OK)
        return refuse(QStringLiteral("package damaged: not an archive"));
    bool haveManifest = false, haveImage = false, haveSignature = false;
    struct archive_entry* entry = nullptr;
    int r = ARCHIVE_OK;
    while ((r = archive_read_next_header(a.get(), &entry)) == ARCHIVE_OK) {
        const char* rawName = archive_entry_pathname(entry);
        const QByteArray name(rawName ? rawName : "");
        QByteArray* target = nullptr;
        bool* seen = nullptr;
        qint64 limit = 0;
        if (name == ManifestEntry) {
            target = &pkg.m_manifestBytes, seen = &haveManifest, limit = MaxManifestSize;
        } else if (name == ImageEntry) {
            target = &pkg.m_encrypted, seen = &haveImage, limit = MaxFileSize;
        } else if (name == SignatureEntry) {
            target = &pkg.m_signature, seen = &haveSignature, limit = Cryptography::SignatureSize;
        } else {
            return refuse(QStringLiteral("package damaged: unexpected entry \"%1\"")
                              .arg(QString::fromUtf8(name.left(64))));
        }
        if (*seen)
            return refuse(QStringLiteral("package damaged: entry \"%1\" twice").arg(QString::fromLatin1(name)));
        if (archive_entry_filetype(entry) != AE_IFREG || !archive_entry_size_is_set(entry)
            || archive_entry_size(entry) < 0 || archive_entry_size(entry) > limit)
            return refuse(QStringLiteral("package damaged: entry \"%1\" of a bad size").arg(QString::fromLatin1(name)));
        const qint64 size = archive_entry_size(entry);
        target->resize(int(size));
        qint64 got = 0;
        while (got < size) {
            const la_ssize_t n = archive_read_data(a.get(), target->data() + got, size_t(size - got));
            if (n <= 0)
                return refuse(QStringLiteral("package damaged: entry \"%1\" cut short").arg(QString::fromLatin1(name)));
            got += n;
        }
        *seen = true;
    }
    if (r != ARCHIVE_EOF)
        return refuse(QStringLiteral("package damaged: archive unreadable"));
    if (!haveManifest || !haveImage || !haveSignature)
        return refuse(QStringLiteral("package damaged: manifest, image or signature missing"));
    QString why;
    if (!BpkManifest::fromJson(pkg.m_manifestBytes, &pkg.m_manifest, &why))
        return refuse(QStringLiteral("package damaged: %1").arg(why));
    if (pkg.m_encrypted.size() != encryptedSize(pkg.m_manifest))
        return refuse(QStringLiteral("package damaged: image size does not match the manifest"));
    pkg.m_readable = true;
    pkg.m_error.clear();
    return pkg;
}

BpkPackage BpkPackage::load(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        BpkPackage pkg;
        pkg.m_error = QStringLiteral("cannot read %1: %2").arg(path, file.errorString());
        return pkg;
    }
    if (file.size() > MaxFileSize) {
        BpkPackage pkg;
        pkg.m_error = QStringLiteral("package damaged: %1 is too large").arg(path);
        return pkg;
    }
    return read(file.read(MaxFileSize + 1));
}

QByteArray BpkPackage::build(const BpkManifest& manifest, const QByteArray& image, const BpkKeys& keys,
                             QString* error)
{
    auto refuse = [error](const QString& why) {
        if (error)
            *error = why;
        return QByteArray();
    };
    if (!keys.canSign() || !keys.canDecrypt())
        return refuse(QStringLiteral("the keys cannot sign and encrypt (sign-key and image-key needed)"));
    BpkManifest m = manifest;
    m.size = image.size();
    m.digest = Cryptography::digest(image);
    m.nonce = Cryptography::randomBytes(Cryptography::NonceSize);
    if (m.chunkSize <= 0)
        m.chunkSize = BpkManifest::DefaultChunkSize;
    const QByteArray manifestBytes = m.toJson();
    QString why;
    if (!BpkManifest::fromJson(manifestBytes, nullptr, &why))
        return refuse(why);
    QByteArray encrypted;
    for (qint64 at = 0, index = 0; at < image.size(); at += m.chunkSize, ++index)
        encrypted += Cryptography::encryptChunk(image.mid(int(at), m.chunkSize), quint64(index), m.nonce, keys.imageKey);
    const QByteArray signature = Cryptography::sign(manifestBytes + encrypted, keys.signKey);

    QByteArray out;
    ArchivePtr a(archive_write_new(), archive_write_free);
    archive_write_set_format_ustar(a.get());
    archive_write_set_bytes_in_last_block(a.get(), 1);
    if (archive_write_open(a.get(), &out, nullptr, appendToArray, nullptr) != ARCHIVE_OK
        || !addEntry(a.get(), ManifestEntry, manifestBytes) || !addEntry(a.get(), ImageEntry, encrypted)
        || !addEntry(a.get(), SignatureEntry, signature) || archive_write_close(a.get()) != ARCHIVE_OK)
        return refuse(QStringLiteral("cannot write the archive: %1")
                          .arg(QString::fromLocal8Bit(archive_error_string(a.get()))));
    return out;
}

bool BpkPackage::verifySignature(const QByteArray& verifyKey) const
{
    return m_readable && Cryptography::verify(m_manifestBytes + m_encrypted, m_signature, verifyKey);
}

QByteArray BpkPackage::image(const BpkKeys& keys, QString* error) const
{
    auto refuse = [error](const QString& why) {
        if (error)
            *error = why;
        return QByteArray();
    };
    if (!m_readable)
        return refuse(m_error.isEmpty() ? QStringLiteral("package damaged") : m_error);
    if (!keys.canVerify() || !keys.canDecrypt())
        return refuse(QStringLiteral("no firmware keys configured"));
    if (!verifySignature(keys.verifyKey))
        return refuse(QStringLiteral("package signature does not verify"));
    QByteArray plain;
    const int stride = m_manifest.chunkSize + Cryptography::TagSize;
    for (qint64 at = 0, index = 0; at < m_encrypted.size(); at += stride, ++index) {
        bool ok = false;
        plain += Cryptography::decryptChunk(m_encrypted.mid(int(at), stride), quint64(index), m_manifest.nonce,
                                            keys.imageKey, &ok);
        if (!ok)
            return refuse(QStringLiteral("package image does not decrypt (chunk %1)").arg(index));
    }
    if (plain.size() != m_manifest.size || Cryptography::digest(plain) != m_manifest.digest)
        return refuse(QStringLiteral("package image does not match its digest"));
    return plain;
}
