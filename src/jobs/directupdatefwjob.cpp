#include "directupdatefwjob.h"

DirectUpdateFwJob::DirectUpdateFwJob(QObject* parent)
    : FirmwareJob(parent)
{
}

DirectUpdateFwJob::~DirectUpdateFwJob() = default;
