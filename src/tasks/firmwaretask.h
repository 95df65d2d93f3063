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
///   type (`FirmwareLoader::nodeTypeOf`). It is verified completely
///   (signature, every chunk, size, digest) and checked to fit the device
///   before the first frame is sent; a package that fails is refused with
///   one line and nothing is sent. Keys come from the job property "keyFile"
///   or the setting "firmwareKeyFile".
/// - the device's version first (tasks that `readsVersionFirst()`, and the
///   bootloader update on a node whose application answers the probe): the
///   node must answer from the node type the package names; a device that
///   already runs the package's version is skipped unless the job property
///   "force" is set; a package older than the device's firmware is refused
///   unless "allowDowngrade" is set (without "package", the newest package
///   being older, the device is skipped: nothing older goes out by accident).
/// - retries: every request is a try of one `StateRetry`. A request that
///   times out is sent again up to "retries" times in a row (job property,
///   default 5); a block the device refuses as damaged proves the node is
///   there, so it is sent again up to `RefusalFactor` times as often. Over
///   the whole image the retries stay within a budget of "retries" plus one
///   per block. The next good answer starts the counts in a row again. With
///   a count spent the task fails with the last error ("Timeout error", or
///   the device's refusal). Subclasses never send themselves: they set up
///   their step and `advance()`, and the try sends it through `resend()`.
/// - a device gone silent: before giving up with a timeout the task asks
///   the bootloader (BL_EXIT, which changes nothing on a node without a
///   verified image and is refused by an application); a node that waits in
///   its bootloader makes the failure say so and name the command that
///   recovers it. Such a failure is final: another run of a standard update
///   cannot reach the node.
/// - progress: `progress(done, total)` after each block the device took.
/// - the end: the version read back must be the package's; the task's
///   result is a map {"version", "previous", "blocks", "retries", "package",
///   "ms"}, or for a device skipped {"skipped": true, "version", "package",
///   "reason"}.
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

    /// Refusals in a row allowed for each timeout in a row.
    static constexpr int RefusalFactor = 4;

Q_SIGNALS:
    void progress(int done, int total);
    /// Internal: starts the tries again for the next step after a give-up.
    void triesRestart(QPrivateSignal);

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
    /// Reply code the current protocol step expects.
    virtual quint8 protocolReply() const = 0;
    /// True when the device's version is read (and compared with the
    /// package's) before `begin()`; false by default.
    virtual bool readsVersionFirst() const;
    /// True when the first request is the bootloader probe: a node that
    /// waits in its bootloader begins at once, an application reads its
    /// version first; false by default.
    virtual bool probesFirst() const;
    quint8 expectedReply() const final;
    bool takesNack(const VRNMessage& reply) const override;
    /// The node now waits in its bootloader (or has left it): failures
    /// from here on say how to recover it.
    void setInBootloader(bool in);
    /// A good answer came and the caller has set up the next step: its
    /// request goes out as a first try (the count of retries in a row
    /// starts again).
    void advance();
    /// The device refused the current request as damaged: it is tried
    /// again, or, with the retries spent, the task fails with `text`.
    void refused(const QString& text);
    /// Ends the task with `text`, naming the recovery when the node waits
    /// in its bootloader.
    void giveUp(const QString& text);
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
    /// Handles the replies of the steps `FirmwareTask` sends itself (the
    /// versions before and after, the bootloader probe); true when handled.
    bool onVersionReply(const VRNMessage& reply);
    /// Writes the version read back into the object's records; the default
    /// writes a standard node's proxy and local version.
    virtual void recordVersion(const DTSStdProxy::AppVersion& version);
    /// The node's address and bus, for the protocol proxy the task talks through.
    VRN::Addr nodeAddress() const;
    Bus* nodeBus() const;

private:
    void onVersionBefore(const VRNMessage& reply);
    void onProbe(const VRNMessage& reply);
    void skip(const QString& reason);
    void tryAgainOrGiveUp(const QString& text, bool inRow);
    Q_DECLARE_PRIVATE(FirmwareTask)
};

#endif // FIRMWARETASK_H
