#ifndef VRNCONFIG_PCAPWRITER_H
#define VRNCONFIG_PCAPWRITER_H

#include <QFile>
#include <QString>

/// Writes frames to a classic pcap file (microsecond time stamps) with the
/// link type for private use LINKTYPE_USER0 (147): each record is one whole
/// frame of the device network as it was on the wire, checksum included.
/// tools/wireshark/vrn.lua decodes them.
class PcapWriter
{
public:
    static constexpr quint32 LinkType = 147;

    /// Creates (or replaces) `fileName` and writes the file header; false
    /// with the reason in `errorString()`.
    bool open(const QString& fileName);
    /// One frame seen at `epochMicroseconds`; false when the write failed.
    bool write(qint64 epochMicroseconds, const QByteArray& frame);
    bool flush();
    void close();
    QString errorString() const { return m_file.errorString(); }

private:
    QFile m_file;
};

#endif // VRNCONFIG_PCAPWRITER_H
