#ifndef GETRAMPTASK_H
#define GETRAMPTASK_H

#include "readtask.h"

/// Reads the soft start and soft stop of a DC motor (enabled, value) into
/// the proxy record; seeds the local ones. Other call errors read
/// "GetDirectionTask failed", deliberately
/// (the text users and translators know for it).
class GetRampTask : public ReadTask<DCMotorConfigData>
{
    Q_OBJECT

public:
    GetRampTask(Worker& worker, QObject* object, const Job& job, QObject* parent = nullptr);
    explicit GetRampTask(QObject* object, QObject* parent = nullptr);

protected:
    BusPendingCall request(DTSMotorProxy& node) override;
    bool parse(const DTSMotorProxy& node, const BusMessage& reply, DCMotorConfigData& proxy) override;
    bool isKnown(const DCMotorConfigData& record) const override;
    void seed(const DCMotorConfigData& from, DCMotorConfigData& to) const override;
    quint8 expectedReply() const override;
    QString failedText() const override;
};

#endif // GETRAMPTASK_H
