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
        QByteArray bytes; ///< payload of a valid frame; every byte of an invalid one
        quint32 src = 0;
        quint32 dst = 0;
        quint8 cmd = 0;
        quint8 dstType = 0;
        quint8 direction = 0;
        bool valid = false;
    };

    virtual ~VRNListenerModelPrivate() = default;

    static Frame decode(VRNListenerModel::Direction direction, const BusMessage& message);
    QVariant display(const Frame& f, int column) const;
    QVariant roleData(const Frame& f, int role) const;
    /// Drops the oldest rows until at most `max` remain.
    void trimTo(int max);

    VRNListenerModel* q_ptr = nullptr;
    QPointer<VRNBus> bus;
    std::deque<Frame> frames;
    int maxFrames = VRNListenerModel::DefaultMaxFrames;
};

#endif // VRNLISTENERMODEL_P_H
