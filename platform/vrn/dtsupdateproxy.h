#ifndef DTSUPDATEPROXY_H
#define DTSUPDATEPROXY_H

#include "dtsstdproxy.h"

/// The firmware update a node's application carries out itself (the
/// standard update): begin, blocks, end, then the version reads back the
/// new image. Every kind of node answers it; the frames are in PROTOCOL.md.
///
/// A node keeps the blocks it has acknowledged: a begin for the same image
/// (same size, version and image identifier) answers with the block to go on
/// from, so an interrupted update resumes where it stopped.
///
///     watch(proxy->beginUpdate(type, size, 16, version, digest.left(8)));
///     ... getUpdateReply(reply, next, count) -> sendBlock(next, image.mid(next * 16, 16)) ...
///     watch(proxy->endUpdate(digest));
class DTSUpdateProxy : public DTSStdProxy
{
    Q_OBJECT
public:
    enum : int { MaxBlockSize = 16, ImageIdSize = 8, DigestSize = 16 };

    explicit DTSUpdateProxy(VRN::Addr addr = 0, Bus* bus = nullptr, QObject* parent = nullptr);
    ~DTSUpdateProxy() override;

    /// Enters update mode for an image of `size` bytes sent in blocks of
    /// `blockSize`, built for node type `nodeType`, of version `version`;
    /// `imageId` (8 bytes) tells images of the same size and version apart.
    BusPendingCall beginUpdate(quint8 nodeType, quint32 size, quint8 blockSize, const AppVersion& version,
                               const QByteArray& imageId);
    /// Block `index` (1..16 bytes), with its checksum.
    BusPendingCall sendBlock(quint16 index, const QByteArray& data);
    /// Ends the update: the node checks the image against `digest` (16
    /// bytes) and switches to it.
    BusPendingCall endUpdate(const QByteArray& digest);

    /// The answer to a begin or a block: the block the node waits for next
    /// and the number of blocks of the image.
    bool getUpdateReply(const BusMessage& msg, quint16& nextBlock, quint16& blockCount) const;

    /// CRC-16/CCITT of the block number (two bytes, high first) and the data.
    static quint16 blockChecksum(quint16 index, const QByteArray& data);
};

#endif // DTSUPDATEPROXY_H
