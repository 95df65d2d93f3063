#include "getgroupsjob.h"

GetGroupsJob::GetGroupsJob(QObject* parent)
    : QmlJob(parent)
{
}

GetGroupsJob::~GetGroupsJob() = default;
