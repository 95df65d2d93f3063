#include "setgroupsjob.h"
#include "setgroupsjob_p.h"

SetGroupsJob::SetGroupsJob(QObject* parent)
    : QmlJob(parent)
    , d_ptr(new SetGroupsJobPrivate)
{
}

SetGroupsJob::~SetGroupsJob() = default;

QVariantList SetGroupsJob::groups() const
{
    return d_func()->groups;
}

void SetGroupsJob::setGroups(const QVariantList& groups)
{
    Q_D(SetGroupsJob);
    d->groups = groups;
    Q_EMIT groupsChanged(groups);
}
