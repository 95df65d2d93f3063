#ifndef QMLGROUPTASKRESULT_H
#define QMLGROUPTASKRESULT_H

#include "job.h"

#include <QObject>
#include <QScopedPointer>
#include <QVariant>

class GroupTaskResultModel;
class QmlGroupTaskResultPrivate;

/// One device's entry of a group task's results, for QML
/// (`GroupTaskResultModel::fetch`). It follows later updates of the device's
/// entry while the model lives; `valid` is false while the device has no
/// entry. Once the model is gone it keeps the last values, and `update()`
/// logs "[GroupTaskResult]: trying to update a null object".
class QmlGroupTaskResult : public QObject
{
    Q_OBJECT
    Q_PROPERTY(unsigned int uuid READ uuid CONSTANT)
    Q_PROPERTY(bool valid READ isValid NOTIFY changed)
    Q_PROPERTY(Job::State state READ state NOTIFY changed)
    Q_PROPERTY(Job::Error error READ error NOTIFY changed)
    Q_PROPERTY(QString errorString READ errorString NOTIFY changed)
    Q_PROPERTY(QVariant result READ result NOTIFY changed)

public:
    QmlGroupTaskResult(GroupTaskResultModel* model, unsigned int uuid, QObject* parent = nullptr);
    ~QmlGroupTaskResult() override;

    unsigned int uuid() const;
    bool isValid() const;
    Job::State state() const;
    Job::Error error() const;
    QString errorString() const;
    QVariant result() const;

    /// Reads the device's entry again from the model.
    Q_INVOKABLE void update();

Q_SIGNALS:
    void changed();

private:
    QScopedPointer<QmlGroupTaskResultPrivate> d_ptr;
    Q_DECLARE_PRIVATE(QmlGroupTaskResult)
    Q_DISABLE_COPY(QmlGroupTaskResult)
};

#endif // QMLGROUPTASKRESULT_H
