#include "getmotordiagnostictask.h"

#include "devicetask_p.h"
#include "dts.h"

#include <QState>

class GetMotorDiagnosticTaskPrivate : public DeviceTaskPrivate
{
public:
    /// Filled step by step; reaches the object only at the end.
    MotorDiagnostic diag;
};

GetMotorDiagnosticTask::GetMotorDiagnosticTask(Worker&, QObject* object, const Job& job, QObject* parent)
    : ObjectTask(object, job, parent, new GetMotorDiagnosticTaskPrivate)
{
    buildMachine();
}

GetMotorDiagnosticTask::GetMotorDiagnosticTask(QObject* object, QObject* parent)
    : ObjectTask(QStringLiteral("GetMotorDiagnosticJob"), object, parent, new GetMotorDiagnosticTaskPrivate)
{
    buildMachine();
}

GetMotorDiagnosticTask::~GetMotorDiagnosticTask() = default;

void GetMotorDiagnosticTask::buildMachine()
{
    chainOnReply({addStep(&GetMotorDiagnosticTask::getTotalMoveCount),
                  addStep(&GetMotorDiagnosticTask::getTotalRevCount),
                  addStep(&GetMotorDiagnosticTask::getThermal),
                  addStep(&GetMotorDiagnosticTask::getObstacle),
                  addStep(&GetMotorDiagnosticTask::getPowerCount),
                  addStep(&GetMotorDiagnosticTask::getResetCount),
                  addStep(&GetMotorDiagnosticTask::getEncoderErrCount)},
                 addEnd(&GetMotorDiagnosticTask::end));
}

template <class... Out>
void GetMotorDiagnosticTask::ask(BusPendingCall (DTSMotorProxy::*request)(), quint8 expected,
                                 bool (DTSMotorProxy::*parse)(const BusMessage&, Out&...) const,
                                 bool testNack, Out&... out)
{
    if (checkObject())
        sendStep((node()->*request)(), expected, [this, parse, &out...](const BusMessage& m) {
            return (node()->*parse)(m, out...);
        }, testNack);
}

// The devices answer a NACK only to the revolution, power and reset requests;
// at the other steps one is an unexpected reply like any other.
enum : bool { NoNack = false, Nack = true };

void GetMotorDiagnosticTask::getTotalMoveCount()
{
    MotorDiagnostic& c = d_func()->diag;
    ask(&DTSMotorProxy::diagGetTotalMoveCount, DTS::DiagPostTotalMoveCount,
        &DTSMotorProxy::diagGetTotalMoveCountReply, NoNack, c.totalMoveCount);
}

void GetMotorDiagnosticTask::getTotalRevCount()
{
    MotorDiagnostic& c = d_func()->diag;
    ask(&DTSMotorProxy::diagGetTotalRevCount, DTS::DiagPostTotalRevCount,
        &DTSMotorProxy::diagGetTotalRevCountReply, Nack, c.totalRevCount);
}

void GetMotorDiagnosticTask::getThermal()
{
    MotorDiagnostic& c = d_func()->diag;
    ask(&DTSMotorProxy::diagGetThermalCount, DTS::DiagPostThermalCount,
        &DTSMotorProxy::diagGetThermalCountReply, NoNack, c.thermalCount, c.postThermalMove);
}

void GetMotorDiagnosticTask::getObstacle()
{
    MotorDiagnostic& c = d_func()->diag;
    ask(&DTSMotorProxy::diagGetObstacleCount, DTS::DiagPostObstacleCount,
        &DTSMotorProxy::diagGetObstacleCountReply, NoNack, c.obstacleCount, c.postObstacleMove);
}

void GetMotorDiagnosticTask::getPowerCount()
{
    MotorDiagnostic& c = d_func()->diag;
    ask(&DTSMotorProxy::diagGetPowerCount, DTS::DiagPostPowerCount, &DTSMotorProxy::diagGetPowerCountReply,
        Nack, c.powerCount);
}

void GetMotorDiagnosticTask::getResetCount()
{
    MotorDiagnostic& c = d_func()->diag;
    ask(&DTSMotorProxy::diagGetResetCount, DTS::DiagPostResetCount, &DTSMotorProxy::diagGetResetCountReply,
        Nack, c.resetCount);
}

void GetMotorDiagnosticTask::getEncoderErrCount()
{
    MotorDiagnostic& c = d_func()->diag;
    ask(&DTSMotorProxy::diagGetEncoderErrors, DTS::DiagPostEncoderErrors,
        &DTSMotorProxy::diagGetEncoderErrorsReply, NoNack, c.encoderErrCount);
}

void GetMotorDiagnosticTask::end()
{
    if (!checkObject())
        return;
    VRNMotorObject& motor = *object();
    RuntimeData runtime = motor.proxyRuntime();
    runtime.data().motorDiagnostic = d_func()->diag;
    motor.updateProxyRuntime(runtime);
    finish();
}

void GetMotorDiagnosticTask::treatBusPendingCallError(const BusPendingCall::Error& error)
{
    // A missing bus is not told apart here: the users know this task's text for it.
    failCall(error, error == BusPendingCall::TimeoutError ? translated(QT_TR_NOOP("Timeout error")) : failedText());
}
