// Reading a firmware package from any bytes: the archive, the manifest, the
// signature check and the decryption of the image end in a package or an
// error, never in a crash; a package that reads keeps its manifest in range.
#include "bpkpackage.h"
#include "cryptography.h"
#include "fuzzinput.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const BpkKeys keys = BpkKeys::generate();
    const QByteArray bytes(reinterpret_cast<const char*>(data), int(size));
    const BpkPackage pkg = BpkPackage::read(bytes);
    QString error;
    const QByteArray image = pkg.image(keys, &error);
    FUZZ_CHECK(image.isEmpty() != error.isEmpty());
    if (pkg.isReadable()) {
        const BpkManifest& m = pkg.manifest();
        FUZZ_CHECK(m.size > 0 && m.size <= BpkManifest::MaxImageSize);
        FUZZ_CHECK(m.blockSize > 0 && m.blockSize <= BpkManifest::MaxBlockSize);
        FUZZ_CHECK(!m.nodeTypes.isEmpty());
        BpkManifest again;
        FUZZ_CHECK(BpkManifest::fromJson(m.toJson(), &again, nullptr));
    } else {
        FUZZ_CHECK(!pkg.errorString().isEmpty());
    }
    // The same bytes as one encrypted chunk: refused unless they authenticate.
    bool ok = true;
    const QByteArray plain = Cryptography::decryptChunk(bytes, 0, QByteArray(Cryptography::NonceSize, '\0'),
                                                        keys.imageKey, &ok);
    FUZZ_CHECK(!ok && plain.isEmpty());
    return 0;
}
