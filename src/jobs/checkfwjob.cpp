#include "checkfwjob.h"

CheckFwJob::CheckFwJob(QObject* parent)
    : QmlJob(parent)
{
}

CheckFwJob::~CheckFwJob() = default;
