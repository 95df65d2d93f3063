#ifndef SETRAMPTASK_H
#define SETRAMPTASK_H

#include "objecttask.h"

class SetRampTaskPrivate;

/// Sets the soft start and soft stop of a DC motor, one
/// `setMotorSoftStartStop(function, ramps, value)` request per state. Job
/// properties: "softStartStatus", "softStartValue", "softStopStatus",
/// "softStopValue" (statuses 0 off, else on; values 0..100) and "ramps"
/// (0: both ramps take the start's status and value; any other value: start
/// and stop are set each on its own).
///
/// The graph:
///
///     guardBothOrSingle  --enableBothSignal-->   enableBoth (1,0,0) -> setValueBoth (2,0,start) -> end
///                        --disableBothSignal-->  disableBoth (0,0,0) -> end
///                        --enableStartSignal-->  enableStart (1,1,0) -> setValueStart (2,1,start) -> guardStopBehaviour
///                        --disableStartSignal--> disableStart (0,1,0) -> guardStopBehaviour
///     guardStopBehaviour --enableStopSignal-->   enableStop (1,2,0) -> setValueStop (2,2,stop) -> end
///                        --disableStopSignal-->  disableStop (0,2,0) -> end
///
/// A request state moves on when its acknowledgement has passed the checks;
/// a disabled ramp keeps the value it had. When all requests are
/// acknowledged the local record takes the statuses (and the values of the
/// ramps enabled) and the task finishes.
class SetRampTask : public ObjectTask<DCMotorConfigData>
{
    Q_OBJECT

public:
    SetRampTask(Worker& worker, QObject* object, const Job& job, QObject* parent = nullptr);
    SetRampTask(bool startStatus, unsigned char startValue, bool stopStatus, unsigned char stopValue, int ramps,
                QObject* object, QObject* parent = nullptr);
    ~SetRampTask() override;

Q_SIGNALS:
    void enableBothSignal();
    void disableBothSignal();
    void enableStartSignal();
    void disableStartSignal();
    void enableStopSignal();
    void disableStopSignal();

public Q_SLOTS:
    void guardBothOrSingle();
    void guardStopBehaviour();
    void disableBoth();
    void enableBoth();
    void disableStart();
    void enableStart();
    void disableStop();
    void enableStop();
    void setValueBoth();
    void setValueStart();
    void setValueStop();
    void end();

protected:
    void start() override {}
    void onReply(const VRNMessage& reply) override;

private:
    void buildMachine();
    void send(DTSMotor::SoftStartStopFunction function, DTSMotor::SoftStartStopRamps ramps, unsigned char value);
    Q_DECLARE_PRIVATE(SetRampTask)
};

#endif // SETRAMPTASK_H
