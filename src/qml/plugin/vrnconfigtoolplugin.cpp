#include "bushealthmodel.h"
#include "vrnconfigtoolplugin.h"

#include "devicerecords.h"

#include "busfactory.h"
#include "groupcontrol.h"
#include "groupfactory.h"
#include "grouptaskresultmodel.h"
#include "groupworker.h"
#include "qmlgrouptaskresult.h"
#include "objectfactory.h"
#include "objectquerymodel.h"
#include "objectselectionmodel.h"
#include "qmlserialportlist.h"
#include "settings.h"
#include "vrnlistenermodel.h"
#include "vrnlistenerviewmodel.h"

#include "lru50object.h"
#include "settingtoolobject.h"
#include "tx30object.h"
#include "tx50dcobject.h"
#include "vrndcmotorobject.h"
#include "vrnobjectworker.h"

#include "qmldcmotorconfigdata.h"
#include "qmlruntimedata.h"
#include "qmlsharedobject.h"

#include "firmwareloader.h"

#include "busdiscoverjob.h"
#include "checkfwjob.h"
#include "directupdatefwjob.h"
#include "getdirectionjob.h"
#include "getendlimitsjob.h"
#include "getfwversionjob.h"
#include "getgroupsjob.h"
#include "getlabeljob.h"
#include "getmotordiagnosticjob.h"
#include "getmotoripsjob.h"
#include "getnetworkstatsjob.h"
#include "getpositionjob.h"
#include "getserialnumberjob.h"
#include "getrampjob.h"
#include "getspeedjob.h"
#include "motorcontroljob.h"
#include "motorctrlmovejob.h"
#include "setdirectionjob.h"
#include "setendlimitsjob.h"
#include "setfactorydefaultjob.h"
#include "setgroupsjob.h"
#include "setlabeljob.h"
#include "setmotoripjob.h"
#include "setnetworkstatsjob.h"
#include "setnodediscoveryjob.h"
#include "setrampjob.h"
#include "setspeedjob.h"
#include "updatefwjob.h"
#include "visualfeedbackjob.h"

#include <QQmlEngine>

namespace {

const int Major = 1;
const int Minor = 0;

/// One QML type: its name and how it is registered.
struct Registration
{
    const char* name;
    void (*add)(const char* uri, const char* name);
};

template <class T>
void creatable(const char* uri, const char* name)
{
    qmlRegisterType<T>(uri, Major, Minor, name);
}

template <class T>
void uncreatable(const char* uri, const char* name)
{
    qmlRegisterUncreatableType<T>(uri, Major, Minor, name,
                                  QStringLiteral("%1 is handed out by the library").arg(QLatin1String(name)));
}

/// The process-wide instance, kept by C++: the engine must not delete it
/// when it goes away, other engines and the library still use it.
template <class T>
void singleton(const char* uri, const char* name)
{
    qmlRegisterSingletonType<T>(uri, Major, Minor, name, [](QQmlEngine*, QJSEngine*) -> QObject* {
        T* instance = T::instance();
        QQmlEngine::setObjectOwnership(instance, QQmlEngine::CppOwnership);
        return instance;
    });
}

// One line per published class.
const Registration registrations[] = {
    // singletons
    {"Settings", singleton<Settings>},
    {"BusFactory", singleton<BusFactory>},
    {"ObjectFactory", singleton<ObjectFactory>},
    {"GroupFactory", singleton<GroupFactory>},
    // models
    {"ObjectQueryModel", uncreatable<ObjectQueryModel>},
    {"ObjectSelectionModel", uncreatable<ObjectSelectionModel>},
    {"QMLSerialPortList", creatable<QMLSerialPortList>},
    {"VRNListenerViewModel", uncreatable<VRNListenerViewModel>},
    {"VRNListenerModel", uncreatable<VRNListenerModel>},
    {"FirmwareLoader", creatable<FirmwareLoader>},
    // jobs
    {"Job", uncreatable<Job>},
    {"QmlJob", uncreatable<QmlJob>},
    {"BusDiscoverJob", creatable<BusDiscoverJob>},
    {"SetNodeDiscoveryJob", creatable<SetNodeDiscoveryJob>},
    {"GetFwVersionJob", creatable<GetFwVersionJob>},
    {"GetGroupsJob", creatable<GetGroupsJob>},
    {"SetGroupsJob", creatable<SetGroupsJob>},
    {"GetLabelJob", creatable<GetLabelJob>},
    {"SetLabelJob", creatable<SetLabelJob>},
    {"GetSerialNumberJob", creatable<GetSerialNumberJob>},
    {"VisualFeedbackJob", creatable<VisualFeedbackJob>},
    {"MotorControlJob", creatable<MotorControlJob>},
    {"MotorCtrlMoveJob", creatable<MotorCtrlMoveJob>},
    {"GetDirectionJob", creatable<GetDirectionJob>},
    {"SetDirectionJob", creatable<SetDirectionJob>},
    {"GetEndLimitsJob", creatable<GetEndLimitsJob>},
    {"SetEndLimitsJob", creatable<SetEndLimitsJob>},
    {"GetPositionJob", creatable<GetPositionJob>},
    {"SetFactoryDefaultJob", creatable<SetFactoryDefaultJob>},
    {"GetMotorIpsJob", creatable<GetMotorIpsJob>},
    {"SetMotorIpJob", creatable<SetMotorIpJob>},
    {"GetSpeedJob", creatable<GetSpeedJob>},
    {"SetSpeedJob", creatable<SetSpeedJob>},
    {"GetRampJob", creatable<GetRampJob>},
    {"SetRampJob", creatable<SetRampJob>},
    {"GetMotorDiagnosticJob", creatable<GetMotorDiagnosticJob>},
    {"GetNetworkStatsJob", creatable<GetNetworkStatsJob>},
    {"SetNetworkStatsJob", creatable<SetNetworkStatsJob>},
    {"CheckFwJob", creatable<CheckFwJob>},
    {"FirmwareJob", uncreatable<FirmwareJob>},
    {"UpdateFwJob", creatable<UpdateFwJob>},
    {"DirectUpdateFwJob", creatable<DirectUpdateFwJob>},
    // groups
    {"GroupWorker", uncreatable<GroupWorker>},
    {"GroupTaskResultModel", uncreatable<GroupTaskResultModel>},
    {"QmlGroupTaskResult", uncreatable<QmlGroupTaskResult>},
    {"GroupControl", creatable<GroupControl>},
    // workers and buses
    {"QmlObjectWorker", uncreatable<QmlObjectWorker>},
    {"VRNObjectWorker", uncreatable<VRNObjectWorker>},
    {"VRNBus", uncreatable<VRNBus>},
    {"BusHealthModel", uncreatable<BusHealthModel>},
    // device objects
    {"VRNObject", uncreatable<VRNObject>},
    {"VRNStdObject", uncreatable<VRNStdObject>},
    {"VRNMotorObject", uncreatable<VRNMotorObject>},
    {"VRNDCMotorObject", uncreatable<VRNDCMotorObject>},
    {"LRU50Object", uncreatable<LRU50Object>},
    {"TX50DCObject", uncreatable<TX50DCObject>},
    {"TX30Object", uncreatable<TX30Object>},
    {"SettingToolObject", uncreatable<SettingToolObject>},
    // record wrappers
    {"QmlConfigData", uncreatable<QmlConfigData>},
    {"QmlStdConfigData", uncreatable<QmlStdConfigData>},
    {"QmlMotorConfigData", uncreatable<QmlMotorConfigData>},
    {"QmlDCMotorConfigData", uncreatable<QmlDCMotorConfigData>},
    {"QmlRuntimeData", uncreatable<QmlRuntimeData>},
    {"QmlSharedObject", uncreatable<QmlSharedObject>},
    // the plugin's own
    {"DeviceRecords", creatable<DeviceRecords>},
};

} // namespace

VRNConfigToolPlugin::VRNConfigToolPlugin(QObject* parent)
    : QQmlExtensionPlugin(parent)
{
}

void VRNConfigToolPlugin::registerTypes(const char* uri)
{
    // Enumerations taken by invokable methods: QML passes them as numbers,
    // which needs the type known by the names the signatures use.
    qRegisterMetaType<ObjectFactory::DevicesTableColumn>("ObjectFactory::DevicesTableColumn");
    qRegisterMetaType<ObjectQueryModel::Role>("ObjectQueryModel::Role");
    qRegisterMetaType<VRNObject::Type>("VRNObject::Type");
    // A value type: QML reads its properties from what at(), newestFor()
    // and the "info" role return; it has no element of its own.
    qRegisterMetaType<FirmwareInfo>();
    for (const Registration& r : registrations)
        r.add(uri, r.name);
}

QStringList VRNConfigToolPlugin::typeNames()
{
    QStringList names;
    for (const Registration& r : registrations)
        names.append(QLatin1String(r.name));
    return names;
}
