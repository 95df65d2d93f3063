#ifndef GETMOTORIPSTASK_H
#define GETMOTORIPSTASK_H

#include "readtask.h"

class GetMotorIpsTaskPrivate;

/// Reads the motor's 16 intermediate positions, index 0 first, one request
/// each. Every reply is stored in the proxy record at once (index 0 starts a
/// new list), so a failure part-way keeps the positions read before it;
/// after the last the local list is seeded; a retry of the job after an
/// index got no answer continues there. Other call errors read
/// "GetMotorIpsTask failed".
class GetMotorIpsTask : public ReadTask<MotorConfigData>
{
    Q_OBJECT

public:
    GetMotorIpsTask(Worker& worker, QObject* object, const Job& job, QObject* parent = nullptr);
    /// `count`: how many positions to read, from index 0 (0 or more than 16: all 16).
    GetMotorIpsTask(QObject* object, unsigned char count, QObject* parent = nullptr);
    ~GetMotorIpsTask() override;

protected:
    int slotCount() const override;
    BusPendingCall requestSlot(DTSMotorProxy& node, int slot) override;
    int entries(const MotorConfigData& proxy) const override;
    /// A reply for another index than the one asked for does not parse.
    bool parse(const DTSMotorProxy& node, const BusMessage& reply, MotorConfigData& proxy) override;
    bool isKnown(const MotorConfigData& record) const override;
    void seed(const MotorConfigData& from, MotorConfigData& to) const override;
    quint8 expectedReply() const override;

private:
    Q_DECLARE_PRIVATE(GetMotorIpsTask)
};

#endif // GETMOTORIPSTASK_H
