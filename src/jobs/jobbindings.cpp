// The job classes and the tasks that carry them out on each kind of object.
// Registered by static initialisers when the library loads: first every job
// class, then every binding. A binding on a base class serves its derived
// classes; the most derived binding of a job wins. One line per row.

#include "busdiscoverjob.h"
#include "getfwversionjob.h"
#include "getgroupsjob.h"
#include "getlabeljob.h"
#include "setgroupsjob.h"
#include "setlabeljob.h"
#include "setnodediscoveryjob.h"

#include "busdiscovertask.h"
#include "getfwversiontask.h"
#include "getgroupstask.h"
#include "getlabeltask.h"
#include "objecttaskctorhelper.h"
#include "setgroupstask.h"
#include "setlabeltask.h"
#include "stdsetnodediscoverytask.h"

#include "jobregistration.h"
#include "vrnbus.h"
#include "vrnstdobject.h"

namespace {

template <class JobClass, class ObjectClass, class TaskClass>
WorkerRegistration bind()
{
    return ObjectTaskCtorHelper<TaskClass, ObjectClass>::template bind<JobClass>();
}

const JobRegistration jobs[] = {
    JobRegistration(BusDiscoverJob::staticMetaObject),
    JobRegistration(SetNodeDiscoveryJob::staticMetaObject),
    JobRegistration(GetFwVersionJob::staticMetaObject),
    JobRegistration(GetGroupsJob::staticMetaObject),
    JobRegistration(SetGroupsJob::staticMetaObject),
    JobRegistration(GetLabelJob::staticMetaObject),
    JobRegistration(SetLabelJob::staticMetaObject),
};

const WorkerRegistration bindings[] = {
    bind<BusDiscoverJob, VRNBus, BusDiscoverTask>(),
    bind<SetNodeDiscoveryJob, VRNStdObject, StdSetNodeDiscoveryTask>(),
    bind<GetFwVersionJob, VRNStdObject, GetFwVersionTask>(),
    bind<GetGroupsJob, VRNStdObject, GetGroupsTask>(),
    bind<SetGroupsJob, VRNStdObject, SetGroupsTask>(),
    bind<GetLabelJob, VRNStdObject, GetLabelTask>(),
    bind<SetLabelJob, VRNStdObject, SetLabelTask>(),
};

} // namespace
