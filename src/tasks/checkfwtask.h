#ifndef CHECKFWTASK_H
#define CHECKFWTASK_H

#include "objecttask.h"

class CheckFwTaskPrivate;

/// Tells whether a node's firmware is current: reads the version with a
/// `GetFwVersionTask` (built with its direct constructor, run on an inner
/// job), then compares it with the newest verified package of the
/// catalogue ("firmwarePath") that fits the node's type.
///
/// The result is a map: {"status": "upToDate" | "updateAvailable" |
/// "deviceNewer" | "noPackage", "version": the device's version,
/// "available": the newest package's version (empty when none fits),
/// "package": its path}. The object's `isUpToDate` follows: UpToDate,
/// OutOfDate, or UpToDateUnknown when no package fits. A device newer than
/// every package needs nothing ("deviceNewer", UpToDate), but is not told
/// it runs the package's version.
/// A failed version read fails the task with the read's own text.
class CheckFwTask : public ObjectTask<StdConfigData>
{
    Q_OBJECT

public:
    CheckFwTask(Worker& worker, QObject* object, const Job& job, QObject* parent = nullptr);
    ~CheckFwTask() override;

    void abort() override;

public Q_SLOTS:
    void onJobStateChanged(Job::State state);

protected:
    void start() override;

private:
    Q_DECLARE_PRIVATE(CheckFwTask)
};

#endif // CHECKFWTASK_H
