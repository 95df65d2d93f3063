#ifndef SIMFRAMESPLITTER_H
#define SIMFRAMESPLITTER_H

#include <QByteArray>
#include <QList>

/// Cuts a byte stream (a serial line) into frames by their length byte and
/// checksum, whatever the read boundaries. Bytes that start no valid frame
/// are dropped one at a time, so the reader finds the next frame again.
///
///     SimFrameSplitter splitter;
///     for (const QByteArray& frame : splitter.feed(chunk)) network.frameIn(frame);
class SimFrameSplitter
{
public:
    /// Appends `bytes` and returns every whole valid frame now available.
    QList<QByteArray> feed(const QByteArray& bytes);
    /// Bytes held for a frame that is not complete yet.
    int pending() const { return m_buffer.size(); }
    /// Bytes dropped so far because no valid frame started with them.
    qint64 droppedBytes() const { return m_dropped; }
    void clear() { m_buffer.clear(); }

private:
    bool validFrameFollows(int pos) const;
    QByteArray m_buffer;
    qint64 m_dropped = 0;
};

#endif // SIMFRAMESPLITTER_H
