// vrnconfig's monitor decodes every frame it sees, from any sender: any
// bytes give a decoding, and it agrees with the frame's own validity.
#include "fuzzinput.h"

#include "framedecoder.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    FuzzInput in(data, size);
    const QByteArray bytes = in.restChecked();
    const DecodedFrame d = decodeFrame(bytes);
    FUZZ_CHECK(d.valid == VRNMessage(BusMessage(bytes)).isValid());
    FUZZ_CHECK(!d.valid || (!d.command.isEmpty() && !d.source.isEmpty() && !d.destination.isEmpty()));
    return 0;
}
