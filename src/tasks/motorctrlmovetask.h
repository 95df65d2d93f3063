#ifndef MOTORCTRLMOVETASK_H
#define MOTORCTRLMOVETASK_H

#include "motorcontroltask.h"

/// Runs the motor for a time at slow speed: job properties "command" (0
/// down, 1 up) and "duration" (one byte, in steps of 10 ms) give
/// `ctrlMove(command, duration, slow)`; any other command stops the motor.
/// Replies, failures and texts as `MotorControlTask`.
class MotorCtrlMoveTask : public MotorControlTask
{
    Q_OBJECT

public:
    MotorCtrlMoveTask(Worker& worker, QObject* object, const Job& job, QObject* parent = nullptr);
    MotorCtrlMoveTask(unsigned char command, unsigned char duration, QObject* object, QObject* parent = nullptr);
    ~MotorCtrlMoveTask() override;

protected:
    void start() override;

private:
    Q_DECLARE_PRIVATE(MotorControlTask)
};

#endif // MOTORCTRLMOVETASK_H
