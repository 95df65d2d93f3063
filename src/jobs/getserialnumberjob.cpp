#include "getserialnumberjob.h"

GetSerialNumberJob::GetSerialNumberJob(QObject* parent)
    : QmlJob(parent)
{
}

GetSerialNumberJob::~GetSerialNumberJob() = default;
