#include "updatefwjob.h"

UpdateFwJob::UpdateFwJob(QObject* parent)
    : FirmwareJob(parent)
{
}

UpdateFwJob::~UpdateFwJob() = default;
