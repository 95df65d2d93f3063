#ifndef SETENDLIMITSTASK_H
#define SETENDLIMITSTASK_H

#include "objecttask.h"

class QAbstractState;
class QState;
class SetEndLimitsTaskPrivate;

/// Sets one end limit, then reads both back. Job properties: "command" (the
/// limit function: 0 at the current position, 2 adjust by a signed delta;
/// any other value sets the limit to the given value, function 1), "limit"
/// (1 the up limit, any other value the down limit) and "delta" (pulses, or
/// the two's-complement delta of function 2).
///
/// Three states: `setLimit()` (initial) sends the write; on its
/// acknowledgement `refreshLimit()` sends `getMotorLimits()`; the limits
/// read go into the proxy and the local record, and `end()` finishes. A
/// missing object or node at the write is reported as "VRNMotorObject has
/// been destroyed" / "VRNMotorObject has no proxy", untranslated.
///
/// Deliberately, and kept so: other call errors read
/// "GetMotorIpsTask failed", and a reply that fails to parse is shown whole
/// only when its command byte is 0x35, the intermediate-position reply.
class SetEndLimitsTask : public ObjectTask<MotorConfigData>
{
    Q_OBJECT

public:
    SetEndLimitsTask(Worker& worker, QObject* object, const Job& job, QObject* parent = nullptr);
    SetEndLimitsTask(int command, int limit, unsigned short delta, QObject* object, QObject* parent = nullptr);
    ~SetEndLimitsTask() override;

public Q_SLOTS:
    void setLimit();
    void refreshLimit();
    void end();

protected:
    void start() override {}
    void onReply(const VRNMessage& reply) override;
    quint8 expectedReply() const override;
    QString failedText() const override;

private:
    void buildMachine();
    Q_DECLARE_PRIVATE(SetEndLimitsTask)
};

#endif // SETENDLIMITSTASK_H
