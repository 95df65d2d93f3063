#ifndef GETSPEEDTASK_H
#define GETSPEEDTASK_H

#include "readtask.h"

/// Reads the up, down and slow rolling speeds of a DC motor into the proxy
/// record; seeds the local ones. Other call errors read "GetDirectionTask
/// failed", deliberately
/// (the text users and translators know for it).
class GetSpeedTask : public ReadTask<DCMotorConfigData>
{
    Q_OBJECT

public:
    GetSpeedTask(Worker& worker, QObject* object, const Job& job, QObject* parent = nullptr);
    explicit GetSpeedTask(QObject* object, QObject* parent = nullptr);

protected:
    BusPendingCall request(DTSMotorProxy& node) override;
    bool parse(const DTSMotorProxy& node, const BusMessage& reply, DCMotorConfigData& proxy) override;
    bool isKnown(const DCMotorConfigData& record) const override;
    void seed(const DCMotorConfigData& from, DCMotorConfigData& to) const override;
    quint8 expectedReply() const override;
    QString failedText() const override;
};

#endif // GETSPEEDTASK_H
