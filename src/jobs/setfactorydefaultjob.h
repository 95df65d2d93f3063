#ifndef SETFACTORYDEFAULTJOB_H
#define SETFACTORYDEFAULTJOB_H

#include "qmljob.h"

#include <QScopedPointer>

class SetFactoryDefaultJobPrivate;

/// Restores factory settings on a motor.
/// Every parameter is a plain integer, as QML sets it.
class SetFactoryDefaultJob : public QmlJob
{
    Q_OBJECT
    Q_PROPERTY(int command READ command WRITE setCommand NOTIFY commandChanged)

public:
    Q_INVOKABLE explicit SetFactoryDefaultJob(QObject* parent = nullptr);
    ~SetFactoryDefaultJob() override;

    /// 0x00 all, 0x01 groups, 0x02 label, 0x11 end limits, 0x12 direction, 0x13 rolling speed,
    /// 0x14 soft start/stop, 0x15 intermediate positions.
    int command() const;
    void setCommand(int command);

Q_SIGNALS:
    void commandChanged(int command);

private:
    QScopedPointer<SetFactoryDefaultJobPrivate> d_ptr;
    Q_DECLARE_PRIVATE(SetFactoryDefaultJob)
    Q_DISABLE_COPY(SetFactoryDefaultJob)
};

#endif // SETFACTORYDEFAULTJOB_H
