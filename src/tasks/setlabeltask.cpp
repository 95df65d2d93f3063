#include "setlabeltask.h"
#include "setlabeltask_p.h"

#include <QDebug>

namespace {
QByteArray labelOf(const Job& job)
{
    const QVariant value = job.property("label");
    if (!value.canConvert<QByteArray>()) {
        qWarning() << "[SetLabelTask]: label cannot be converted";
        return QByteArray();
    }
    return value.toByteArray();
}
} // namespace

SetLabelTask::SetLabelTask(Worker&, QObject* object, const Job& job, QObject* parent)
    : WriteTask(object, job, parent, new SetLabelTaskPrivate(labelOf(job)))
{
}

SetLabelTask::SetLabelTask(const QByteArray& label, QObject* object, QObject* parent)
    : WriteTask(QStringLiteral("SetLabelJob"), object, parent, new SetLabelTaskPrivate(label))
{
}

SetLabelTask::~SetLabelTask() = default;

BusPendingCall SetLabelTask::request(DTSStdProxy& node)
{
    return node.setNodeLabel(d_func()->label);
}

bool SetLabelTask::apply(StdConfigData& local) const
{
    local.data().label = d_func()->label;
    return true;
}
