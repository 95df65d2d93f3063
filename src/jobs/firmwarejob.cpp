#include "firmwarejob.h"
#include "firmwarejob_p.h"

FirmwareJob::FirmwareJob(QObject* parent)
    : QmlJob(parent)
    , d_ptr(new FirmwareJobPrivate)
{
}

FirmwareJob::~FirmwareJob() = default;

QString FirmwareJob::package() const { return d_func()->package; }
QString FirmwareJob::keyFile() const { return d_func()->keyFile; }
int FirmwareJob::retries() const { return d_func()->retries; }

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
