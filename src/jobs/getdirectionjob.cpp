#include "getdirectionjob.h"

GetDirectionJob::GetDirectionJob(QObject* parent)
    : QmlJob(parent)
{
}

GetDirectionJob::~GetDirectionJob() = default;
