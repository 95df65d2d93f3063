// The job classes and the tasks that carry them out on each kind of object.
// Registered by static initialisers when the library loads: first every job
// class, then every binding. A binding on a base class serves its derived
// classes; the most derived binding of a job wins. One line per row.

#include "busdiscoverjob.h"
#include "getfwversionjob.h"
#include "getgroupsjob.h"
#include "getlabeljob.h"
#include "getserialnumberjob.h"
#include "setgroupsjob.h"
#include "setlabeljob.h"
#include "setnodediscoveryjob.h"
#include "getnetworkstatsjob.h"
#include "setnetworkstatsjob.h"

// motors
#include "visualfeedbackjob.h"
#include "motorcontroljob.h"
#include "motorctrlmovejob.h"
#include "getdirectionjob.h"
#include "setdirectionjob.h"
#include "getendlimitsjob.h"
#include "setendlimitsjob.h"
#include "getpositionjob.h"
#include "setfactorydefaultjob.h"
#include "getmotoripsjob.h"
#include "setmotoripjob.h"
#include "getspeedjob.h"
#include "setspeedjob.h"
#include "getrampjob.h"
#include "setrampjob.h"
#include "getmotordiagnosticjob.h"

// firmware
#include "checkfwjob.h"
#include "directupdatefwjob.h"
#include "updatefwjob.h"

#include "busdiscovertask.h"
#include "getfwversiontask.h"
#include "getgroupstask.h"
#include "getlabeltask.h"
#include "getserialnumbertask.h"
#include "objecttaskctorhelper.h"
#include "setgroupstask.h"
#include "setlabeltask.h"
#include "stdsetnodediscoverytask.h"
#include "getnetworkstatstask.h"
#include "setnetworkstatstask.h"

// motors
#include "motorctrlwinktask.h"
#include "motorcontroltask.h"
#include "motorctrlmovetask.h"
#include "getdirectiontask.h"
#include "setdirectiontask.h"
#include "getendlimitstask.h"
#include "setendlimitstask.h"
#include "getpositiontask.h"
#include "setfactorydefaulttask.h"
#include "getmotoripstask.h"
#include "setmotoriptask.h"
#include "getspeedtask.h"
#include "setspeedtask.h"
#include "getramptask.h"
#include "setramptask.h"
#include "getmotordiagnostictask.h"

// firmware
#include "checkfwtask.h"
#include "motorblupdatetask.h"
#include "settingtoolblupdatetask.h"
#include "settingtoolupdatetask.h"
#include "stdupdatetask.h"

#include "jobregistration.h"
#include "vrnbus.h"
#include "vrndcmotorobject.h"
#include "settingtoolobject.h"
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
    JobRegistration(GetSerialNumberJob::staticMetaObject),
    JobRegistration(SetLabelJob::staticMetaObject),
    JobRegistration(GetNetworkStatsJob::staticMetaObject),
    JobRegistration(SetNetworkStatsJob::staticMetaObject),
    JobRegistration(VisualFeedbackJob::staticMetaObject),
    JobRegistration(MotorControlJob::staticMetaObject),
    JobRegistration(MotorCtrlMoveJob::staticMetaObject),
    JobRegistration(GetDirectionJob::staticMetaObject),
    JobRegistration(SetDirectionJob::staticMetaObject),
    JobRegistration(GetEndLimitsJob::staticMetaObject),
    JobRegistration(SetEndLimitsJob::staticMetaObject),
    JobRegistration(GetPositionJob::staticMetaObject),
    JobRegistration(SetFactoryDefaultJob::staticMetaObject),
    JobRegistration(GetMotorIpsJob::staticMetaObject),
    JobRegistration(SetMotorIpJob::staticMetaObject),
    JobRegistration(GetSpeedJob::staticMetaObject),
    JobRegistration(SetSpeedJob::staticMetaObject),
    JobRegistration(GetRampJob::staticMetaObject),
    JobRegistration(SetRampJob::staticMetaObject),
    JobRegistration(CheckFwJob::staticMetaObject),
    JobRegistration(UpdateFwJob::staticMetaObject),
    JobRegistration(DirectUpdateFwJob::staticMetaObject),
    JobRegistration(GetMotorDiagnosticJob::staticMetaObject),
};

const WorkerRegistration bindings[] = {
    bind<BusDiscoverJob, VRNBus, BusDiscoverTask>(),
    bind<SetNodeDiscoveryJob, VRNStdObject, StdSetNodeDiscoveryTask>(),
    bind<GetFwVersionJob, VRNStdObject, GetFwVersionTask>(),
    bind<GetGroupsJob, VRNStdObject, GetGroupsTask>(),
    bind<SetGroupsJob, VRNStdObject, SetGroupsTask>(),
    bind<GetLabelJob, VRNStdObject, GetLabelTask>(),
    bind<GetSerialNumberJob, VRNStdObject, GetSerialNumberTask>(),
    bind<SetLabelJob, VRNStdObject, SetLabelTask>(),
    bind<GetNetworkStatsJob, VRNStdObject, GetNetworkStatsTask>(),
    bind<SetNetworkStatsJob, VRNStdObject, SetNetworkStatsTask>(),
    bind<VisualFeedbackJob, VRNMotorObject, MotorCtrlWinkTask>(),
    bind<MotorControlJob, VRNMotorObject, MotorControlTask>(),
    bind<MotorCtrlMoveJob, VRNMotorObject, MotorCtrlMoveTask>(),
    bind<GetDirectionJob, VRNMotorObject, GetDirectionTask>(),
    bind<SetDirectionJob, VRNMotorObject, SetDirectionTask>(),
    bind<GetEndLimitsJob, VRNMotorObject, GetEndLimitsTask>(),
    bind<SetEndLimitsJob, VRNMotorObject, SetEndLimitsTask>(),
    bind<GetPositionJob, VRNMotorObject, GetPositionTask>(),
    bind<SetFactoryDefaultJob, VRNMotorObject, SetFactoryDefaultTask>(),
    bind<GetMotorIpsJob, VRNMotorObject, GetMotorIpsTask>(),
    bind<SetMotorIpJob, VRNMotorObject, SetMotorIpTask>(),
    bind<GetSpeedJob, VRNDCMotorObject, GetSpeedTask>(),
    bind<SetSpeedJob, VRNDCMotorObject, SetSpeedTask>(),
    bind<GetRampJob, VRNDCMotorObject, GetRampTask>(),
    bind<SetRampJob, VRNDCMotorObject, SetRampTask>(),
    bind<CheckFwJob, VRNStdObject, CheckFwTask>(),
    bind<UpdateFwJob, VRNObject, StdUpdateTask>(),
    bind<UpdateFwJob, SettingToolObject, SettingToolUpdateTask>(),
    bind<DirectUpdateFwJob, VRNMotorObject, MotorBLUpdateTask>(),
    // Standard nodes share the bootloader: one cut off in an update is recovered the same way.
    bind<DirectUpdateFwJob, VRNStdObject, MotorBLUpdateTask>(),
    bind<DirectUpdateFwJob, SettingToolObject, SettingToolBLUpdateTask>(),
    bind<GetMotorDiagnosticJob, VRNMotorObject, GetMotorDiagnosticTask>(),
};

} // namespace
