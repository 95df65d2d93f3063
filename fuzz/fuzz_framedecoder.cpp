// vrnconfig's monitor decodes every frame it sees, from any sender: any
// bytes give a decoding, and it agrees with the frame's own validity.
#include "fuzzinput.h"

#include "framedecoder.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    FuzzInput in(data, size);
    QByteArray bytes = in.rest();
    // With an odd first byte the checksum is made right, so that decoding
    // gets past it to the payloads.
    if (bytes.size() >= VRNMessage::MinFrameSize && (quint8(bytes[0]) & 1)) {
        const int n = bytes.size();
        const quint16 crc = VRNMessage::checksum(bytes.constData(), n - 2);
        bytes[n - 2] = char(crc >> 8);
        bytes[n - 1] = char(crc & 0xFF);
    }
    const DecodedFrame d = decodeFrame(bytes);
    FUZZ_CHECK(d.valid == VRNMessage(BusMessage(bytes)).isValid());
    FUZZ_CHECK(!d.valid || (!d.command.isEmpty() && !d.source.isEmpty() && !d.destination.isEmpty()));
    return 0;
}
