#ifndef MOTORCTRLWINKTASK_H
#define MOTORCTRLWINKTASK_H

#include "writetask.h"

/// Makes the motor show itself (a short movement or a light, as the device
/// does it); the acknowledgement finishes. A missing object or node is
/// reported as "VRNObject has been destroyed" / "VRNObject has no proxy",
/// untranslated.
class MotorCtrlWinkTask : public WriteTask<MotorConfigData>
{
    Q_OBJECT

public:
    MotorCtrlWinkTask(Worker& worker, QObject* object, const Job& job, QObject* parent = nullptr);
    explicit MotorCtrlWinkTask(QObject* object, QObject* parent = nullptr);

protected:
    bool checkRequestStep() override;
    BusPendingCall request(DTSMotorProxy& node) override;
};

#endif // MOTORCTRLWINKTASK_H
