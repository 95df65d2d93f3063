// A simulated node fed any sequence of requests: it never crashes, answers
// only frames addressed to it, answers each with well-formed frames from
// itself to the asker, and never acknowledges (or refuses) a broadcast or
// group request.
#include "dts.h"
#include "fuzzinput.h"
#include "simnode.h"

#include <QRandomGenerator>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const bool quiet = (fuzzQuiet(), true);
    Q_UNUSED(quiet);

    FuzzInput in(data, size);
    const auto kind = SimNode::Kind(in.byte() % (SimNode::SettingTool + 1));
    const quint32 number = 0x000100 | in.byte();
    SimNode node(kind, number);
    QRandomGenerator rng(in.byte());
    node.randomize(rng);
    node.setGroup(0, 0x00C0DE);

    while (!in.atEnd()) {
        const quint8 how = in.byte();
        const VRNMessage request = (how & 1) ? VRNMessage(BusMessage(in.bytes(in.byte() % 40)))
                                             : in.frame(VRN::ToolAddr, (how & 2) ? 0x00C0DE : number);
        const bool addressed = request.isValid() && node.isAddressedBy(request);
        const QList<QByteArray> replies = node.handle(request);
        if (!addressed)
            FUZZ_CHECK(replies.isEmpty());
        for (const QByteArray& bytes : replies) {
            const VRNMessage reply{BusMessage(bytes)};
            FUZZ_CHECK(reply.isValid());
            FUZZ_CHECK(reply.srcAddr() == node.address());
            FUZZ_CHECK(reply.dstAddr() == request.srcAddr(false));
            if (request.isBroadcast() || request.dstType() == VRN::AddrGroup)
                FUZZ_CHECK(reply.cmd() != DTS::Ack && reply.cmd() != DTS::Nack);
            // A refusal names its status and the refused request.
            if (reply.cmd() == DTS::Nack)
                FUZZ_CHECK(reply.payload().size() == 2 && quint8(reply.payload().at(1)) == request.cmd());
        }
    }
    return 0;
}
