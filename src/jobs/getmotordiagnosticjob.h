#ifndef GETMOTORDIAGNOSTICJOB_H
#define GETMOTORDIAGNOSTICJOB_H

#include "qmljob.h"

/// Reads a motor's life counters (moves, revolutions, thermal protections, obstacles, power cuts, resets, encoder errors) into its runtime record.
class GetMotorDiagnosticJob : public QmlJob
{
    Q_OBJECT

public:
    Q_INVOKABLE explicit GetMotorDiagnosticJob(QObject* parent = nullptr);
    ~GetMotorDiagnosticJob() override;

private:
    Q_DISABLE_COPY(GetMotorDiagnosticJob)
};

#endif // GETMOTORDIAGNOSTICJOB_H
