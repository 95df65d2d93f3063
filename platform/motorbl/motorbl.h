#ifndef MOTORBL_H
#define MOTORBL_H

#include "dtsstdproxy.h"

/// The motor bootloader protocol, as seen from the tool: the frames a node
/// answers while it runs its bootloader (after a power loss in the middle of
/// an update, or when told to enter it), in the usual frame layout with
/// their own command codes (PROTOCOL.md, "Bootloader"). Every request is
/// answered with one status frame (0x7D): a status and a 24-bit value.
///
/// The order is fixed: enter, erase (announces size and version), write
/// from offset 0 upwards, verify (the digest of what was written), exit (the
/// node starts the new application). A node that lost power answers
/// nothing but these frames until it exits with a verified image.
class MotorBL : public DTSStdProxy
{
    Q_OBJECT
public:
    enum Status : quint8 {
        Ok = 0,
        ChecksumError = 1,  ///< a write's checksum disagrees; value: offset expected
        WrongKind = 2,      ///< the node is not of the type named at enter
        VerifyFailed = 3,   ///< the written image fails the digest
        OutOfOrder = 4,     ///< not erased, or a write not at the offset expected (value)
        NoImage = 5         ///< exit without a verified image: the node stays in the bootloader
    };
    Q_ENUM(Status)

    enum : int { MaxWriteSize = 16, DigestSize = 16 };

    explicit MotorBL(VRN::Addr addr = 0, Bus* bus = nullptr, QObject* parent = nullptr);
    ~MotorBL() override;

    /// Enters the bootloader (from the application too) for an image of node type `nodeType`.
    BusPendingCall enter(quint8 nodeType);
    /// Erases the application area for an image of `size` bytes of `version`.
    BusPendingCall erase(quint32 size, const AppVersion& version);
    /// Writes `data` (1..16 bytes) at `offset`, with its checksum.
    BusPendingCall write(quint32 offset, const QByteArray& data);
    BusPendingCall verify(const QByteArray& digest);
    BusPendingCall exit();

    bool statusReply(const BusMessage& msg, Status& status, quint32& value) const;

    /// CRC-16/CCITT of the offset (three bytes, high first) and the data.
    static quint16 writeChecksum(quint32 offset, const QByteArray& data);
    static QString toString(Status status);
};

#endif // MOTORBL_H
