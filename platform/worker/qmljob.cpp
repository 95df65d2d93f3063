#include "qmljob.h"

QmlJob::QmlJob(QObject* parent)
    : Job(parent)
{
}

QmlJob::~QmlJob() = default;

void QmlJob::setName(const QString& name)
{
    if (name == Job::name())
        return;
    Job::setName(name);
    Q_EMIT nameChanged();
}
