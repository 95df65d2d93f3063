// Internal header of VRNListenerModel: not part of the library's API.
#ifndef VRNLISTENERMODEL_P_H
#define VRNLISTENERMODEL_P_H

#include "vrnlistenermodel.h"

#include <QByteArray>
#include <QPointer>

#include <deque>

class VRNListenerModelPrivate
{
public:
    /// One recorded frame, kept small: a session holds thousands of them.
    struct Frame
    {
        qint64 msecs = 0;
        int timeOfDay = 0; ///< local milliseconds since midnight, for display
        QByteArray bytes; ///< payload of a valid frame; every byte of an invalid one
        quint32 src = 0;
        quint32 dst = 0;
        quint8 cmd = 0;
        quint8 dstType = 0;
        quint8 direction = 0;
        bool valid = false;
        bool unmatched = false; ///< a valid frame received that answered no request
    };

    virtual ~VRNListenerModelPrivate() = default;

    Frame decode(VRNListenerModel::Direction direction, const BusMessage& message);
    /// Local time of day of `msecs`; the zone's offset is looked up at most
    /// once a minute, as a lookup costs more than the rest of a frame.
    int localTimeOfDay(qint64 msecs);
    QVariant display(const Frame& f, int column) const;
    QVariant roleData(const Frame& f, int role) const;
    /// Drops the oldest rows until at most `max` remain.
    void trimTo(int max);
    /// Rows dropped together when a new frame finds the model full.
    int dropChunk() const { return qMax(1, maxFrames / 100); }

    VRNListenerModel* q_ptr = nullptr;
    QPointer<VRNBus> bus;
    std::deque<Frame> frames;
    int maxFrames = VRNListenerModel::DefaultMaxFrames;
    qint64 offsetCheckedAt = 0;
    qint64 utcOffsetMs = 0;
};

#endif // VRNLISTENERMODEL_P_H
