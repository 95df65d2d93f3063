#include "getspeedjob.h"

GetSpeedJob::GetSpeedJob(QObject* parent)
    : QmlJob(parent)
{
}

GetSpeedJob::~GetSpeedJob() = default;
