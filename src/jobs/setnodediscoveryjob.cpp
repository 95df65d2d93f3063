#include "setnodediscoveryjob.h"
#include "setnodediscoveryjob_p.h"

SetNodeDiscoveryJob::SetNodeDiscoveryJob(QObject* parent)
    : QmlJob(parent)
    , d_ptr(new SetNodeDiscoveryJobPrivate)
{
}

SetNodeDiscoveryJob::~SetNodeDiscoveryJob() = default;

bool SetNodeDiscoveryJob::isEnabled() const
{
    return d_func()->enabled;
}

void SetNodeDiscoveryJob::setEnabled(bool enabled)
{
    Q_D(SetNodeDiscoveryJob);
    d->enabled = enabled;
    Q_EMIT enabledChanged(enabled);
}
