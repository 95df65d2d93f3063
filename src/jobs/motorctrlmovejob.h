#ifndef MOTORCTRLMOVEJOB_H
#define MOTORCTRLMOVEJOB_H

#include "qmljob.h"

#include <QScopedPointer>

class MotorCtrlMoveJobPrivate;

/// Runs a motor at slow speed for a time: "command" 0 down, 1 up, any other stops it.
/// Every parameter is a plain integer, as QML sets it.
class MotorCtrlMoveJob : public QmlJob
{
    Q_OBJECT
    Q_PROPERTY(int command READ command WRITE setCommand NOTIFY commandChanged)
    Q_PROPERTY(int duration READ duration WRITE setDuration NOTIFY durationChanged)

public:
    Q_INVOKABLE explicit MotorCtrlMoveJob(QObject* parent = nullptr);
    ~MotorCtrlMoveJob() override;

    /// 0 down, 1 up, other: stop.
    int command() const;
    void setCommand(int command);
    /// In steps of 10 ms (one byte).
    int duration() const;
    void setDuration(int duration);

Q_SIGNALS:
    void commandChanged(int command);
    void durationChanged(int duration);

private:
    QScopedPointer<MotorCtrlMoveJobPrivate> d_ptr;
    Q_DECLARE_PRIVATE(MotorCtrlMoveJob)
    Q_DISABLE_COPY(MotorCtrlMoveJob)
};

#endif // MOTORCTRLMOVEJOB_H
