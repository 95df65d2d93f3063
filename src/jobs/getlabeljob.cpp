#include "getlabeljob.h"

GetLabelJob::GetLabelJob(QObject* parent)
    : QmlJob(parent)
{
}

GetLabelJob::~GetLabelJob() = default;
