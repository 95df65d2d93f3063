#include "getfwversionjob.h"

GetFwVersionJob::GetFwVersionJob(QObject* parent)
    : QmlJob(parent)
{
}

GetFwVersionJob::~GetFwVersionJob() = default;
