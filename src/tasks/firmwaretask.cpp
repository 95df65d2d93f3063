#include "firmwaretask.h"
#include "firmwaretask_p.h"

#include "bpkpackage.h"
#include "dts.h"
#include "firmwareloader.h"
#include "motorbl.h"
#include "stateretry.h"
#include "vrnmessage.h"
#include "vrnstdobject.h"

#include <QStateMachine>
#include <QVariantMap>

#include <limits>

namespace {

QString otherKindText(const QString& path, const BpkManifest& m, int nodeType)
{
    return FirmwareTask::tr("Package %1 refused: made for %2, not for this device (%3)")
        .arg(path, m.nodeTypes.isEmpty() ? QString() : BpkManifest::nodeTypeName(m.nodeTypes.first()),
             BpkManifest::nodeTypeName(nodeType));
}

} // namespace

FirmwareTask::FirmwareTask(QObject* object, const Job& job, QObject* parent, FirmwareTaskPrivate* dd)
    : DeviceTask(object, job, parent, dd)
{
    Q_D(FirmwareTask);
    d->packagePath = job.property("package").toString();
    d->packageGiven = !d->packagePath.isEmpty();
    d->keyFile = job.property("keyFile").toString();
    d->force = job.property("force").toBool();
    d->allowDowngrade = job.property("allowDowngrade").toBool();
    bool ok = false;
    const int retries = job.property("retries").toInt(&ok);
    if (ok && retries >= 0)
        d->maxRetries = retries;

    // One try per request; a good answer leaves the retry state and enters
    // it again, so the next request starts from try 1. The counts in a row
    // and the budget are the task's own (tryAgainOrGiveUp()): the state
    // retries whatever the task calls transient.
    d->machine = new QStateMachine(this);
    d->retry = new StateRetry(std::numeric_limits<int>::max() / 2, 0, d->machine);
    d->machine->setInitialState(d->retry);
    d->retry->addTransition(d->retry, &QState::finished, d->retry);
    d->retry->addTransition(this, &FirmwareTask::triesRestart, d->retry);
    connect(d->retry, &StateRetry::attempt, this, [this, d](int tryNumber) {
        if (!isRunning())
            return;
        if (tryNumber > 1)
            ++d->retries;
        switch (d->side) {
        case FirmwareTaskPrivate::VersionBefore:
        case FirmwareTaskPrivate::VersionAfter:
            watch(d->versionProxy->getNodeAppVersion());
            break;
        case FirmwareTaskPrivate::BootloaderProbe:
            watch(d->probe->exit());
            break;
        case FirmwareTaskPrivate::Protocol:
            resend();
            break;
        }
    });
    connect(d->retry, &StateRetry::failed, this, [this, d](const QString& text) {
        if (d->side == FirmwareTaskPrivate::BootloaderProbe) {
            // The probe went unanswered too (or was the first request).
            giveUp(d->probeReason.isEmpty() ? text : d->probeReason);
            return;
        }
        if (d->lastCallError == BusPendingCall::TimeoutError) {
            // Silent: a node cut off in the middle of an update answers
            // only its bootloader's frames. Ask before giving up.
            d->probeReason = text;
            d->side = FirmwareTaskPrivate::BootloaderProbe;
            d->probe.reset(new MotorBL(nodeAddress(), nodeBus()));
            d->timeoutsInRow = 0;
            emit triesRestart(QPrivateSignal());
            return;
        }
        giveUp(text);
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
    return FirmwareLoader::nodeTypeOf(vrnObject()->address());
}

bool FirmwareTask::readsVersionFirst() const
{
    return false;
}

bool FirmwareTask::probesFirst() const
{
    return false;
}

quint8 FirmwareTask::expectedReply() const
{
    switch (d_func()->side) {
    case FirmwareTaskPrivate::VersionBefore:
    case FirmwareTaskPrivate::VersionAfter:
        return DTS::PostNodeAppVersion;
    case FirmwareTaskPrivate::BootloaderProbe:
        return DTS::BlPostStatus;
    case FirmwareTaskPrivate::Protocol:
        break;
    }
    return protocolReply();
}

bool FirmwareTask::takesNack(const VRNMessage& reply) const
{
    Q_UNUSED(reply)
    // An application refuses the bootloader's frames: the probe's answer.
    return d_func()->side == FirmwareTaskPrivate::BootloaderProbe;
}

void FirmwareTask::setInBootloader(bool in)
{
    d_func()->inBootloader = in;
}

void FirmwareTask::giveUp(const QString& text)
{
    Q_D(FirmwareTask);
    if (d->inBootloader) {
        // Final: a standard update run again cannot reach the node.
        fail(tr("%1; device waits in its bootloader: run `vrnconfig firmware recover node:0x%2`")
                 .arg(text)
                 .arg(VRN::getNumber(nodeAddress()), 6, 16, QLatin1Char('0')));
    } else if (d->lastCallError != BusPendingCall::NoError) {
        DeviceTask::treatBusPendingCallError(d->lastCallError);
    } else {
        fail(text);
    }
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
        fail(otherKindText(d->packagePath, d->manifest, nodeType()));
        return;
    }
    d->clock.start();
    setProgress(0, d->manifest.blockCount());
    d->versionProxy.reset(new DTSUpdateProxy(nodeAddress(), nodeBus()));
    if (probesFirst()) {
        d->side = FirmwareTaskPrivate::BootloaderProbe;
        d->probe.reset(new MotorBL(nodeAddress(), nodeBus()));
    } else if (readsVersionFirst()) {
        d->side = FirmwareTaskPrivate::VersionBefore;
    } else {
        d->side = FirmwareTaskPrivate::Protocol;
        begin();
    }
    d->machine->start(); // the retry state's first try sends the first request
}

void FirmwareTask::advance()
{
    Q_D(FirmwareTask);
    d->timeoutsInRow = 0;
    d->refusalsInRow = 0;
    d->retry->succeed();
}

void FirmwareTask::refused(const QString& text)
{
    Q_D(FirmwareTask);
    d->lastCallError = BusPendingCall::NoError;
    ++d->refusalsInRow;
    tryAgainOrGiveUp(text, d->refusalsInRow <= RefusalFactor * d->maxRetries);
}

void FirmwareTask::tryAgainOrGiveUp(const QString& text, bool inRow)
{
    Q_D(FirmwareTask);
    const int budget = d->maxRetries + d->total;
    d->retry->failTry(text, inRow && d->retries < budget);
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
    // the one the task ends with when this was the last try. The probe
    // gets one more try only: the node was silent already.
    d->lastCallError = error;
    ++d->timeoutsInRow;
    const int limit = d->side == FirmwareTaskPrivate::BootloaderProbe ? 1 : d->maxRetries;
    tryAgainOrGiveUp(translated(QT_TR_NOOP("Timeout error")), d->timeoutsInRow <= limit);
}

void FirmwareTask::readVersion()
{
    Q_D(FirmwareTask);
    d->side = FirmwareTaskPrivate::VersionAfter;
    d->versionProxy.reset(new DTSUpdateProxy(nodeAddress(), nodeBus()));
    advance();
}

bool FirmwareTask::onVersionReply(const VRNMessage& reply)
{
    Q_D(FirmwareTask);
    switch (d->side) {
    case FirmwareTaskPrivate::Protocol:
        return false;
    case FirmwareTaskPrivate::VersionBefore:
        onVersionBefore(reply);
        return true;
    case FirmwareTaskPrivate::BootloaderProbe:
        onProbe(reply);
        return true;
    case FirmwareTaskPrivate::VersionAfter:
        break;
    }
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
                          {QStringLiteral("previous"), d->previous},
                          {QStringLiteral("blocks"), m.blockCount()},
                          {QStringLiteral("retries"), d->retries},
                          {QStringLiteral("package"), d->packagePath},
                          {QStringLiteral("ms"), d->clock.elapsed()}});
    finish();
    return true;
}

void FirmwareTask::onVersionBefore(const VRNMessage& reply)
{
    Q_D(FirmwareTask);
    DTSStdProxy::AppVersion version;
    if (!d->versionProxy->getNodeAppVersionReply(reply, version)) {
        failUnexpected(reply);
        return;
    }
    // The node says what it is: the device list may know it only by kind.
    const int answered = VRN::getType(reply.srcAddr());
    if (!d->manifest.fits(answered)) {
        fail(otherKindText(d->packagePath, d->manifest, answered));
        return;
    }
    d->previous = version.toString();
    const int order = d->manifest.compareVersion(version.major, version.minor, version.patch, version.build);
    if (order == 0 && !d->force) {
        skip(tr("already runs %1").arg(d->previous));
        return;
    }
    if (order < 0 && !d->allowDowngrade) {
        if (d->packageGiven) {
            fail(tr("Package %1 refused: version %2 is older than the device's %3")
                     .arg(d->packagePath, d->manifest.versionString(), d->previous));
        } else {
            skip(tr("runs %1, newer than every package (newest %2)").arg(d->previous, d->manifest.versionString()));
        }
        return;
    }
    d->side = FirmwareTaskPrivate::Protocol;
    begin();
    advance();
}

void FirmwareTask::onProbe(const VRNMessage& reply)
{
    Q_D(FirmwareTask);
    MotorBL::Status status = MotorBL::Ok;
    quint32 value = 0;
    // A refusal is an application answering; a bootloader status without a
    // verified image means the node waits there (with one, it has just
    // left for it).
    if (reply.cmd() == DTS::BlPostStatus && d->probe->statusReply(reply, status, value))
        setInBootloader(status == MotorBL::NoImage);
    else if (reply.cmd() == DTS::Nack)
        setInBootloader(false);
    else if (d->probeReason.isEmpty()) {
        failUnexpected(reply);
        return;
    }
    if (!d->probeReason.isEmpty()) {
        giveUp(d->probeReason);
        return;
    }
    // The first request: an application tells its version first, so that
    // a healthy node is updated by the same rules as the standard update.
    if (d->inBootloader) {
        d->side = FirmwareTaskPrivate::Protocol;
        begin();
    } else {
        d->side = FirmwareTaskPrivate::VersionBefore;
    }
    advance();
}

void FirmwareTask::skip(const QString& reason)
{
    Q_D(FirmwareTask);
    setResult(QVariantMap{{QStringLiteral("skipped"), true},
                          {QStringLiteral("version"), d->previous},
                          {QStringLiteral("package"), d->packagePath},
                          {QStringLiteral("reason"), reason}});
    finish();
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
