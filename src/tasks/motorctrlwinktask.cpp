#include "motorctrlwinktask.h"

MotorCtrlWinkTask::MotorCtrlWinkTask(Worker&, QObject* object, const Job& job, QObject* parent)
    : WriteTask(object, job, parent)
{
}

MotorCtrlWinkTask::MotorCtrlWinkTask(QObject* object, QObject* parent)
    : WriteTask(QStringLiteral("VisualFeedbackJob"), object, parent)
{
}

bool MotorCtrlWinkTask::checkRequestStep()
{
    return checkObjectAs("VRNObject has been destroyed", "VRNObject has no proxy");
}

BusPendingCall MotorCtrlWinkTask::request(DTSMotorProxy& node)
{
    return node.ctrlWink();
}
