// Internal header of GroupTask, not API: may change without notice.
#ifndef GROUPTASK_P_H
#define GROUPTASK_P_H

#include "grouptask.h"
#include "grouptaskresultmodel.h"
#include "qmljob.h"
#include "vrnobjectworker.h"

#include <QSharedPointer>

class GroupTaskPrivate
{
public:
    QScopedPointer<GroupTaskResultModel> result{new GroupTaskResultModel};
    QList<unsigned int> group;
    int jobPriority = 0;
    bool abortOnError = false;
    int index = -1;
    /// skipRemaining() was called: no further device starts.
    bool skip = false;
    QSharedPointer<VRNObjectWorker> currentWorker;
    QScopedPointer<QmlJob> job;
};

#endif // GROUPTASK_P_H
