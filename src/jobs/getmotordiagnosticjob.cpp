#include "getmotordiagnosticjob.h"

GetMotorDiagnosticJob::GetMotorDiagnosticJob(QObject* parent)
    : QmlJob(parent)
{
}

GetMotorDiagnosticJob::~GetMotorDiagnosticJob() = default;
