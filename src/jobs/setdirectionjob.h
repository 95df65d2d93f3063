#ifndef SETDIRECTIONJOB_H
#define SETDIRECTIONJOB_H

#include "qmljob.h"

#include <QScopedPointer>

class SetDirectionJobPrivate;

/// Sets a motor's turning direction.
/// Every parameter is a plain integer, as QML sets it.
class SetDirectionJob : public QmlJob
{
    Q_OBJECT
    Q_PROPERTY(int direction READ direction WRITE setDirection NOTIFY directionChanged)

public:
    Q_INVOKABLE explicit SetDirectionJob(QObject* parent = nullptr);
    ~SetDirectionJob() override;

    /// 0 standard, 1 reversed.
    int direction() const;
    void setDirection(int direction);

Q_SIGNALS:
    void directionChanged(int direction);

private:
    QScopedPointer<SetDirectionJobPrivate> d_ptr;
    Q_DECLARE_PRIVATE(SetDirectionJob)
    Q_DISABLE_COPY(SetDirectionJob)
};

#endif // SETDIRECTIONJOB_H
