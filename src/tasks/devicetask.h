#ifndef DEVICETASK_H
#define DEVICETASK_H

#include "buspendingcall.h"
#include "task.h"

#include <QScopedPointer>

#include <functional>

class DeviceTaskPrivate;
class QAbstractState;
class QState;
class QStateMachine;
class VRNMessage;
class VRNObject;
class Worker;

/// The running of one job on one device object: a request to the object's
/// node, the reply checked, the object's records written, the job ended.
///
/// `run()` marks the task running, checks the object and its node, then
/// calls `start()`, which sends the first request through `watch()`. When
/// the call ends, `onCallFinished()` checks, in this order: the object and
/// its node again (the device may have gone meanwhile), the call's error
/// (2 "Timeout error", 4 "Bus not available", any other "<Class> failed"),
/// the frame ("Invalid message(HEX)"), a negative acknowledgement
/// ("Nack(TEXT)"); only a reply that passes all of them reaches `onReply()`.
///
/// Failure texts are marked with `tr()` at the literal, so the context a
/// translation file (lupdate) files a text under is the one it is looked up
/// in: the checks every task shares under "DeviceTask" (among them "%1
/// failed", %1 the task's class name), a task's own texts under its class.
///
/// Subclasses rarely derive from this class directly: `ReadTask` and
/// `WriteTask` add the typed object, the record handling and the seeding rule,
/// so that a task states only its request, its parser and its field.
///
/// A task whose requests follow a graph builds a state machine in its
/// constructor (`addStep()`, `leaveOnReply()`, `addEnd()`): `run()` then
/// starts the machine instead of calling `start()`, and each step checks the
/// object and sends its own request. Every reply still passes the checks
/// above before the machine moves on; a failure stops the machine.
///
/// A fixed chain of requests (read one counter, then the next) sends each
/// request through `sendStep()`, naming the reply it expects and its parser,
/// and links its steps with `chainOnReply()`: the parser runs when the reply
/// has passed the checks, and the machine moves to the next step only when
/// it accepted the reply.
class DeviceTask : public Task
{
    Q_OBJECT

public:
    /// Dynamic property of a job that a list read cut short left behind:
    /// where the next run of the same job on the same node continues.
    static constexpr const char* ResumeProperty = "resumeRead";

    ~DeviceTask() override;

    void run() override;
    /// Cancels the outstanding request, then ends the run as aborted.
    void abort() override;

public Q_SLOTS:
    void onCallFinished();

protected:
    /// Job-driven: `object` is the object of the worker that runs `job`.
    DeviceTask(QObject* object, const Job& job, QObject* parent, DeviceTaskPrivate* dd = nullptr);
    /// Direct: built by another task; `jobName` becomes the task's name.
    DeviceTask(const QString& jobName, QObject* object, QObject* parent, DeviceTaskPrivate* dd = nullptr);

    /// The object the task was built for, whatever its class; null once destroyed.
    VRNObject* vrnObject() const;
    /// The object is there and of the class the task works on.
    virtual bool hasObject() const = 0;
    /// The object has a node of the kind the task talks to.
    virtual bool hasNode() const = 0;
    /// Fails the task with "Internal error(no VRNObject)" or "Internal
    /// error(VRNObject has no proxy)" and returns false when either is missing.
    virtual bool checkObject();
    /// The check `run()` makes before `start()` sends the request; `checkObject()`
    /// unless a task reports a missing object in words of its own.
    virtual bool checkRequestStep();
    /// As `checkObject()`, failing with `gone` or `noProxy` as they are,
    /// untranslated (texts some request steps give instead of the usual ones).
    bool checkObjectAs(const char* gone, const char* noProxy);
    /// Sends the first request (through `watch()`), or starts whatever the task does.
    virtual void start() = 0;
    /// A reply that passed every generic check. The default fails with
    /// "Unexpected reply(%1)".
    virtual void onReply(const VRNMessage& reply);
    /// Command byte of the reply that the request expects; 0x7F (acknowledgement) by default.
    virtual quint8 expectedReply() const;
    /// Text for a call error other than timeout and bus failure: the class
    /// name followed by " failed" unless a class says otherwise.
    virtual QString failedText() const;
    /// Ends the run for a call that ended with `error` (not `NoError`): 2
    /// "Timeout error", 4 "Bus not available", any other `failedText()`.
    /// A task that tries a request again overrides it.
    virtual void treatBusPendingCallError(const BusPendingCall::Error& error);
    /// True when the negative acknowledgement `reply` goes to `onReply()`
    /// instead of failing with "Nack(%1)" (a refusal the task answers
    /// itself, such as a damaged block sent again); false by default.
    virtual bool takesNack(const VRNMessage& reply) const;
    /// Fails with `text` for a call that ended with `error`: transiently
    /// (`Task::failTransient`) for a timeout, a write failure or a missing
    /// bus, which another run may not meet. A list read cut short this way
    /// leaves its place on the job (`ResumeProperty`).
    void failCall(const BusPendingCall::Error& error, const QString& text);

    /// The slot a list read (`ReadTask`) asked for last; 0 before the first.
    int slot() const;
    void setSlot(int slot);
    /// For a list read: the slot at which an earlier run of this job on this
    /// node stopped for a transient failure, when `entriesRead` (the entries
    /// the object's record holds now) are exactly the slots before it; else
    /// 0, a read from the start. Either way the job's mark is taken off.
    int resumeSlot(int entriesRead);

    /// A failure text in the context of the task's own class, or, when that
    /// has no translation, in the context of `DeviceTask`, where the shared
    /// texts are marked.
    QString translated(const char* source) const;
    /// Watches `call`: its end reaches `onCallFinished()`.
    void watch(const BusPendingCall& call);
    /// "Unexpected reply(%1)": the whole frame in hexadecimal when `reply` is
    /// of the expected kind but did not parse, else its command byte.
    void failUnexpected(const VRNMessage& reply);
    /// Ends the run successfully.
    void finish();
    /// True for an acknowledgement; otherwise fails with "Unexpected reply(%1)".
    bool acceptAck(const VRNMessage& reply);

    /// The task's state machine, made on first use; owned by the task.
    QStateMachine* machine();
    /// A state of the machine whose entry calls `step`, while the task runs.
    template <class T>
    QState* addStep(void (T::*step)())
    {
        return addStepState([this, step] { (static_cast<T*>(this)->*step)(); });
    }
    /// A final state of the machine whose entry calls `step`.
    template <class T>
    QAbstractState* addEnd(void (T::*step)())
    {
        return addEndState([this, step] { (static_cast<T*>(this)->*step)(); });
    }
    /// Leaves `from` for `to` when the watched call ends (after its checks).
    void leaveOnReply(QState* from, QAbstractState* to);
    /// True while the machine is in `state`.
    bool isIn(const QAbstractState* state) const;
    /// Leaves each of `steps` for the next one when its reply passed the
    /// checks, the last one for `end`.
    void chainOnReply(const QList<QState*>& steps, QAbstractState* end);

    /// Parser of one step's reply: false when the reply does not parse. A
    /// parser that fails the task itself does so before returning false.
    using StepParser = std::function<bool(const BusMessage& reply)>;
    /// Watches `call`, one request of a chain: its reply, once through the
    /// checks, goes to `parse`; a reply `parse` rejects fails with
    /// "Unexpected reply(%1)" against `expected`, the reply code asked for.
    /// With `testNack` false a negative acknowledgement is not told apart
    /// and reaches `parse` like any other reply (that step's device sends
    /// none, so it is merely unexpected).
    void sendStep(const BusPendingCall& call, quint8 expected, StepParser parse, bool testNack = true);

    QScopedPointer<DeviceTaskPrivate> d_ptr;

private:
    QState* addStepState(std::function<void()> step);
    QAbstractState* addEndState(std::function<void()> step);

    Q_DECLARE_PRIVATE(DeviceTask)
    Q_DISABLE_COPY(DeviceTask)
};

#endif // DEVICETASK_H
