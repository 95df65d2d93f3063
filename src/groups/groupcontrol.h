#ifndef GROUPCONTROL_H
#define GROUPCONTROL_H

#include <QObject>
#include <QScopedPointer>

class GroupControlPrivate;

/// Direct movement of every motor of a group address at once.
///
/// A group address is a group number (1 to 0xFFFFFE) that nodes hold in one
/// of their group slots. Each command is one frame on the open bus
/// (`BusFactory::bus()`) addressed to the group; no node answers, so
/// success means the frame left, not that any motor moved. `sent()`
/// reports the end of the frame's call (when the bus's broadcast window
/// closes). A command refused before sending (address or argument out of
/// range, no open bus) returns false and sets `lastError`.
///
///     GroupControl control;
///     control.moveTo(0x0F0003, DTSMotor::MoveToPercent, 50);
class GroupControl : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString lastError READ lastError NOTIFY sent)

public:
    explicit GroupControl(QObject* parent = nullptr);
    ~GroupControl() override;

    /// `function` a `DTSMotor::MoveToFunction` (0 down limit, 1 up limit,
    /// 2 intermediate position, 3 pulses, 4 percent); `value` 0 to 65535.
    Q_INVOKABLE bool moveTo(unsigned int group, int function, int value = 0);
    /// `function` a `DTSMotor::MoveOfFunction`; `value` 0 to 65535.
    Q_INVOKABLE bool moveOf(unsigned int group, int function, int value = 0);
    Q_INVOKABLE bool stop(unsigned int group);
    /// Stops every motor of `group`, or every motor on the bus when `group`
    /// is 0xFFFFFF (the default), with one CTRL_STOP_ALL frame to every
    /// node: one frame's time on the line, however many motors move.
    Q_INVOKABLE bool stopAll(unsigned int group = 0xFFFFFF);

    /// Whether `group` is a usable group number (24 bits, neither the empty
    /// slot 0 nor the broadcast number).
    static bool isGroupAddress(qint64 group);

    QString lastError() const;

Q_SIGNALS:
    /// The frame to `group` was sent (`ok`) or its call failed (`error`).
    void sent(unsigned int group, bool ok, const QString& error);

private:
    QScopedPointer<GroupControlPrivate> d_ptr;
    Q_DECLARE_PRIVATE(GroupControl)
    Q_DISABLE_COPY(GroupControl)
};

#endif // GROUPCONTROL_H
