#include "checkfwtask.h"

#include "devicetask_p.h"
#include "bpkkeys.h"
#include "firmwareloader.h"
#include "getfwversiontask.h"
#include "job.h"

#include <QVariantMap>

class CheckFwTaskPrivate : public DeviceTaskPrivate
{
public:
    /// Runs the version read.
    Job job;
};

CheckFwTask::CheckFwTask(Worker&, QObject* object, const Job& job, QObject* parent)
    : ObjectTask(object, job, parent, new CheckFwTaskPrivate)
{
    connect(&d_func()->job, &Job::stateChanged, this, &CheckFwTask::onJobStateChanged);
}

CheckFwTask::~CheckFwTask()
{
    d_func()->job.disconnect(this);
}

void CheckFwTask::abort()
{
    Q_D(CheckFwTask);
    d->job.disconnect(this);
    d->job.detach();
    DeviceTask::abort();
}

void CheckFwTask::start()
{
    Q_D(CheckFwTask);
    d->job.attach(new GetFwVersionTask(object(), nullptr));
    d->job.start();
}

void CheckFwTask::onJobStateChanged(Job::State state)
{
    Q_D(CheckFwTask);
    if (state != Job::Finished || !isRunning())
        return;
    if (d->job.error() != Job::NoError) {
        fail(d->job.errorString());
        return;
    }
    if (!checkObject())
        return;
    VRNStdObject& device = *object();
    const DTSStdProxy::AppVersion version = device.proxyStdConfig().getConstData().appVersion;
    const BpkKeys keys = FirmwareLoader::configuredKeys();
    const FirmwareInfo newest = FirmwareLoader::newest(
        FirmwareLoader::readFolder(FirmwareLoader::configuredPath(), keys.verifyKey),
        FirmwareLoader::nodeTypeOf(device.address()));
    const int order = newest.compareVersion(version.major, version.minor, version.patch, version.build);
    QString status;
    if (!newest.isReadable()) {
        status = QStringLiteral("noPackage");
        device.setIsUpToDate(VRNObject::UpToDateUnknown);
    } else if (order > 0) {
        status = QStringLiteral("updateAvailable");
        device.setIsUpToDate(VRNObject::OutOfDate);
    } else if (order < 0) {
        // Nothing to install, but not the package's version either.
        status = QStringLiteral("deviceNewer");
        device.setIsUpToDate(VRNObject::UpToDate);
    } else {
        status = QStringLiteral("upToDate");
        device.setIsUpToDate(VRNObject::UpToDate);
    }
    setResult(QVariantMap{{QStringLiteral("status"), status},
                          {QStringLiteral("version"), version.toString()},
                          {QStringLiteral("available"), newest.version()},
                          {QStringLiteral("package"), newest.path()}});
    finish();
}
