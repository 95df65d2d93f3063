#include "getpositionjob.h"

GetPositionJob::GetPositionJob(QObject* parent)
    : QmlJob(parent)
{
}

GetPositionJob::~GetPositionJob() = default;
