#ifndef VRNFRAMECUTTER_H
#define VRNFRAMECUTTER_H

#include <QByteArray>
#include <QList>

/// Cuts a byte stream (a serial line, a loopback wire) into frames by their
/// length byte and checksum, whatever the read boundaries.
///
/// Bytes that start no valid frame are dropped; a partial frame waits for
/// the rest. A stray byte can announce up to 32 bytes and would hold back a
/// whole frame behind it until the line speaks again, so with look-ahead on
/// (the default) a complete valid frame further on wins over the wait.
///
/// Pull pieces one at a time with `next()`, which also hands out each run of
/// dropped bytes before the frame that ends it (or when the buffer runs dry);
/// bytes appended while a piece is being handled are read by the same loop:
///
///     cutter.append(chunk);
///     QByteArray piece;
///     for (VRNFrameCutter::Piece p; (p = cutter.next(&piece)) != VRNFrameCutter::NeedMore;)
///         p == VRNFrameCutter::Frame ? frameIn(piece) : garbageIn(piece);
///
/// or, when dropped bytes only need counting, `feed()` returns every frame.
class VRNFrameCutter
{
public:
    enum Piece { NeedMore, Frame, Dropped };

    /// Appends received bytes to the buffer.
    void append(const QByteArray& bytes) { m_buffer.append(bytes); }
    /// Takes the next piece from the front of the buffer into `*out`: a whole
    /// valid frame, or the bytes dropped since the last piece. NeedMore (and
    /// `*out` untouched) when it must wait for more bytes.
    Piece next(QByteArray* out);
    /// Appends `bytes` and returns every whole valid frame now available;
    /// dropped bytes are only counted.
    QList<QByteArray> feed(const QByteArray& bytes);

    /// Whether a complete valid frame behind an unfinished front wins.
    bool lookAhead() const { return m_lookAhead; }
    void setLookAhead(bool on) { m_lookAhead = on; }
    /// Bytes held, for a frame not complete yet or not taken yet.
    int pending() const { return m_buffer.size(); }
    /// Bytes dropped so far because no valid frame started with them.
    qint64 droppedBytes() const { return m_droppedTotal; }
    /// Forgets buffered and dropped bytes (not the count).
    void clear();

private:
    void drop(int count);

    QByteArray m_buffer;
    QByteArray m_dropped;
    qint64 m_droppedTotal = 0;
    bool m_lookAhead = true;
};

#endif // VRNFRAMECUTTER_H
