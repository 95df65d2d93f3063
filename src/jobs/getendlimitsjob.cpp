#include "getendlimitsjob.h"

GetEndLimitsJob::GetEndLimitsJob(QObject* parent)
    : QmlJob(parent)
{
}

GetEndLimitsJob::~GetEndLimitsJob() = default;
