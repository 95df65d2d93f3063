#ifndef SETGROUPSJOB_H
#define SETGROUPSJOB_H

#include "qmljob.h"

#include <QScopedPointer>

class SetGroupsJobPrivate;

/// Writes group addresses into a device's slots 0, 1, ... in list order; the
/// list holds numbers (group numbers, 24 bits; 0 empties a slot).
class SetGroupsJob : public QmlJob
{
    Q_OBJECT
    Q_PROPERTY(QVariantList groups READ groups WRITE setGroups NOTIFY groupsChanged)

public:
    Q_INVOKABLE explicit SetGroupsJob(QObject* parent = nullptr);
    ~SetGroupsJob() override;

    QVariantList groups() const;
    void setGroups(const QVariantList& groups);

Q_SIGNALS:
    void groupsChanged(QVariantList groups);

private:
    QScopedPointer<SetGroupsJobPrivate> d_ptr;
    Q_DECLARE_PRIVATE(SetGroupsJob)
    Q_DISABLE_COPY(SetGroupsJob)
};

#endif // SETGROUPSJOB_H
