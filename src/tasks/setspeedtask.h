#ifndef SETSPEEDTASK_H
#define SETSPEEDTASK_H

#include "writetask.h"

class SetSpeedTaskPrivate;

/// Sets the rolling speeds of a DC motor (job properties "upSpeed",
/// "downSpeed", "slowSpeed"; the device takes 6 to 28); on the
/// acknowledgement the local record takes them. Other call errors read
/// "SetLabelTask failed", deliberately
/// (the text users and translators know for it).
class SetSpeedTask : public WriteTask<DCMotorConfigData>
{
    Q_OBJECT

public:
    SetSpeedTask(Worker& worker, QObject* object, const Job& job, QObject* parent = nullptr);
    SetSpeedTask(unsigned char up, unsigned char down, unsigned char slow, QObject* object, QObject* parent = nullptr);
    ~SetSpeedTask() override;

protected:
    BusPendingCall request(DTSMotorProxy& node) override;
    bool apply(DCMotorConfigData& local) const override;
    QString failedText() const override;

private:
    Q_DECLARE_PRIVATE(SetSpeedTask)
};

#endif // SETSPEEDTASK_H
