#include "firmwaretask.h"
#include "firmwaretask_p.h"

#include "bpkpackage.h"
#include "dts.h"
#include "firmwareloader.h"
#include "stateretry.h"
#include "vrnmessage.h"
#include "vrnstdobject.h"

#include <QStateMachine>
#include <QVariantMap>

FirmwareTask::FirmwareTask(QObject* object, const Job& job, QObject* parent, FirmwareTaskPrivate* dd)
    : DeviceTask(object, job, parent, dd)
{
    Q_D(FirmwareTask);
    d->packagePath = job.property("package").toString();
    d->keyFile = job.property("keyFile").toString();
    bool ok = false;
    const int retries = job.property("retries").toInt(&ok);
    if (ok && retries >= 0)
        d->maxRetries = retries;

    // One try per request; a good answer leaves the retry state and enters
    // it again, so the next request starts from try 1.
    d->machine = new QStateMachine(this);
    d->retry = new StateRetry(d->maxRetries, 0, d->machine);
    d->machine->setInitialState(d->retry);
    d->retry->addTransition(d->retry, &QState::finished, d->retry);
    connect(d->retry, &StateRetry::attempt, this, [this, d](int tryNumber) {
        if (!isRunning())
            return;
        if (tryNumber > 1)
            ++d->retries;
        if (d->readingVersion)
            watch(d->versionProxy->getNodeAppVersion());
        else
            resend();
    });
    connect(d->retry, &StateRetry::failed, this, [this, d](const QString& text) {
        if (d->lastCallError != BusPendingCall::NoError)
            DeviceTask::treatBusPendingCallError(d->lastCallError);
        else
            fail(text);
    });
    connect(this, &Task::finished, d->machine, &QStateMachine::stop);
}

FirmwareTask::~FirmwareTask() = default;

int FirmwareTask::blocksDone() const { return d_func()->done; }
int FirmwareTask::blockCount() const { return d_func()->total; }
int FirmwareTask::retries() const { return d_func()->retries; }
int FirmwareTask::blockSize() const { return d_func()->image.isEmpty() ? 0 : d_func()->manifest.blockSize; }
const QByteArray& FirmwareTask::image() const { return d_func()->image; }
const BpkManifest& FirmwareTask::manifest() const { return d_func()->manifest; }

bool FirmwareTask::hasObject() const
{
    return objectClass().cast(vrnObject());
}

bool FirmwareTask::hasNode() const
{
    return hasObject() && vrnObject()->node();
}

DTSStdProxy::AppVersion FirmwareTask::packageVersion() const
{
    const BpkManifest& m = d_func()->manifest;
    DTSStdProxy::AppVersion version;
    version.major = m.major;
    version.minor = m.minor;
    version.patch = m.patch;
    version.build = m.build;
    return version;
}

int FirmwareTask::nodeType() const
{
    return VRN::getType(vrnObject()->address());
}

VRN::Addr FirmwareTask::nodeAddress() const
{
    return vrnObject()->node()->address();
}

Bus* FirmwareTask::nodeBus() const
{
    return vrnObject()->node()->bus();
}

void FirmwareTask::start()
{
    Q_D(FirmwareTask);
    BpkKeys keys;
    QString error;
    if (!d->keyFile.isEmpty()) {
        if (!BpkKeys::load(d->keyFile, &keys, &error)) {
            fail(error);
            return;
        }
    } else {
        keys = FirmwareLoader::configuredKeys();
    }
    QString path = d->packagePath;
    if (path.isEmpty()) {
        path = FirmwareLoader::newest(FirmwareLoader::readFolder(FirmwareLoader::configuredPath(), keys.verifyKey),
                                      nodeType()).path();
        if (path.isEmpty()) {
            fail(tr("No firmware package fits this device"));
            return;
        }
    }
    const BpkPackage package = BpkPackage::load(path);
    d->image = package.image(keys, &error);
    if (d->image.isEmpty()) {
        fail(tr("Package %1 refused: %2").arg(path, error));
        return;
    }
    d->manifest = package.manifest();
    d->packagePath = path;
    if (!d->manifest.fits(nodeType())) {
        fail(tr("Package %1 refused: made for %2, not for this device (%3)")
                 .arg(path, package.manifest().nodeTypes.isEmpty() ? QString()
                                                                   : BpkManifest::nodeTypeName(d->manifest.nodeTypes.first()),
                      BpkManifest::nodeTypeName(nodeType())));
        return;
    }
    d->readingVersion = false;
    setProgress(0, d->manifest.blockCount());
    begin();
    d->machine->start(); // the retry state's first try sends begin()'s request
}

void FirmwareTask::advance()
{
    d_func()->retry->succeed();
}

void FirmwareTask::refused(const QString& text)
{
    Q_D(FirmwareTask);
    d->lastCallError = BusPendingCall::NoError;
    d->retry->failTry(text, true);
}

void FirmwareTask::setProgress(int done, int total)
{
    Q_D(FirmwareTask);
    if (done == d->done && total == d->total)
        return;
    d->done = done;
    d->total = total;
    emit progress(done, total);
}

void FirmwareTask::treatBusPendingCallError(const BusPendingCall::Error& error)
{
    Q_D(FirmwareTask);
    if (error != BusPendingCall::TimeoutError) {
        DeviceTask::treatBusPendingCallError(error);
        return;
    }
    // A lost frame or a lost answer: the same request again. The text is
    // the one the task ends with when this was the last try.
    d->lastCallError = error;
    d->retry->failTry(translated(QT_TR_NOOP("Timeout error")), true);
}

void FirmwareTask::readVersion()
{
    Q_D(FirmwareTask);
    d->readingVersion = true;
    d->versionProxy.reset(new DTSUpdateProxy(nodeAddress(), nodeBus()));
    advance();
}

bool FirmwareTask::onVersionReply(const VRNMessage& reply)
{
    Q_D(FirmwareTask);
    if (!d->readingVersion)
        return false;
    DTSStdProxy::AppVersion version;
    if (!d->versionProxy->getNodeAppVersionReply(reply, version)) {
        failUnexpected(reply);
        return true;
    }
    const BpkManifest& m = d->manifest;
    if (version != packageVersion()) {
        fail(tr("Version after the update is %1, not %2").arg(version.toString(), m.versionString()));
        return true;
    }
    recordVersion(version);
    vrnObject()->setIsUpToDate(VRNObject::UpToDate);
    setResult(QVariantMap{{QStringLiteral("version"), m.versionString()},
                          {QStringLiteral("blocks"), m.blockCount()},
                          {QStringLiteral("retries"), d->retries},
                          {QStringLiteral("package"), d->packagePath}});
    finish();
    return true;
}

void FirmwareTask::recordVersion(const DTSStdProxy::AppVersion& version)
{
    auto* node = qobject_cast<VRNStdObject*>(vrnObject());
    if (!node)
        return;
    // The device runs the new image: both records show it.
    StdConfigData proxy = node->proxyStdConfig();
    proxy.data().appVersion = version;
    node->updateProxyStdConfig(proxy);
    StdConfigData local = node->localStdConfig();
    local.data().appVersion = version;
    node->updateLocalStdConfig(local, false);
}
