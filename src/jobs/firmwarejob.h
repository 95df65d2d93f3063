#ifndef FIRMWAREJOB_H
#define FIRMWAREJOB_H

#include "qmljob.h"

#include <QScopedPointer>

class FirmwareJobPrivate;

/// The parameters of a firmware update, shared by the standard and the
/// bootloader update jobs.
class FirmwareJob : public QmlJob
{
    Q_OBJECT
    /// Path of the package; empty: the newest package of the catalogue that fits the device.
    Q_PROPERTY(QString package READ package WRITE setPackage NOTIFY packageChanged)
    /// Key file that verifies and decrypts the package; empty: the setting "firmwareKeyFile".
    Q_PROPERTY(QString keyFile READ keyFile WRITE setKeyFile NOTIFY keyFileChanged)
    /// Times one request is sent again in a row before the update gives up (default 5).
    Q_PROPERTY(int retries READ retries WRITE setRetries NOTIFY retriesChanged)
    /// Sends the package even when the device already runs its version.
    Q_PROPERTY(bool force READ force WRITE setForce NOTIFY forceChanged)
    /// Sends a package older than the device's firmware; refused otherwise.
    Q_PROPERTY(bool allowDowngrade READ allowDowngrade WRITE setAllowDowngrade NOTIFY allowDowngradeChanged)
    /// Blocks the device took so far in the current run, and blocks of the package (0 before it is loaded).
    Q_PROPERTY(int blocksDone READ blocksDone NOTIFY progress)
    Q_PROPERTY(int blockCount READ blockCount NOTIFY progress)

public:
    ~FirmwareJob() override;

    QString package() const;
    void setPackage(const QString& package);
    QString keyFile() const;
    void setKeyFile(const QString& keyFile);
    int retries() const;
    void setRetries(int retries);
    bool force() const;
    void setForce(bool force);
    bool allowDowngrade() const;
    void setAllowDowngrade(bool allow);
    int blocksDone() const;
    int blockCount() const;

Q_SIGNALS:
    /// After each block the device took, and once when a run starts.
    void progress(int done, int total);
    void packageChanged(const QString& package);
    void keyFileChanged(const QString& keyFile);
    void retriesChanged(int retries);
    void forceChanged(bool force);
    void allowDowngradeChanged(bool allow);

protected:
    explicit FirmwareJob(QObject* parent);

private:
    QScopedPointer<FirmwareJobPrivate> d_ptr;
    Q_DECLARE_PRIVATE(FirmwareJob)
    Q_DISABLE_COPY(FirmwareJob)
};

#endif // FIRMWAREJOB_H
