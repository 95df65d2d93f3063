#include "simframesplitter.h"

#include "vrnmessage.h"

// A garbage byte may announce a long frame and hold up a whole valid frame
// behind it; such a frame (checksum and all) wins over the wait.
bool SimFrameSplitter::validFrameFollows(int pos) const
{
    for (int start = pos + 1; start < m_buffer.size(); ++start) {
        if (VRNMessage::frameLength(m_buffer.constData() + start, m_buffer.size() - start) > 0)
            return true;
    }
    return false;
}

QList<QByteArray> SimFrameSplitter::feed(const QByteArray& bytes)
{
    m_buffer.append(bytes);
    QList<QByteArray> frames;
    int pos = 0;
    while (pos < m_buffer.size()) {
        const int length = VRNMessage::frameLength(m_buffer.constData() + pos, m_buffer.size() - pos);
        if (length == 0 && !validFrameFollows(pos))
            break;
        if (length <= 0) {
            ++pos;
            ++m_dropped;
            continue;
        }
        frames.append(m_buffer.mid(pos, length));
        pos += length;
    }
    m_buffer.remove(0, pos);
    return frames;
}
