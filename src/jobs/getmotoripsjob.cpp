#include "getmotoripsjob.h"

GetMotorIpsJob::GetMotorIpsJob(QObject* parent)
    : QmlJob(parent)
{
}

GetMotorIpsJob::~GetMotorIpsJob() = default;
