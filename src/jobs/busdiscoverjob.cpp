#include "busdiscoverjob.h"

#include "task.h"

#include <QVariantList>

BusDiscoverJob::BusDiscoverJob(QObject* parent)
    : QmlJob(parent)
{
}

BusDiscoverJob::~BusDiscoverJob() = default;

QVariantList BusDiscoverJob::answeredNodes() const
{
    QVariantList nodes;
    if (const Task* task = this->task())
        for (unsigned int node : task->property("answeredNodes").value<QList<unsigned int>>())
            nodes << node;
    return nodes;
}
