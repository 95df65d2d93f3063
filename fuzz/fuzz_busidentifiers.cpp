// Bus identifiers ("serial:NAME", "mcast:GROUP:PORT:BIND"), multicast URIs
// ("host:port") and the simulator's --mcast GROUP:PORT from any text: none
// crashes, and an identifier made from what a parse read reads back the same.
#include "busfactory.h"
#include "fuzzinput.h"
#include "options.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const bool quiet = (fuzzQuiet(), true);
    Q_UNUSED(quiet);
    FuzzInput in(data, size);
    const QByteArray raw = in.rest();
    for (const QString& text : {QString::fromUtf8(raw), QString::fromLatin1(raw)}) {
        QString name;
        if (BusFactory::parseSerialUUID(text, name)) {
            QString again;
            FUZZ_CHECK(BusFactory::parseSerialUUID(BusFactory::generateSerialUUID(name), again));
            FUZZ_CHECK(again == name.toUpper());
        }

        QHostAddress group, bind;
        quint16 port = 0;
        if (BusFactory::parseMCastUUID(text, group, port, bind)) {
            QHostAddress group2, bind2;
            quint16 port2 = 0;
            const QString again = BusFactory::generateMCastUUID(group, port, bind);
            FUZZ_CHECK(BusFactory::parseMCastUUID(again, group2, port2, bind2));
            FUZZ_CHECK(group2 == group && port2 == port && bind2 == bind);
        }

        QString host;
        if (BusFactory::parseMCastUri(text, host, port))
            FUZZ_CHECK(!host.isEmpty());

        SimOptions options;
        QString error;
        options.parse({QStringLiteral("vrnsim"), QStringLiteral("--mcast"), text}, &error);
    }
    return 0;
}
