// Cutting frames from a byte stream read in chunks of any size: every frame
// handed out is whole (its length byte and checksum agree), no byte is lost
// or made up, and without look-ahead the chunk boundaries change nothing.
// A whole frame from a reserved source is still cut as one frame, so that the
// bus can count it as invalid rather than resynchronise inside it.
#include "fuzzinput.h"
#include "vrnframecutter.h"

namespace {

struct Cut
{
    QList<QByteArray> frames;
    qint64 frameBytes = 0;
    qint64 droppedBytes = 0;
};

void drain(VRNFrameCutter& cutter, Cut& cut)
{
    QByteArray piece;
    for (VRNFrameCutter::Piece p; (p = cutter.next(&piece)) != VRNFrameCutter::NeedMore;) {
        FUZZ_CHECK(!piece.isEmpty());
        if (p == VRNFrameCutter::Frame) {
            FUZZ_CHECK(VRNMessage::frameLength(piece.constData(), piece.size()) == piece.size());
            const VRNMessage message{BusMessage(piece)};
            FUZZ_CHECK(message.isValid() == VRN::isValidSource(message.srcAddr(true)));
            cut.frames.append(piece);
            cut.frameBytes += piece.size();
        } else {
            cut.droppedBytes += piece.size();
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    FuzzInput in(data, size);
    const bool lookAhead = in.byte() & 1;
    const quint8 chunking = in.byte();
    const QByteArray stream = in.rest();

    VRNFrameCutter chunked;
    chunked.setLookAhead(lookAhead);
    Cut cut;
    // Chunk sizes cycle through the low bits of `chunking`, 1 to 8 bytes.
    for (int pos = 0, i = 0; pos < stream.size(); ++i) {
        const int step = 1 + ((chunking >> (i % 6)) & 7);
        chunked.append(stream.mid(pos, step));
        pos += step;
        drain(chunked, cut);
    }
    // Dropped bytes before a frame that is still coming are counted but not
    // handed out yet.
    FUZZ_CHECK(cut.frameBytes + chunked.droppedBytes() + chunked.pending() == stream.size());
    FUZZ_CHECK(cut.droppedBytes <= chunked.droppedBytes());
    FUZZ_CHECK(chunked.pending() < VRNMessage::MaxFrameSize);

    VRNFrameCutter whole;
    whole.setLookAhead(lookAhead);
    const QList<QByteArray> frames = whole.feed(stream);
    FUZZ_CHECK(whole.pending() < VRNMessage::MaxFrameSize);
    if (!lookAhead) {
        FUZZ_CHECK(frames == cut.frames);
        FUZZ_CHECK(whole.droppedBytes() == chunked.droppedBytes());
    }
    return 0;
}
