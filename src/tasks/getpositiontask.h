#ifndef GETPOSITIONTASK_H
#define GETPOSITIONTASK_H

#include "readtask.h"

/// Reads the motor's position (pulses and percent; percent 255 while the
/// end limits are not set) into the proxy runtime record. Runtime values
/// have no local copy: nothing is seeded. Other call errors read
/// "GetDirectionTask failed", deliberately
/// (the text users and translators know for it).
class GetPositionTask : public ReadTask<RuntimeData, MotorRuntimeTraits>
{
    Q_OBJECT

public:
    GetPositionTask(Worker& worker, QObject* object, const Job& job, QObject* parent = nullptr);
    explicit GetPositionTask(QObject* object, QObject* parent = nullptr);

protected:
    BusPendingCall request(DTSMotorProxy& node) override;
    bool parse(const DTSMotorProxy& node, const BusMessage& reply, RuntimeData& proxy) override;
    quint8 expectedReply() const override;
    QString failedText() const override;
};

#endif // GETPOSITIONTASK_H
