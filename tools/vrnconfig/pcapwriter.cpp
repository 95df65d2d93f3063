#include "pcapwriter.h"

#include <QtEndian>

namespace {

// pcap writes in the writer's byte order; the magic number tells readers
// which. Little-endian throughout here.
void put32(QByteArray& out, quint32 v)
{
    char b[4];
    qToLittleEndian(v, b);
    out.append(b, 4);
}

void put16(QByteArray& out, quint16 v)
{
    char b[2];
    qToLittleEndian(v, b);
    out.append(b, 2);
}

constexpr quint32 SnapLength = 65535;

} // namespace

bool PcapWriter::open(const QString& fileName)
{
    m_file.setFileName(fileName);
    if (!m_file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    QByteArray header;
    put32(header, 0xA1B2C3D4u); // microsecond time stamps
    put16(header, 2);
    put16(header, 4);
    put32(header, 0);           // time zone: UTC
    put32(header, 0);           // accuracy
    put32(header, SnapLength);
    put32(header, LinkType);
    return m_file.write(header) == header.size() && m_file.flush();
}

bool PcapWriter::write(qint64 epochMicroseconds, const QByteArray& frame)
{
    if (!m_file.isOpen())
        return false;
    const QByteArray data = frame.left(int(SnapLength));
    QByteArray record;
    put32(record, quint32(epochMicroseconds / 1000000));
    put32(record, quint32(epochMicroseconds % 1000000));
    put32(record, quint32(data.size()));
    put32(record, quint32(frame.size()));
    record += data;
    return m_file.write(record) == record.size();
}

bool PcapWriter::flush()
{
    return m_file.flush();
}

void PcapWriter::close()
{
    m_file.close();
}
