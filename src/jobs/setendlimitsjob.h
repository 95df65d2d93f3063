#ifndef SETENDLIMITSJOB_H
#define SETENDLIMITSJOB_H

#include "qmljob.h"

#include <QScopedPointer>

class SetEndLimitsJobPrivate;

/// Sets one end limit of a motor, then reads both back.
/// Every parameter is a plain integer, as QML sets it.
class SetEndLimitsJob : public QmlJob
{
    Q_OBJECT
    Q_PROPERTY(int command READ command WRITE setCommand NOTIFY commandChanged)
    Q_PROPERTY(int limit READ limit WRITE setLimit NOTIFY limitChanged)
    Q_PROPERTY(int delta READ delta WRITE setDelta NOTIFY deltaChanged)

public:
    Q_INVOKABLE explicit SetEndLimitsJob(QObject* parent = nullptr);
    ~SetEndLimitsJob() override;

    /// 0 at the current position, 2 adjust by "delta", any other: set to "delta".
    int command() const;
    void setCommand(int command);
    /// 1 the up limit, any other the down limit.
    int limit() const;
    void setLimit(int limit);
    /// Pulses, or a signed 16-bit delta for command 2.
    int delta() const;
    void setDelta(int delta);

Q_SIGNALS:
    void commandChanged(int command);
    void limitChanged(int limit);
    void deltaChanged(int delta);

private:
    QScopedPointer<SetEndLimitsJobPrivate> d_ptr;
    Q_DECLARE_PRIVATE(SetEndLimitsJob)
    Q_DISABLE_COPY(SetEndLimitsJob)
};

#endif // SETENDLIMITSJOB_H
