#ifndef GETDIRECTIONTASK_H
#define GETDIRECTIONTASK_H

#include "readtask.h"

/// Reads the motor's turning direction into the proxy record; seeds the local one.
class GetDirectionTask : public ReadTask<MotorConfigData>
{
    Q_OBJECT

public:
    GetDirectionTask(Worker& worker, QObject* object, const Job& job, QObject* parent = nullptr);
    explicit GetDirectionTask(QObject* object, QObject* parent = nullptr);

protected:
    BusPendingCall request(DTSMotorProxy& node) override;
    bool parse(const DTSMotorProxy& node, const BusMessage& reply, MotorConfigData& proxy) override;
    bool isKnown(const MotorConfigData& record) const override;
    void seed(const MotorConfigData& from, MotorConfigData& to) const override;
    quint8 expectedReply() const override;
};

#endif // GETDIRECTIONTASK_H
