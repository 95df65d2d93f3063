#include "setfactorydefaultjob.h"
#include "setfactorydefaultjob_p.h"

SetFactoryDefaultJob::SetFactoryDefaultJob(QObject* parent)
    : QmlJob(parent)
    , d_ptr(new SetFactoryDefaultJobPrivate)
{
}

SetFactoryDefaultJob::~SetFactoryDefaultJob() = default;

int SetFactoryDefaultJob::command() const
{
    return d_func()->command;
}

void SetFactoryDefaultJob::setCommand(int command)
{
    Q_D(SetFactoryDefaultJob);
    if (d->command == command)
        return;
    d->command = command;
    Q_EMIT commandChanged(command);
}
