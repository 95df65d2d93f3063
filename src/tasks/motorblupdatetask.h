#ifndef MOTORBLUPDATETASK_H
#define MOTORBLUPDATETASK_H

#include "firmwaretask.h"
#include "motorblstates.h"

class MotorBLUpdateTaskPrivate;

/// Updates a node's firmware through its bootloader: for a node stuck in
/// the bootloader after a power loss in the middle of an update (it answers
/// nothing else), or to force an update. Runs the steps of `MotorBLStates`
/// with the bootloader's own frames (`MotorBL`); package, retries and
/// progress as `FirmwareTask` says: a node that still runs its application
/// tells its version first and is skipped or refused by the same rules as
/// the standard update. Motors and standard nodes share the
/// bootloader, so the task works on any standard node.
///
/// A write the node refuses as damaged is sent again (a retry); a write
/// the node expected at another offset goes on from the offset it names.
/// Any other status ends the task with "Bootloader refused: <status>".
/// An exit whose answer was lost and that, sent again, meets the new
/// application (which refuses it as unknown) is no failure: the version
/// read back decides. Once the node has entered its bootloader, a failure
/// says that it waits there and how to recover it.
class MotorBLUpdateTask : public FirmwareTask
{
    Q_OBJECT
    Q_PROPERTY(MotorBLStates::State step READ step)

public:
    MotorBLUpdateTask(Worker& worker, QObject* object, const Job& job, QObject* parent = nullptr);
    ~MotorBLUpdateTask() override;

    MotorBLStates::State step() const;

protected:
    MotorBLUpdateTask(QObject* object, const Job& job, QObject* parent);

    const QMetaObject& objectClass() const override;
    void begin() override;
    void resend() override;
    bool probesFirst() const override;
    bool takesNack(const VRNMessage& reply) const override;
    void onReply(const VRNMessage& reply) override;
    quint8 protocolReply() const override;

private:
    void enterStep(MotorBLStates::State step);
    Q_DECLARE_PRIVATE(MotorBLUpdateTask)
};

#endif // MOTORBLUPDATETASK_H
