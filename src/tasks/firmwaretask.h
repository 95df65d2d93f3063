#ifndef FIRMWARETASK_H
#define FIRMWARETASK_H

#include "devicetask.h"
#include "dtsstdproxy.h"
#include "vrn.h"

class Bus;

struct BpkManifest;
class FirmwareTaskPrivate;

/// What every firmware update shares, whatever protocol carries the image:
///
/// - the package: the job property "package" (a path), or else the newest
///   package of the catalogue ("firmwarePath") that fits the device's node
///   type. It is verified completely (signature, every chunk, size, digest)
///   and checked to fit the device before the first frame is sent; a
///   package that fails is refused with one line and nothing is sent.
///   Keys come from the job property "keyFile" or the setting
///   "firmwareKeyFile".
/// - retries: every request is a try of one `StateRetry`. A request that
///   times out, or a block the device refuses as damaged, is sent again, up
///   to "retries" times in a row (job property, default 5); the next good
///   answer starts the count again. With the retries spent the task fails
///   with the last error ("Timeout error", or the device's refusal).
///   Subclasses never send themselves: they set up their step and
///   `advance()`, and the try sends it through `resend()`.
/// - progress: `progress(done, total)` after each block the device took.
/// - the end: the version read back must be the package's; the task's
///   result is a map {"version", "blocks", "retries", "package"}.
///
/// Subclasses state the object class they work on and their protocol.
class FirmwareTask : public DeviceTask
{
    Q_OBJECT
    Q_PROPERTY(int blocksDone READ blocksDone NOTIFY progress)
    Q_PROPERTY(int blockCount READ blockCount NOTIFY progress)
    Q_PROPERTY(int retries READ retries)

public:
    ~FirmwareTask() override;

    int blocksDone() const;
    int blockCount() const;
    /// Requests sent again so far.
    int retries() const;
    /// Bytes a block of the package being sent (0 before it is loaded).
    int blockSize() const;

Q_SIGNALS:
    void progress(int done, int total);

protected:
    FirmwareTask(QObject* object, const Job& job, QObject* parent, FirmwareTaskPrivate* dd);

    /// The class of the objects the task updates.
    virtual const QMetaObject& objectClass() const = 0;
    /// Loads, verifies and checks the package, then `begin()`.
    void start() override;
    /// Sets up the first step of the protocol; the image is ready. Its
    /// request goes out through `resend()` as the first try.
    virtual void begin() = 0;
    /// Sends the request of the current step: each try, first or again.
    virtual void resend() = 0;
    /// A good answer came and the caller has set up the next step: its
    /// request goes out as a first try (the count of retries in a row
    /// starts again).
    void advance();
    /// The device refused the current request as damaged: it is tried
    /// again, or, with the retries spent, the task fails with `text`.
    void refused(const QString& text);
    void setProgress(int done, int total);

    bool hasObject() const override;
    bool hasNode() const override;
    void treatBusPendingCallError(const BusPendingCall::Error& error) override;

    /// The verified plain image and its manifest.
    const QByteArray& image() const;
    const BpkManifest& manifest() const;
    /// The package's version, as the protocols send it.
    DTSStdProxy::AppVersion packageVersion() const;
    /// The node's type on the wire, which the package must fit.
    int nodeType() const;

    /// Moves on to reading the version back (a step of its own, retried
    /// like any other) and finishes when it is the package's.
    void readVersion();
    /// Parses the version reply of `readVersion()`; true when handled.
    bool onVersionReply(const VRNMessage& reply);
    /// Writes the version read back into the object's records; the default
    /// writes a standard node's proxy and local version.
    virtual void recordVersion(const DTSStdProxy::AppVersion& version);
    /// The node's address and bus, for the protocol proxy the task talks through.
    VRN::Addr nodeAddress() const;
    Bus* nodeBus() const;

private:
    Q_DECLARE_PRIVATE(FirmwareTask)
};

#endif // FIRMWARETASK_H
