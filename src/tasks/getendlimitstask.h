#ifndef GETENDLIMITSTASK_H
#define GETENDLIMITSTASK_H

#include "readtask.h"

/// Reads both end limits into the proxy record; seeds the local ones.
/// Other call errors read "GetDirectionTask failed", deliberately
/// (the text users and translators know for it).
class GetEndLimitsTask : public ReadTask<MotorConfigData>
{
    Q_OBJECT

public:
    GetEndLimitsTask(Worker& worker, QObject* object, const Job& job, QObject* parent = nullptr);
    explicit GetEndLimitsTask(QObject* object, QObject* parent = nullptr);

protected:
    BusPendingCall request(DTSMotorProxy& node) override;
    bool parse(const DTSMotorProxy& node, const BusMessage& reply, MotorConfigData& proxy) override;
    bool isKnown(const MotorConfigData& record) const override;
    void seed(const MotorConfigData& from, MotorConfigData& to) const override;
    quint8 expectedReply() const override;
    QString failedText() const override;
};

#endif // GETENDLIMITSTASK_H
