#include "getrampjob.h"

GetRampJob::GetRampJob(QObject* parent)
    : QmlJob(parent)
{
}

GetRampJob::~GetRampJob() = default;
