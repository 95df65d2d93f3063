#include "busdiscoverjob.h"

BusDiscoverJob::BusDiscoverJob(QObject* parent)
    : QmlJob(parent)
{
}

BusDiscoverJob::~BusDiscoverJob() = default;
