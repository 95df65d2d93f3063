#ifndef VRNDATAWRITER_H
#define VRNDATAWRITER_H

#include <QByteArray>
#include <QtGlobal>

class VRNMessage;

/// Appends big-endian values to a message's payload.
class VRNDataWriter
{
public:
    explicit VRNDataWriter(VRNMessage& message);
    VRNDataWriter& writeUint8(quint8 v);
    VRNDataWriter& writeUint16(quint16 v);
    VRNDataWriter& writeUint24(quint32 v);
    VRNDataWriter& writeUint32(quint32 v);
    VRNDataWriter& writeBytes(const QByteArray& bytes);

private:
    VRNMessage& m_message;
};

/// Reads big-endian values from a payload. A read past the end returns 0 and
/// sets `ok()` to false for good, so a parser checks once at the end.
class VRNDataReader
{
public:
    explicit VRNDataReader(const QByteArray& payload);
    quint8 readUint8();
    quint16 readUint16();
    quint32 readUint24();
    quint32 readUint32();
    QByteArray readBytes(int count);
    QByteArray readAll();
    int remaining() const { return m_data.size() - m_pos; }
    bool atEnd() const { return m_pos >= m_data.size(); }
    bool ok() const { return m_ok; }

private:
    bool take(int n);
    QByteArray m_data;
    int m_pos = 0;
    bool m_ok = true;
};

#endif // VRNDATAWRITER_H
