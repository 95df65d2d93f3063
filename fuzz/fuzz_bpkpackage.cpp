// Reading a firmware package from any bytes: the archive, the manifest, the
// signature check and the decryption of the image end in a package or an
// error, never in a crash; a package that reads keeps its manifest in range.
#include "bpkpackage.h"
#include "cryptography.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace {

void check(bool ok, const char* what)
{
    if (!ok) {
        std::fprintf(stderr, "fuzz_bpkpackage: %s\n", what);
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const BpkKeys keys = BpkKeys::generate();
    const QByteArray bytes(reinterpret_cast<const char*>(data), int(size));
    const BpkPackage pkg = BpkPackage::read(bytes);
    QString error;
    const QByteArray image = pkg.image(keys, &error);
    check(image.isEmpty() != error.isEmpty() || image.isEmpty(), "an image and an error");
    if (pkg.isReadable()) {
        const BpkManifest& m = pkg.manifest();
        check(m.size > 0 && m.size <= BpkManifest::MaxImageSize, "image size out of range");
        check(m.blockSize > 0 && m.blockSize <= BpkManifest::MaxBlockSize, "block size out of range");
        check(!m.nodeTypes.isEmpty(), "no node type");
        BpkManifest again;
        check(BpkManifest::fromJson(m.toJson(), &again, nullptr), "manifest does not read back");
    } else {
        check(!pkg.errorString().isEmpty(), "unreadable without a reason");
    }
    // The same bytes as one encrypted chunk: refused unless they authenticate.
    bool ok = true;
    const QByteArray plain = Cryptography::decryptChunk(bytes, 0, QByteArray(Cryptography::NonceSize, '\0'),
                                                        keys.imageKey, &ok);
    check(!ok && plain.isEmpty(), "a forged chunk decrypted");
    return 0;
}
