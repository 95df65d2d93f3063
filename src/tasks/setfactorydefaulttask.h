#ifndef SETFACTORYDEFAULTTASK_H
#define SETFACTORYDEFAULTTASK_H

#include "writetask.h"

class SetFactoryDefaultTaskPrivate;

/// Restores factory settings on the motor (job property "command", a
/// `DTSMotor::FactoryDefFunction`). On the acknowledgement, function 0x15
/// (intermediate positions) marks every entry of the local intermediate
/// position list unset; any other function resets the whole local motor
/// record (direction, end limits, intermediate positions) to "not known", so
/// the next reads fill it again. A missing object or node at the request is
/// reported as "VRNMotorObject has been destroyed" / "VRNMotorObject has no
/// proxy", untranslated. Functions 0x00 (all) and 0x01 (groups) empty every
/// group slot: the device registry then knows the device in no group.
class SetFactoryDefaultTask : public WriteTask<MotorConfigData>
{
    Q_OBJECT

public:
    SetFactoryDefaultTask(Worker& worker, QObject* object, const Job& job, QObject* parent = nullptr);
    SetFactoryDefaultTask(DTSMotor::FactoryDefFunction function, QObject* object, QObject* parent = nullptr);
    ~SetFactoryDefaultTask() override;

protected:
    bool checkRequestStep() override;
    BusPendingCall request(DTSMotorProxy& node) override;
    bool apply(MotorConfigData& local) const override;
    void onReply(const VRNMessage& reply) override;

private:
    Q_DECLARE_PRIVATE(SetFactoryDefaultTask)
};

#endif // SETFACTORYDEFAULTTASK_H
