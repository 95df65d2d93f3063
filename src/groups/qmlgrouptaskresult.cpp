#include "qmlgrouptaskresult.h"

#include "grouptaskresultmodel.h"

#include <QDebug>
#include <QPointer>

class QmlGroupTaskResultPrivate
{
public:
    QPointer<GroupTaskResultModel> model;
    unsigned int uuid = 0;
    bool valid = false;
    Job::State state = Job::Idle;
    Job::Error error = Job::NoError;
    QString errorString;
    QVariant result;
};

QmlGroupTaskResult::QmlGroupTaskResult(GroupTaskResultModel* model, unsigned int uuid, QObject* parent)
    : QObject(parent)
    , d_ptr(new QmlGroupTaskResultPrivate)
{
    Q_D(QmlGroupTaskResult);
    d->model = model;
    d->uuid = uuid;
    if (model) {
        connect(model, &GroupTaskResultModel::entryChanged, this, [this](unsigned int changed) {
            if (changed == d_func()->uuid)
                update();
        });
    }
    update();
}

QmlGroupTaskResult::~QmlGroupTaskResult() = default;

unsigned int QmlGroupTaskResult::uuid() const
{
    return d_func()->uuid;
}

bool QmlGroupTaskResult::isValid() const
{
    return d_func()->valid;
}

Job::State QmlGroupTaskResult::state() const
{
    return d_func()->state;
}

Job::Error QmlGroupTaskResult::error() const
{
    return d_func()->error;
}

QString QmlGroupTaskResult::errorString() const
{
    return d_func()->errorString;
}

QVariant QmlGroupTaskResult::result() const
{
    return d_func()->result;
}

void QmlGroupTaskResult::update()
{
    Q_D(QmlGroupTaskResult);
    if (!d->model) {
        qWarning() << "[GroupTaskResult]: trying to update a null object";
        return;
    }
    d->valid = d->model->contains(d->uuid);
    d->state = d->model->state(d->uuid);
    d->error = d->model->error(d->uuid);
    d->errorString = d->model->errorString(d->uuid);
    d->result = d->model->result(d->uuid);
    emit changed();
}
