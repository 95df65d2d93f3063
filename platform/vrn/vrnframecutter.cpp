#include "vrnframecutter.h"

#include "vrnmessage.h"

VRNFrameCutter::Piece VRNFrameCutter::next(QByteArray* out)
{
    for (;;) {
        const int size = m_buffer.size();
        const char* data = m_buffer.constData();
        const int length = size > 0 ? VRNMessage::frameLength(data, size) : 0;
        if (size == 0 || length > 0) {
            // A run of dropped bytes goes out before the frame that ends it.
            if (!m_dropped.isEmpty()) {
                *out = m_dropped;
                m_dropped.clear();
                return Dropped;
            }
            if (size == 0)
                return NeedMore;
            *out = m_buffer.left(length);
            m_buffer.remove(0, length);
            return Frame;
        }
        if (length < 0) {
            drop(1);
            continue;
        }
        int start = 1;
        if (m_lookAhead) {
            while (start < size && VRNMessage::frameLength(data + start, size - start) <= 0)
                ++start;
        }
        if (!m_lookAhead || start == size)
            return NeedMore;
        drop(start);
    }
}

QList<QByteArray> VRNFrameCutter::feed(const QByteArray& bytes)
{
    append(bytes);
    QList<QByteArray> frames;
    QByteArray piece;
    for (Piece p; (p = next(&piece)) != NeedMore;) {
        if (p == Frame)
            frames.append(piece);
    }
    return frames;
}

void VRNFrameCutter::clear()
{
    m_buffer.clear();
    m_dropped.clear();
}

void VRNFrameCutter::drop(int count)
{
    m_dropped.append(m_buffer.constData(), count);
    m_buffer.remove(0, count);
    m_droppedTotal += count;
}
