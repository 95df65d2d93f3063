#include "motorblupdatetask.h"

#include "dts.h"
#include "firmwaretask_p.h"
#include "motorbl.h"
#include "vrnmessage.h"
#include "vrnstdobject.h"

class MotorBLUpdateTaskPrivate : public FirmwareTaskPrivate
{
public:
    std::unique_ptr<MotorBL> proxy;
    MotorBLStates::State step = MotorBLStates::Enter;
    quint32 offset = 0;
};

MotorBLUpdateTask::MotorBLUpdateTask(Worker&, QObject* object, const Job& job, QObject* parent)
    : MotorBLUpdateTask(object, job, parent)
{
}

MotorBLUpdateTask::MotorBLUpdateTask(QObject* object, const Job& job, QObject* parent)
    : FirmwareTask(object, job, parent, new MotorBLUpdateTaskPrivate)
{
}

MotorBLUpdateTask::~MotorBLUpdateTask() = default;

MotorBLStates::State MotorBLUpdateTask::step() const
{
    return d_func()->step;
}

const QMetaObject& MotorBLUpdateTask::objectClass() const
{
    return VRNStdObject::staticMetaObject;
}

void MotorBLUpdateTask::begin()
{
    Q_D(MotorBLUpdateTask);
    d->proxy.reset(new MotorBL(nodeAddress(), nodeBus()));
    d->offset = 0;
    d->step = MotorBLStates::Enter;
}

void MotorBLUpdateTask::enterStep(MotorBLStates::State step)
{
    d_func()->step = step;
    if (step == MotorBLStates::ReadVersion)
        readVersion();
    else
        advance();
}

void MotorBLUpdateTask::resend()
{
    Q_D(MotorBLUpdateTask);
    const BpkManifest& m = manifest();
    MotorBL& bl = *d->proxy;
    switch (d->step) {
    case MotorBLStates::Enter:
        watch(bl.enter(quint8(nodeType())));
        break;
    case MotorBLStates::Erase:
        watch(bl.erase(quint32(m.size), packageVersion()));
        break;
    case MotorBLStates::Write:
        watch(bl.write(d->offset, image().mid(int(d->offset), m.blockSize)));
        break;
    case MotorBLStates::Verify:
        watch(bl.verify(m.digest));
        break;
    case MotorBLStates::Exit:
        watch(bl.exit());
        break;
    case MotorBLStates::ReadVersion:
        break; // the version request is FirmwareTask's own
    }
}

quint8 MotorBLUpdateTask::protocolReply() const
{
    return DTS::BlPostStatus;
}

bool MotorBLUpdateTask::probesFirst() const
{
    return true;
}

bool MotorBLUpdateTask::takesNack(const VRNMessage& reply) const
{
    return FirmwareTask::takesNack(reply)
        || (d_func()->step == MotorBLStates::Exit && DTS::getNackReply(reply) == DTS::NackUnknownMessage);
}

void MotorBLUpdateTask::onReply(const VRNMessage& reply)
{
    Q_D(MotorBLUpdateTask);
    if (onVersionReply(reply))
        return;
    if (reply.cmd() == DTS::Nack) {
        // Only an exit gets here: its answer was lost and the new
        // application refuses the exit sent again.
        setInBootloader(false);
        enterStep(MotorBLStates::ReadVersion);
        return;
    }
    MotorBL::Status status = MotorBL::Ok;
    quint32 value = 0;
    if (!d->proxy->statusReply(reply, status, value)) {
        failUnexpected(reply);
        return;
    }
    const BpkManifest& m = manifest();
    if (d->step == MotorBLStates::Write) {
        if (status == MotorBL::ChecksumError) {
            refused(tr("Bootloader refused: %1").arg(MotorBL::toString(status)));
            return;
        }
        // The motor names the offset it waits for: a lost answer is no gap.
        const bool moved = status == MotorBL::Ok || (status == MotorBL::OutOfOrder && value != d->offset);
        if (moved && value <= quint32(m.size)) {
            d->offset = value;
            setProgress(int((value + quint32(m.blockSize) - 1) / quint32(m.blockSize)), m.blockCount());
            if (value < quint32(m.size))
                advance();
            else
                enterStep(MotorBLStates::Verify);
            return;
        }
    }
    if (status != MotorBL::Ok) {
        giveUp(tr("Bootloader refused: %1").arg(MotorBL::toString(status)));
        return;
    }
    if (d->step == MotorBLStates::Enter || d->step == MotorBLStates::Exit)
        setInBootloader(d->step == MotorBLStates::Enter);
    enterStep(MotorBLStates::next(d->step));
}
