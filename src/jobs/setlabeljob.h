#ifndef SETLABELJOB_H
#define SETLABELJOB_H

#include "qmljob.h"

#include <QScopedPointer>

class SetLabelJobPrivate;

/// Writes a label (at most 16 bytes) to a device.
class SetLabelJob : public QmlJob
{
    Q_OBJECT
    Q_PROPERTY(QByteArray label READ label WRITE setLabel NOTIFY labelChanged)

public:
    Q_INVOKABLE explicit SetLabelJob(QObject* parent = nullptr);
    ~SetLabelJob() override;

    QByteArray label() const;
    void setLabel(const QByteArray& label);

Q_SIGNALS:
    void labelChanged(QByteArray label);

private:
    QScopedPointer<SetLabelJobPrivate> d_ptr;
    Q_DECLARE_PRIVATE(SetLabelJob)
    Q_DISABLE_COPY(SetLabelJob)
};

#endif // SETLABELJOB_H
