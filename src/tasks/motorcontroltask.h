#ifndef MOTORCONTROLTASK_H
#define MOTORCONTROLTASK_H

#include "writetask.h"

class MotorControlTaskPrivate;

/// Moves or stops the motor. Job properties "command" (one byte) and "value"
/// (16 bits) choose the request; its last argument is always 0xFF:
///
/// | command | request |
/// |---|---|
/// | 0, 1 | `ctrlMoveTo(command, 0)`: down or up end limit |
/// | 2, 3, 4 | `ctrlMoveTo(command, value)`: intermediate position, pulses, percent |
/// | 10, 11 | `ctrlMoveOf(command - 10, 0)`: next intermediate position down or up |
/// | 255 | `ctrlStop()` |
///
/// Any other command sends nothing and the task stays running until its job
/// is aborted: callers check the command first. The acknowledgement
/// finishes; a missing object or node at the request is reported as
/// "VRNMotorObject has been destroyed" / "VRNMotorObject has no proxy",
/// untranslated; other call errors as "MotorControlTask failed".
class MotorControlTask : public WriteTask<MotorConfigData>
{
    Q_OBJECT

public:
    enum Command : quint8 {
        ToDownLimit = 0,
        ToUpLimit = 1,
        ToIP = 2,
        ToPulse = 3,
        ToPercent = 4,
        NextIPDown = 10,
        NextIPUp = 11,
        Stop = 255
    };

    MotorControlTask(Worker& worker, QObject* object, const Job& job, QObject* parent = nullptr);
    MotorControlTask(unsigned char command, unsigned short value, QObject* object, QObject* parent = nullptr);
    ~MotorControlTask() override;

    /// True for the commands of the table (those that send a request).
    static bool isKnownCommand(int command);

protected:
    MotorControlTask(QObject* object, const Job& job, QObject* parent, MotorControlTaskPrivate* dd);
    MotorControlTask(const QString& jobName, QObject* object, QObject* parent, MotorControlTaskPrivate* dd);

    bool checkRequestStep() override;
    void start() override;
    QString failedText() const override;

private:
    Q_DECLARE_PRIVATE(MotorControlTask)
};

#endif // MOTORCONTROLTASK_H
