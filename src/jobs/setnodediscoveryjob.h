#ifndef SETNODEDISCOVERYJOB_H
#define SETNODEDISCOVERYJOB_H

#include "qmljob.h"

#include <QScopedPointer>

class SetNodeDiscoveryJobPrivate;

/// Lets a node take part in discovery (`enabled` true: its discovery mark is
/// cleared) or not (false: the mark is set and the node stops answering
/// discovery requests).
class SetNodeDiscoveryJob : public QmlJob
{
    Q_OBJECT
    Q_PROPERTY(bool enabled READ isEnabled WRITE setEnabled NOTIFY enabledChanged)

public:
    Q_INVOKABLE explicit SetNodeDiscoveryJob(QObject* parent = nullptr);
    ~SetNodeDiscoveryJob() override;

    bool isEnabled() const;
    void setEnabled(bool enabled);

Q_SIGNALS:
    void enabledChanged(bool enabled);

private:
    QScopedPointer<SetNodeDiscoveryJobPrivate> d_ptr;
    Q_DECLARE_PRIVATE(SetNodeDiscoveryJob)
    Q_DISABLE_COPY(SetNodeDiscoveryJob)
};

#endif // SETNODEDISCOVERYJOB_H
