// Decoding one frame from any bytes: a frame that decodes is exactly the
// frame its fields encode to, and the length rule agrees with the decoder; a
// whole frame is refused only for a source no device or tool can have.
#include "fuzzinput.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    FuzzInput in(data, size);
    const QByteArray bytes = in.restChecked();
    const VRNMessage m{BusMessage(bytes)};
    const int length = VRNMessage::frameLength(bytes.constData(), bytes.size());
    FUZZ_CHECK(length <= bytes.size() && length <= VRNMessage::MaxFrameSize);
    if (!m.isValid()) {
        FUZZ_CHECK(bytes.size() < VRNMessage::MinFrameSize || length != bytes.size()
                   || !VRN::isValidSource(m.srcAddr()));
        return 0;
    }
    FUZZ_CHECK(VRN::isValidSource(m.srcAddr()) && VRN::getType(m.srcAddr()) <= VRNMessage::TypeMask);
    FUZZ_CHECK(length == bytes.size());
    FUZZ_CHECK(m.payload().size() == bytes.size() - VRNMessage::MinFrameSize);
    VRNMessage again(m.cmd(), m.srcAddr(), m.dstAddr(), m.dstType(), m.payload());
    again.setAck(m.ack());
    again.setSeq(m.seq());
    FUZZ_CHECK(again.prepare());
    FUZZ_CHECK(again.data() == bytes);
    return 0;
}
