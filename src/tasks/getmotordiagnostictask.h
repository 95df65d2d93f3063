#ifndef GETMOTORDIAGNOSTICTASK_H
#define GETMOTORDIAGNOSTICTASK_H

#include "objecttask.h"

class GetMotorDiagnosticTaskPrivate;

/// Reads a motor's life counters, a fixed chain of seven requests:
///
///     getTotalMoveCount -> getTotalRevCount -> getThermal -> getObstacle
///       -> getPowerCount -> getResetCount -> getEncoderErrCount -> end
///
/// Each step checks the object and its node, then sends its request; its
/// reply passes the usual checks and is parsed into the task's own
/// `MotorDiagnostic` before the next step is entered. Only the replies of
/// the total revolution, power and reset requests are tested for a negative
/// acknowledgement ("Nack(%1)"); at the other steps a NACK is merely an
/// "Unexpected reply(6F)". A call error reads "Timeout error" for a timeout
/// and "GetMotorDiagnosticTask failed" for any other, a missing bus
/// included. Nothing is written unless the whole chain succeeds: `end()`
/// stores the counters into a copy of the current proxy runtime record
/// (position and statistics carried over) and finishes.
class GetMotorDiagnosticTask : public ObjectTask<RuntimeData, MotorRuntimeTraits>
{
    Q_OBJECT

public:
    GetMotorDiagnosticTask(Worker& worker, QObject* object, const Job& job, QObject* parent = nullptr);
    explicit GetMotorDiagnosticTask(QObject* object, QObject* parent = nullptr);
    ~GetMotorDiagnosticTask() override;

public Q_SLOTS:
    void getTotalMoveCount();
    void getTotalRevCount();
    void getThermal();
    void getObstacle();
    void getPowerCount();
    void getResetCount();
    void getEncoderErrCount();
    void end();

protected:
    void start() override {}
    void treatBusPendingCallError(const BusPendingCall::Error& error) override;

private:
    void buildMachine();
    /// One step: sends `request` and reads its reply with `parse` into `out`.
    template <class... Out>
    void ask(BusPendingCall (DTSMotorProxy::*request)(), quint8 expected,
             bool (DTSMotorProxy::*parse)(const BusMessage&, Out&...) const, bool testNack, Out&... out);
    Q_DECLARE_PRIVATE(GetMotorDiagnosticTask)
};

#endif // GETMOTORDIAGNOSTICTASK_H
