#include "setspeedtask.h"

#include "devicetask_p.h"
#include "taskparams_p.h"

class SetSpeedTaskPrivate : public DeviceTaskPrivate
{
public:
    SetSpeedTaskPrivate(int up, int down, int slow)
        : up(static_cast<unsigned char>(up)), down(static_cast<unsigned char>(down)), slow(static_cast<unsigned char>(slow)) {}
    const unsigned char up;
    const unsigned char down;
    const unsigned char slow;
};

SetSpeedTask::SetSpeedTask(Worker&, QObject* object, const Job& job, QObject* parent)
    : WriteTask(object, job, parent,
                new SetSpeedTaskPrivate(TaskParams::toInt(job, "upSpeed", "SetSpeedTask"),
                                        TaskParams::toInt(job, "downSpeed", "SetSpeedTask"),
                                        TaskParams::toInt(job, "slowSpeed", "SetSpeedTask")))
{
}

SetSpeedTask::SetSpeedTask(unsigned char up, unsigned char down, unsigned char slow, QObject* object, QObject* parent)
    : WriteTask(QStringLiteral("SetSpeedJob"), object, parent, new SetSpeedTaskPrivate(up, down, slow))
{
}

SetSpeedTask::~SetSpeedTask() = default;

BusPendingCall SetSpeedTask::request(DTSMotorProxy& node)
{
    Q_D(const SetSpeedTask);
    return node.setMotorRollingSpeed(d->up, d->down, d->slow);
}

bool SetSpeedTask::apply(DCMotorConfigData& local) const
{
    Q_D(const SetSpeedTask);
    DCMotorConfigDataData& data = local.data();
    data.upRollingSpeed = d->up;
    data.downRollingSpeed = d->down;
    data.slowRollingSpeed = d->slow;
    return true;
}

QString SetSpeedTask::failedText() const
{
    return tr("SetLabelTask failed");
}
