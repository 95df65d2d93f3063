#include "stdupdatetask.h"

#include "dts.h"
#include "firmwaretask_p.h"
#include "vrnmessage.h"

class StdUpdateTaskPrivate : public FirmwareTaskPrivate
{
public:
    enum Phase { Begin, Blocks, End };
    std::unique_ptr<DTSUpdateProxy> proxy;
    Phase phase = Begin;
    int block = 0;
};

StdUpdateTask::StdUpdateTask(Worker&, QObject* object, const Job& job, QObject* parent)
    : StdUpdateTask(object, job, parent)
{
}

StdUpdateTask::StdUpdateTask(QObject* object, const Job& job, QObject* parent)
    : FirmwareTask(object, job, parent, new StdUpdateTaskPrivate)
{
}

StdUpdateTask::~StdUpdateTask() = default;

const QMetaObject& StdUpdateTask::objectClass() const
{
    return VRNObject::staticMetaObject;
}

void StdUpdateTask::begin()
{
    Q_D(StdUpdateTask);
    d->proxy.reset(new DTSUpdateProxy(nodeAddress(), nodeBus()));
    d->phase = StdUpdateTaskPrivate::Begin;
}

void StdUpdateTask::resend()
{
    Q_D(StdUpdateTask);
    const BpkManifest& m = manifest();
    switch (d->phase) {
    case StdUpdateTaskPrivate::Begin:
        watch(d->proxy->beginUpdate(quint8(nodeType()), quint32(m.size), quint8(m.blockSize), packageVersion(),
                                    m.digest.left(DTSUpdateProxy::ImageIdSize)));
        break;
    case StdUpdateTaskPrivate::Blocks:
        watch(d->proxy->sendBlock(quint16(d->block), image().mid(d->block * m.blockSize, m.blockSize)));
        break;
    case StdUpdateTaskPrivate::End:
        watch(d->proxy->endUpdate(m.digest));
        break;
    }
}

bool StdUpdateTask::readsVersionFirst() const
{
    return true;
}

bool StdUpdateTask::takesNack(const VRNMessage& reply) const
{
    return FirmwareTask::takesNack(reply)
        || (d_func()->phase == StdUpdateTaskPrivate::Blocks && DTS::getNackReply(reply) == DTS::NackBlockChecksum);
}

quint8 StdUpdateTask::protocolReply() const
{
    return d_func()->phase == StdUpdateTaskPrivate::End ? quint8(DTS::Ack) : quint8(DTS::PostFwUpdate);
}

void StdUpdateTask::onReply(const VRNMessage& reply)
{
    Q_D(StdUpdateTask);
    if (onVersionReply(reply))
        return;
    if (reply.cmd() == DTS::Nack) {
        // A block the node found damaged: the same block again.
        refused(translated(QT_TR_NOOP("Nack(%1)")).arg(DTS::toString(DTS::getNackReply(reply))));
        return;
    }
    if (d->phase == StdUpdateTaskPrivate::End) {
        if (acceptAck(reply))
            readVersion();
        return;
    }
    quint16 next = 0;
    quint16 count = 0;
    if (!d->proxy->getUpdateReply(reply, next, count) || count != manifest().blockCount()) {
        failUnexpected(reply);
        return;
    }
    setProgress(next, count);
    if (next < count) {
        d->phase = StdUpdateTaskPrivate::Blocks;
        d->block = next;
    } else {
        d->phase = StdUpdateTaskPrivate::End;
    }
    advance();
}
