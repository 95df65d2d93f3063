#ifndef FUZZINPUT_H
#define FUZZINPUT_H

#include "vrnmessage.h"

#include <QByteArray>
#include <QtGlobal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

/// Reads a fuzzer's input front to back; past the end every read gives 0.
class FuzzInput
{
public:
    FuzzInput(const uint8_t* data, size_t size) : m_data(data), m_size(size) {}

    bool atEnd() const { return m_pos >= m_size; }
    quint8 byte() { return atEnd() ? 0 : m_data[m_pos++]; }
    quint32 u24() { return (quint32(byte()) << 16) | (quint32(byte()) << 8) | byte(); }
    /// Up to `count` bytes.
    QByteArray bytes(size_t count)
    {
        const size_t n = qMin(count, m_size - qMin(m_pos, m_size));
        const QByteArray out(reinterpret_cast<const char*>(m_data + m_pos), int(n));
        m_pos += n;
        return out;
    }
    QByteArray rest() { return bytes(m_size); }
    /// The rest; with an odd first byte its checksum is made right, so that
    /// a decoder gets past it to the payload.
    QByteArray restChecked()
    {
        QByteArray out = rest();
        if (out.size() >= VRNMessage::MinFrameSize && (quint8(out[0]) & 1)) {
            const int n = out.size();
            const quint16 crc = VRNMessage::checksum(out.constData(), n - 2);
            out[n - 2] = char(crc >> 8);
            out[n - 1] = char(crc & 0xFF);
        }
        return out;
    }

    /// A well-formed frame whose fields come from the input: one flag byte
    /// (ack, group, source is `self`), the code, source and destination, and
    /// a payload of up to the largest size, so that the fuzzer reaches the
    /// code behind the checksum. `self` 0 takes the source from the input.
    VRNMessage frame(VRN::Addr self, quint32 dst)
    {
        const quint8 flags = byte();
        const quint8 cmd = byte();
        VRN::Addr src = self;
        if (!(flags & 0x04) || self == 0)
            src = (VRN::Addr(byte()) << 24) | u24();
        if (flags & 0x08)
            dst = u24();
        const VRN::AddrType type = (flags & 0x02) ? VRN::AddrGroup
            : (flags & 0x10)                      ? VRN::AddrBroadcast
                                                  : VRN::AddrNode;
        VRNMessage m(cmd, src, dst, type, bytes(byte() % (VRNMessage::MaxPayloadSize + 1)));
        m.setAck(flags & 0x01);
        m.prepare();
        return m;
    }

private:
    const uint8_t* m_data;
    size_t m_size;
    size_t m_pos = 0;
};

/// Ends the run as a crash when a property of the code under test fails.
#define FUZZ_CHECK(cond) \
    do { \
        if (!(cond)) { \
            fprintf(stderr, "check failed: %s (%s:%d)\n", #cond, __FILE__, __LINE__); \
            abort(); \
        } \
    } while (0)

/// Silences the log lines of the code under test (they only slow a run).
inline void fuzzQuiet()
{
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
}

#endif // FUZZINPUT_H
