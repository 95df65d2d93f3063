#include "bpkkeys.h"

#include "cryptography.h"

#include <QFile>
#include <QSaveFile>

namespace {

struct KeyField {
    const char* name;
    QByteArray BpkKeys::*key;
    int size;
};
const KeyField Fields[] = {
    {"verify-key", &BpkKeys::verifyKey, Cryptography::PublicKeySize},
    {"image-key", &BpkKeys::imageKey, Cryptography::ImageKeySize},
    {"sign-key", &BpkKeys::signKey, Cryptography::SecretKeySize},
};

} // namespace

BpkKeys BpkKeys::generate()
{
    const Cryptography::SigningKeys pair = Cryptography::generateSigningKeys();
    BpkKeys keys;
    keys.verifyKey = pair.publicKey;
    keys.signKey = pair.secretKey;
    keys.imageKey = Cryptography::randomBytes(Cryptography::ImageKeySize);
    return keys;
}

bool BpkKeys::load(const QString& path, BpkKeys* keys, QString* error)
{
    auto refuse = [&](const QString& why) {
        if (error)
            *error = why;
        return false;
    };
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return refuse(QStringLiteral("cannot read key file %1: %2").arg(path, file.errorString()));
    if (file.size() > 4096)
        return refuse(QStringLiteral("key file %1 is too large").arg(path));
    BpkKeys read;
    int lineNo = 0;
    for (const QByteArray& raw : file.readAll().split('\n')) {
        ++lineNo;
        const QByteArray line = raw.trimmed();
        if (line.isEmpty() || line.startsWith('#'))
            continue;
        const QList<QByteArray> parts = line.simplified().split(' ');
        const KeyField* field = nullptr;
        for (const KeyField& f : Fields) {
            if (parts.size() == 2 && parts[0] == f.name)
                field = &f;
        }
        const QByteArray value = field ? QByteArray::fromHex(parts[1]) : QByteArray();
        if (!field || value.size() != field->size || value.toHex() != parts[1].toLower())
            return refuse(QStringLiteral("key file %1, line %2: not a key").arg(path).arg(lineNo));
        read.*(field->key) = value;
    }
    if (keys)
        *keys = read;
    return true;
}

bool BpkKeys::save(const QString& path, bool withSecret, QString* error) const
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        if (error)
            *error = QStringLiteral("cannot write %1: %2").arg(path, file.errorString());
        return false;
    }
    file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    for (const KeyField& f : Fields) {
        const QByteArray& value = this->*(f.key);
        if (value.isEmpty() || (f.key == &BpkKeys::signKey && !withSecret))
            continue;
        file.write(QByteArray(f.name) + ' ' + value.toHex() + '\n');
    }
    if (!file.commit()) {
        if (error)
            *error = QStringLiteral("cannot write %1: %2").arg(path, file.errorString());
        return false;
    }
    return true;
}

bool BpkKeys::canVerify() const { return verifyKey.size() == Cryptography::PublicKeySize; }
bool BpkKeys::canDecrypt() const { return imageKey.size() == Cryptography::ImageKeySize; }
bool BpkKeys::canSign() const { return signKey.size() == Cryptography::SecretKeySize; }
