#ifndef SETSPEEDJOB_H
#define SETSPEEDJOB_H

#include "qmljob.h"

#include <QScopedPointer>

class SetSpeedJobPrivate;

/// Sets the rolling speeds of a DC motor (each 6..28).
/// Every parameter is a plain integer, as QML sets it.
class SetSpeedJob : public QmlJob
{
    Q_OBJECT
    Q_PROPERTY(int upSpeed READ upSpeed WRITE setUpSpeed NOTIFY upSpeedChanged)
    Q_PROPERTY(int downSpeed READ downSpeed WRITE setDownSpeed NOTIFY downSpeedChanged)
    Q_PROPERTY(int slowSpeed READ slowSpeed WRITE setSlowSpeed NOTIFY slowSpeedChanged)

public:
    Q_INVOKABLE explicit SetSpeedJob(QObject* parent = nullptr);
    ~SetSpeedJob() override;

    /// Speed up.
    int upSpeed() const;
    void setUpSpeed(int upSpeed);
    /// Speed down.
    int downSpeed() const;
    void setDownSpeed(int downSpeed);
    /// Slow speed.
    int slowSpeed() const;
    void setSlowSpeed(int slowSpeed);

Q_SIGNALS:
    void upSpeedChanged(int upSpeed);
    void downSpeedChanged(int downSpeed);
    void slowSpeedChanged(int slowSpeed);

private:
    QScopedPointer<SetSpeedJobPrivate> d_ptr;
    Q_DECLARE_PRIVATE(SetSpeedJob)
    Q_DISABLE_COPY(SetSpeedJob)
};

#endif // SETSPEEDJOB_H
