#ifndef MOTORCONTROLJOB_H
#define MOTORCONTROLJOB_H

#include "qmljob.h"

#include <QScopedPointer>

class MotorControlJobPrivate;

/// Moves or stops a motor: "command" 0 down limit, 1 up limit, 2 intermediate position
/// "value", 3 to "value" pulses, 4 to "value" percent, 10 next intermediate position down,
/// 11 next up, 255 stop. Any other command sends nothing and the job keeps running until it
/// is aborted.
/// Every parameter is a plain integer, as QML sets it.
class MotorControlJob : public QmlJob
{
    Q_OBJECT
    Q_PROPERTY(int command READ command WRITE setCommand NOTIFY commandChanged)
    Q_PROPERTY(int value READ value WRITE setValue NOTIFY valueChanged)

public:
    Q_INVOKABLE explicit MotorControlJob(QObject* parent = nullptr);
    ~MotorControlJob() override;

    /// The move (one byte; see above).
    int command() const;
    void setCommand(int command);
    /// Position index, pulses or percent (16 bits).
    int value() const;
    void setValue(int value);

Q_SIGNALS:
    void commandChanged(int command);
    void valueChanged(int value);

private:
    QScopedPointer<MotorControlJobPrivate> d_ptr;
    Q_DECLARE_PRIVATE(MotorControlJob)
    Q_DISABLE_COPY(MotorControlJob)
};

#endif // MOTORCONTROLJOB_H
