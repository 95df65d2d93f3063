#include "firmwarejob.h"
#include "firmwarejob_p.h"

#include "firmwaretask.h"

namespace {
FirmwareTask* firmwareTask(const Job* job) { return qobject_cast<FirmwareTask*>(job->task()); }
} // namespace

FirmwareJob::FirmwareJob(QObject* parent)
    : QmlJob(parent)
    , d_ptr(new FirmwareJobPrivate)
{
    // The task is attached per run and has loaded its package when the
    // run starts: its progress becomes the job's, for views that only
    // see the job.
    connect(this, &Job::started, this, [this] {
        FirmwareTask* task = firmwareTask(this);
        if (!task)
            return;
        connect(task, &FirmwareTask::progress, this, &FirmwareJob::progress, Qt::UniqueConnection);
        Q_EMIT progress(task->blocksDone(), task->blockCount());
    });
}

FirmwareJob::~FirmwareJob() = default;

QString FirmwareJob::package() const { return d_func()->package; }
QString FirmwareJob::keyFile() const { return d_func()->keyFile; }
int FirmwareJob::retries() const { return d_func()->retries; }
bool FirmwareJob::force() const { return d_func()->force; }
bool FirmwareJob::allowDowngrade() const { return d_func()->allowDowngrade; }

void FirmwareJob::setForce(bool force)
{
    d_func()->force = force;
    Q_EMIT forceChanged(force);
}

void FirmwareJob::setAllowDowngrade(bool allow)
{
    d_func()->allowDowngrade = allow;
    Q_EMIT allowDowngradeChanged(allow);
}

int FirmwareJob::blocksDone() const
{
    const FirmwareTask* task = firmwareTask(this);
    return task ? task->blocksDone() : 0;
}

int FirmwareJob::blockCount() const
{
    const FirmwareTask* task = firmwareTask(this);
    return task ? task->blockCount() : 0;
}

void FirmwareJob::setPackage(const QString& package)
{
    d_func()->package = package;
    Q_EMIT packageChanged(package);
}

void FirmwareJob::setKeyFile(const QString& keyFile)
{
    d_func()->keyFile = keyFile;
    Q_EMIT keyFileChanged(keyFile);
}

void FirmwareJob::setRetries(int retries)
{
    d_func()->retries = retries;
    Q_EMIT retriesChanged(retries);
}
