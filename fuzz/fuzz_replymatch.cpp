// The bus's reply matching fed any frames against a queue of pending
// requests: a call that ends with a reply got one that answers it (from the
// node called, to this tool, for the command asked and the index asked, with
// its sequence number or none), and every frame the bus did not give to a
// call is counted as unmatched.
#include "buspendingcall.h"
#include "dts.h"
#include "fuzzinput.h"
#include "vrnloopbackbus.h"

#include <QCoreApplication>

namespace {

// The rule written out again, apart from the code under test.
bool answers(const VRNMessage& rq, const VRNMessage& rp)
{
    if (!rp.isValid() || rp.dstType() != VRN::AddrNode || rp.dstAddr() != VRN::getNumber(VRN::toolAddr()))
        return false;
    if (!VRN::isDeviceAddr(rp.srcAddr()) || rp.srcAddr(false) != rq.dstAddr())
        return false;
    if (rp.seq() != 0 && rp.seq() != rq.seq())
        return false;
    const QByteArray p = rp.payload();
    if (rp.cmd() == DTS::Nack)
        return p.size() == 2 && quint8(p.at(1)) == rq.cmd();
    if (rp.cmd() == DTS::Ack)
        return DTS::cmdInfo(rq.cmd()).reply() == DTS::Ack && p.size() == 1 && quint8(p.at(0)) == rq.cmd();
    if (rp.cmd() != DTS::cmdInfo(rq.cmd()).reply())
        return false;
    if (rq.cmd() == DTS::GetGroupAddr || rq.cmd() == DTS::GetMotorIP)
        return !p.isEmpty() && p.at(0) == rq.payload().at(0);
    return true;
}

const quint8 Requests[] = {DTS::GetGroupAddr, DTS::GetMotorIP, DTS::SetNodeLabel, DTS::GetNodeLabel,
                           DTS::CtrlMoveOf, DTS::CtrlWink, DTS::GetNodeAppVersion, DTS::SetGroupAddr};
const quint32 Nodes[] = {0x000100, 0x000101, 0xFFFFFF, 0xFE0001};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static int argc = 1;
    static char name[] = "fuzz_replymatch";
    static char* argv[] = {name, nullptr};
    static QCoreApplication* app = (fuzzQuiet(), new QCoreApplication(argc, argv));
    Q_UNUSED(app);

    FuzzInput in(data, size);
    VRNLoopbackBus bus;
    bus.setRepeats(in.byte() % 3);
    bus.open();
    QList<BusPendingCall> calls;
    for (int n = 1 + in.byte() % 4; n > 0; --n) {
        const quint8 cmd = Requests[in.byte() % (sizeof(Requests) / sizeof(*Requests))];
        const VRNCmdInfo info = DTS::cmdInfo(cmd);
        VRNMessage rq(cmd, VRN::toolAddr(), Nodes[in.byte() % 4], VRN::AddrNode,
                      QByteArray(info.minPayload(), char(in.byte() % 16)));
        rq.setAck(true);
        rq.prepare();
        calls << bus.call(rq);
    }
    QCoreApplication::processEvents();
    // Garbage may leave a partial frame in the reader that takes the next
    // bytes with it; from then on frames are no longer counted one by one.
    bool clean = true;
    while (!in.atEnd()) {
        const quint8 how = in.byte();
        QByteArray bytes;
        if (how & 1) {
            bytes = in.bytes(in.byte() % 40);
            clean = clean && VRNMessage(BusMessage(bytes)).isValid();
        } else {
            // Mostly well-formed answers to the tool, from the nodes asked.
            VRNMessage m = in.frame(0, VRN::getNumber(VRN::toolAddr()));
            if (how & 2)
                m.setSrcAddr(VRN::makeAddr(VRN::NodeMotor, int(Nodes[(how >> 2) % 4])));
            m.setSeq(how >> 4);
            m.prepare();
            bytes = m.data();
        }
        int before = 0;
        for (const BusPendingCall& c : qAsConst(calls))
            before += c.isFinished() && !c.replies().isEmpty();
        const quint64 unmatched = bus.unmatchedCount();
        bus.inject(bytes);
        int after = 0;
        for (const BusPendingCall& c : qAsConst(calls))
            after += c.isFinished() && !c.replies().isEmpty();
        FUZZ_CHECK(after - before <= 1);
        // A frame is given to a call or counted; never both, never neither.
        // The tool's own frames, echoed by the medium, are neither: they are
        // dropped before matching.
        const VRNMessage sent{BusMessage(bytes)};
        const bool own = sent.isValid() && sent.srcAddr() == VRN::toolAddr();
        if (clean)
            FUZZ_CHECK(after - before + int(bus.unmatchedCount() - unmatched) == (own ? 0 : 1));
        QCoreApplication::processEvents();
    }
    for (const BusPendingCall& c : qAsConst(calls)) {
        if (!c.isFinished() || c.error() != BusPendingCall::NoError)
            continue;
        const VRNMessage rq{c.request()};
        FUZZ_CHECK(rq.isValid() && VRN::isDeviceAddr(VRN::makeAddr(VRN::NodeMotor, int(rq.dstAddr()))));
        FUZZ_CHECK(c.replies().size() == 1);
        FUZZ_CHECK(answers(rq, VRNMessage(c.reply())));
    }
    return 0;
}
