#include "groupworker.h"

#include "grouptask.h"
#include "jobregistration.h"

class GroupWorkerPrivate
{
public:
    QList<unsigned int> group;
    int number = 0;
};

GroupWorker::GroupWorker(const QList<unsigned int>& group, int number, QObject* parent)
    : QmlObjectWorker(nullptr, parent)
    , d_ptr(new GroupWorkerPrivate{group, number})
{
    setObjectName(QStringLiteral("GroupWorker#%1").arg(number));
}

GroupWorker::~GroupWorker() = default;

QList<unsigned int> GroupWorker::group() const
{
    return d_func()->group;
}

QVariantList GroupWorker::devices() const
{
    QVariantList out;
    for (unsigned int uuid : d_func()->group)
        out.append(uuid);
    return out;
}

int GroupWorker::count() const
{
    return d_func()->group.size();
}

int GroupWorker::number() const
{
    return d_func()->number;
}

Task* GroupWorker::createTask(const Job& job)
{
    return new GroupTask(*this, job, nullptr);
}

QString GroupWorker::name() const
{
    return objectName();
}

QStringList GroupWorker::jobNames() const
{
    return JobRegistration::names();
}
