#ifndef SETMOTORIPTASK_H
#define SETMOTORIPTASK_H

#include "objecttask.h"

class QState;
class SetMotorIpTaskPrivate;

/// Writes one intermediate position, then reads it back. Job properties
/// "ipIndex" (0..15), "function" (a `DTSMotor::IPFunction`: 0 delete, 1 at
/// the current position, 2 pulses, 3 percent) and "value".
///
/// `setMotorIp()` (initial) sends the write; on its acknowledgement
/// `refreshMotorIp()` sends `getMotorIP(ipIndex)`; the entry read goes into
/// the proxy and the local record (a list shorter than the index is filled
/// with unset entries up to it), and `end()` finishes. Other call errors
/// read "GetMotorIpsTask failed".
class SetMotorIpTask : public ObjectTask<MotorConfigData>
{
    Q_OBJECT

public:
    SetMotorIpTask(Worker& worker, QObject* object, const Job& job, QObject* parent = nullptr);
    SetMotorIpTask(DTSMotor::IPFunction function, unsigned char index, unsigned short value, QObject* object,
                   QObject* parent = nullptr);
    ~SetMotorIpTask() override;

public Q_SLOTS:
    void setMotorIp();
    void refreshMotorIp();
    void end();

protected:
    void start() override {}
    void onReply(const VRNMessage& reply) override;
    quint8 expectedReply() const override;
    QString failedText() const override;

private:
    void buildMachine();
    Q_DECLARE_PRIVATE(SetMotorIpTask)
};

#endif // SETMOTORIPTASK_H
