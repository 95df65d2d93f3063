#ifndef MOTORBLUPDATETASK_H
#define MOTORBLUPDATETASK_H

#include "firmwaretask.h"
#include "motorblstates.h"

class MotorBLUpdateTaskPrivate;

/// Updates a motor's firmware through its bootloader: for a motor stuck in
/// the bootloader after a power loss in the middle of an update (it answers
/// nothing else), or to force an update. Runs the steps of `MotorBLStates`
/// with the bootloader's own frames (`MotorBL`); package, retries and
/// progress as `FirmwareTask` says.
///
/// A write the motor refuses as damaged is sent again (a retry); a write
/// the motor expected at another offset goes on from the offset it names.
/// Any other status ends the task with "Bootloader refused: <status>".
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
    void onReply(const VRNMessage& reply) override;
    quint8 expectedReply() const override;

private:
    void enterStep(MotorBLStates::State step);
    Q_DECLARE_PRIVATE(MotorBLUpdateTask)
};

#endif // MOTORBLUPDATETASK_H
