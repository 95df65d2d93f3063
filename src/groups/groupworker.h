#ifndef GROUPWORKER_H
#define GROUPWORKER_H

#include "qmlobjectworker.h"

#include <QList>
#include <QScopedPointer>
#include <QVariantList>

class GroupWorkerPrivate;

/// The worker of a group of devices: every job queued on it runs as a
/// `GroupTask` over its device list, whatever the job's class.
///
/// Jobs queued on it run one at a time, highest priority first, as on any
/// worker (`enqueue`, `dequeue` from QML). The group task in turn queues its
/// copy of the job on each device's own worker, with the job's "jobPriority".
///
///     GroupWorker* group = GroupFactory::instance()->fromSelection(selection);
///     group->enqueue(labelJob, 0);   // labelJob.result: a GroupTaskResultModel
class GroupWorker : public QmlObjectWorker
{
    Q_OBJECT
    /// The device uuids, as numbers, in the order the devices are run.
    Q_PROPERTY(QVariantList devices READ devices CONSTANT)
    Q_PROPERTY(int count READ count CONSTANT)
    Q_PROPERTY(int number READ number CONSTANT)

public:
    /// `number` tells group workers apart in their names ("GroupWorker#3").
    GroupWorker(const QList<unsigned int>& group, int number, QObject* parent = nullptr);
    ~GroupWorker() override;

    QList<unsigned int> group() const;
    QVariantList devices() const;
    int count() const;
    int number() const;

    /// A new `GroupTask` for any job.
    Task* createTask(const Job& job) override;
    QString name() const override;
    /// Every job class known by name: each may run on a group.
    QStringList jobNames() const override;

private:
    QScopedPointer<GroupWorkerPrivate> d_ptr;
    Q_DECLARE_PRIVATE(GroupWorker)
    Q_DISABLE_COPY(GroupWorker)
};

#endif // GROUPWORKER_H
