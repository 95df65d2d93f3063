#include "vrndatawriter.h"
#include "vrnmessage.h"

VRNDataWriter::VRNDataWriter(VRNMessage& message) : m_message(message) {}

VRNDataWriter& VRNDataWriter::writeUint8(quint8 v)
{
    m_message.payloadRef().append(char(v));
    return *this;
}
VRNDataWriter& VRNDataWriter::writeUint16(quint16 v)
{
    return writeUint8(quint8(v >> 8)).writeUint8(quint8(v));
}
VRNDataWriter& VRNDataWriter::writeUint24(quint32 v)
{
    return writeUint8(quint8(v >> 16)).writeUint16(quint16(v));
}
VRNDataWriter& VRNDataWriter::writeUint32(quint32 v)
{
    return writeUint16(quint16(v >> 16)).writeUint16(quint16(v));
}
VRNDataWriter& VRNDataWriter::writeBytes(const QByteArray& bytes)
{
    m_message.payloadRef().append(bytes);
    return *this;
}

VRNDataReader::VRNDataReader(const QByteArray& payload) : m_data(payload) {}

bool VRNDataReader::take(int n)
{
    if (!m_ok || n < 0 || m_pos + n > m_data.size()) {
        m_ok = false;
        return false;
    }
    m_pos += n;
    return true;
}

quint8 VRNDataReader::readUint8()
{
    return take(1) ? quint8(m_data.at(m_pos - 1)) : 0;
}
quint16 VRNDataReader::readUint16()
{
    if (!take(2))
        return 0;
    return quint16((quint8(m_data.at(m_pos - 2)) << 8) | quint8(m_data.at(m_pos - 1)));
}
quint32 VRNDataReader::readUint24()
{
    if (!take(3))
        return 0;
    const char* p = m_data.constData() + m_pos - 3;
    return (quint32(quint8(p[0])) << 16) | (quint32(quint8(p[1])) << 8) | quint8(p[2]);
}
quint32 VRNDataReader::readUint32()
{
    if (!take(4))
        return 0;
    const char* p = m_data.constData() + m_pos - 4;
    return (quint32(quint8(p[0])) << 24) | (quint32(quint8(p[1])) << 16)
        | (quint32(quint8(p[2])) << 8) | quint8(p[3]);
}
QByteArray VRNDataReader::readBytes(int count)
{
    return take(count) ? m_data.mid(m_pos - count, count) : QByteArray();
}
QByteArray VRNDataReader::readAll()
{
    const QByteArray rest = m_data.mid(m_pos);
    m_pos = m_data.size();
    return rest;
}
