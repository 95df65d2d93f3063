#include "setramptask.h"

#include "devicetask_p.h"
#include "taskparams_p.h"
#include "vrnmessage.h"

#include <QState>

class SetRampTaskPrivate : public DeviceTaskPrivate
{
public:
    SetRampTaskPrivate(int startStatus, int startValue, int stopStatus, int stopValue, int ramps)
        : startStatus(startStatus != 0)
        , startValue(static_cast<unsigned char>(startValue))
        , stopStatus(stopStatus != 0)
        , stopValue(static_cast<unsigned char>(stopValue))
        , both(ramps == 0)
    {
    }
    const bool startStatus;
    const unsigned char startValue;
    const bool stopStatus;
    const unsigned char stopValue;
    const bool both;
};

namespace {
int param(const Job& job, const char* name)
{
    return TaskParams::toInt(job, name, "SetRampTask");
}
} // namespace

SetRampTask::SetRampTask(Worker&, QObject* object, const Job& job, QObject* parent)
    : ObjectTask(object, job, parent,
                 new SetRampTaskPrivate(param(job, "softStartStatus"), param(job, "softStartValue"),
                                        param(job, "softStopStatus"), param(job, "softStopValue"),
                                        param(job, "ramps")))
{
    buildMachine();
}

SetRampTask::SetRampTask(bool startStatus, unsigned char startValue, bool stopStatus, unsigned char stopValue,
                         int ramps, QObject* object, QObject* parent)
    : ObjectTask(QStringLiteral("SetRampJob"), object, parent,
                 new SetRampTaskPrivate(startStatus, startValue, stopStatus, stopValue, ramps))
{
    buildMachine();
}

SetRampTask::~SetRampTask() = default;

void SetRampTask::buildMachine()
{
    QState* guardBoth = addStep(&SetRampTask::guardBothOrSingle);
    QState* guardStop = addStep(&SetRampTask::guardStopBehaviour);
    QState* disBoth = addStep(&SetRampTask::disableBoth);
    QState* enBoth = addStep(&SetRampTask::enableBoth);
    QState* disStart = addStep(&SetRampTask::disableStart);
    QState* enStart = addStep(&SetRampTask::enableStart);
    QState* disStop = addStep(&SetRampTask::disableStop);
    QState* enStop = addStep(&SetRampTask::enableStop);
    QState* valBoth = addStep(&SetRampTask::setValueBoth);
    QState* valStart = addStep(&SetRampTask::setValueStart);
    QState* valStop = addStep(&SetRampTask::setValueStop);
    QAbstractState* done = addEnd(&SetRampTask::end);

    guardBoth->addTransition(this, &SetRampTask::enableBothSignal, enBoth);
    guardBoth->addTransition(this, &SetRampTask::disableBothSignal, disBoth);
    guardBoth->addTransition(this, &SetRampTask::enableStartSignal, enStart);
    guardBoth->addTransition(this, &SetRampTask::disableStartSignal, disStart);
    guardStop->addTransition(this, &SetRampTask::enableStopSignal, enStop);
    guardStop->addTransition(this, &SetRampTask::disableStopSignal, disStop);
    leaveOnReply(enBoth, valBoth);
    leaveOnReply(valBoth, done);
    leaveOnReply(disBoth, done);
    leaveOnReply(enStart, valStart);
    leaveOnReply(valStart, guardStop);
    leaveOnReply(disStart, guardStop);
    leaveOnReply(enStop, valStop);
    leaveOnReply(valStop, done);
    leaveOnReply(disStop, done);
}

void SetRampTask::guardBothOrSingle()
{
    Q_D(SetRampTask);
    // The first state: the object is checked here, before any request.
    if (!checkObject())
        return;
    if (d->both)
        d->startStatus ? Q_EMIT enableBothSignal() : Q_EMIT disableBothSignal();
    else
        d->startStatus ? Q_EMIT enableStartSignal() : Q_EMIT disableStartSignal();
}

void SetRampTask::guardStopBehaviour()
{
    d_func()->stopStatus ? Q_EMIT enableStopSignal() : Q_EMIT disableStopSignal();
}

void SetRampTask::disableBoth() { send(DTSMotor::SoftDisable, DTSMotor::RampsBoth, 0); }
void SetRampTask::enableBoth() { send(DTSMotor::SoftEnable, DTSMotor::RampsBoth, 0); }
void SetRampTask::disableStart() { send(DTSMotor::SoftDisable, DTSMotor::RampStart, 0); }
void SetRampTask::enableStart() { send(DTSMotor::SoftEnable, DTSMotor::RampStart, 0); }
void SetRampTask::disableStop() { send(DTSMotor::SoftDisable, DTSMotor::RampStop, 0); }
void SetRampTask::enableStop() { send(DTSMotor::SoftEnable, DTSMotor::RampStop, 0); }
void SetRampTask::setValueBoth() { send(DTSMotor::SoftSetValue, DTSMotor::RampsBoth, d_func()->startValue); }
void SetRampTask::setValueStart() { send(DTSMotor::SoftSetValue, DTSMotor::RampStart, d_func()->startValue); }
void SetRampTask::setValueStop() { send(DTSMotor::SoftSetValue, DTSMotor::RampStop, d_func()->stopValue); }

void SetRampTask::send(DTSMotor::SoftStartStopFunction function, DTSMotor::SoftStartStopRamps ramps,
                       unsigned char value)
{
    if (checkObject())
        watch(node()->setMotorSoftStartStop(function, ramps, value));
}

void SetRampTask::onReply(const VRNMessage& reply)
{
    acceptAck(reply);
}

void SetRampTask::end()
{
    // The last state only finishes the task: what the ramps now are is
    // learnt by reading them (GetRampJob), never assumed here.
    finish();
}
