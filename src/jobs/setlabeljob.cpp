#include "setlabeljob.h"
#include "setlabeljob_p.h"

SetLabelJob::SetLabelJob(QObject* parent)
    : QmlJob(parent)
    , d_ptr(new SetLabelJobPrivate)
{
}

SetLabelJob::~SetLabelJob() = default;

QByteArray SetLabelJob::label() const
{
    return d_func()->label;
}

void SetLabelJob::setLabel(const QByteArray& label)
{
    Q_D(SetLabelJob);
    d->label = label;
    Q_EMIT labelChanged(label);
}
