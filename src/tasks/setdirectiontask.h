#ifndef SETDIRECTIONTASK_H
#define SETDIRECTIONTASK_H

#include "writetask.h"

class SetDirectionTaskPrivate;

/// Sets the motor's turning direction (job property "direction", 0 standard,
/// 1 reversed); on the acknowledgement the local record takes it.
class SetDirectionTask : public WriteTask<MotorConfigData>
{
    Q_OBJECT

public:
    SetDirectionTask(Worker& worker, QObject* object, const Job& job, QObject* parent = nullptr);
    SetDirectionTask(DTSMotor::TurnDirection direction, QObject* object, QObject* parent = nullptr);
    ~SetDirectionTask() override;

protected:
    BusPendingCall request(DTSMotorProxy& node) override;
    bool apply(MotorConfigData& local) const override;

private:
    Q_DECLARE_PRIVATE(SetDirectionTask)
};

#endif // SETDIRECTIONTASK_H
