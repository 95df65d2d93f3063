// Network documents from any bytes: parsing and the schema check never crash,
// a refusal always names its place (a JSON pointer), and a document that is
// taken is written out and read back to the same devices.
#include "fuzzinput.h"
#include "networkdocument.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const bool quiet = (fuzzQuiet(), true);
    Q_UNUSED(quiet);
    FuzzInput in(data, size);
    NetworkDocument document;
    QString error;
    if (!NetworkDocument::fromJson(in.rest(), document, error)) {
        FUZZ_CHECK(error.startsWith(QLatin1Char('/')));
        return 0;
    }
    NetworkDocument again;
    FUZZ_CHECK(NetworkDocument::fromJson(document.toJson(), again, error));
    FUZZ_CHECK(again.devices == document.devices && again.bus == document.bus);
    for (const QJsonObject& entry : document.devices)
        NetworkDocument::settings(entry);
    return 0;
}
