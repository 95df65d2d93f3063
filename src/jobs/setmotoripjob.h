#ifndef SETMOTORIPJOB_H
#define SETMOTORIPJOB_H

#include "qmljob.h"

#include <QScopedPointer>

class SetMotorIpJobPrivate;

/// Sets, moves or deletes one intermediate position of a motor, then reads it back.
/// Every parameter is a plain integer, as QML sets it.
class SetMotorIpJob : public QmlJob
{
    Q_OBJECT
    Q_PROPERTY(int ipIndex READ ipIndex WRITE setIpIndex NOTIFY ipIndexChanged)
    Q_PROPERTY(int function READ function WRITE setFunction NOTIFY functionChanged)
    Q_PROPERTY(int value READ value WRITE setValue NOTIFY valueChanged)

public:
    Q_INVOKABLE explicit SetMotorIpJob(QObject* parent = nullptr);
    ~SetMotorIpJob() override;

    /// Index 0..15.
    int ipIndex() const;
    void setIpIndex(int ipIndex);
    /// 0 delete, 1 at the current position, 2 to "value" pulses, 3 to "value" percent.
    int function() const;
    void setFunction(int function);
    /// Pulses or percent.
    int value() const;
    void setValue(int value);

Q_SIGNALS:
    void ipIndexChanged(int ipIndex);
    void functionChanged(int function);
    void valueChanged(int value);

private:
    QScopedPointer<SetMotorIpJobPrivate> d_ptr;
    Q_DECLARE_PRIVATE(SetMotorIpJob)
    Q_DISABLE_COPY(SetMotorIpJob)
};

#endif // SETMOTORIPJOB_H
