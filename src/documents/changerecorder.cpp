#include "changerecorder.h"

#include "changelog.h"
#include "jsonschemavalidator.h"
#include "networkdocument.h"

#include "dts.h"
#include "task.h"
#include "vrnmotorobject.h"
#include "vrnobjectworker.h"

#include <QDateTime>
#include <QJsonArray>
#include <QPointer>

namespace {

// One field a write job sets, with the value it writes. `after` reads the
// value back from the records once the write ended well, for writes whose
// task reads the device again (end limits, intermediate positions) or whose
// value the job does not spell out (a limit set "here").
struct Change
{
    QString field;
    QJsonValue written;
    bool fromDevice = false;
};

QString prop(const Job& job, const char* name)
{
    return job.property(name).toString();
}

int num(const Job& job, const char* name)
{
    return job.property(name).toInt();
}

bool describe(const Job& job, Change& c)
{
    const QByteArray cls = job.metaObject()->className();
    if (cls == "SetLabelJob") {
        c = {QStringLiteral("/label"), QString::fromUtf8(job.property("label").toByteArray())};
    } else if (cls == "SetGroupsJob") {
        QJsonArray groups;
        for (const QVariant& g : job.property("groups").toList())
            groups.append(qint64(g.toUInt()));
        c = {QStringLiteral("/groups"), groups};
    } else if (cls == "SetDirectionJob") {
        c = {QStringLiteral("/direction"), num(job, "direction") == DTSMotor::DirectionReversed ? QStringLiteral("reversed")
                                                                                                 : QStringLiteral("standard")};
    } else if (cls == "SetEndLimitsJob") {
        const int command = num(job, "command");
        const QJsonValue asked = command == DTSMotor::LimitSetValue ? QJsonValue(num(job, "delta"))
            : command == DTSMotor::LimitAdjust ? QJsonValue(QStringLiteral("%1%2").arg(qint16(num(job, "delta")) < 0 ? "" : "+")
                                                                .arg(qint16(num(job, "delta"))))
                                               : QJsonValue(QStringLiteral("here"));
        c = {num(job, "limit") == 1 ? QStringLiteral("/limits/up") : QStringLiteral("/limits/down"), asked, true};
    } else if (cls == "SetMotorIpJob") {
        const int function = num(job, "function");
        const QJsonValue asked = function == DTSMotor::IPDelete ? QJsonValue()
            : function == DTSMotor::IPSetPulse ? QJsonValue(num(job, "value"))
            : function == DTSMotor::IPSetPercent ? QJsonValue(QStringLiteral("%1%").arg(num(job, "value")))
                                                 : QJsonValue(QStringLiteral("here"));
        c = {QStringLiteral("/ips/%1").arg(num(job, "ipIndex")), asked, true};
    } else if (cls == "SetSpeedJob") {
        c = {QStringLiteral("/speed"), QJsonObject{{QStringLiteral("up"), num(job, "upSpeed")},
                                                   {QStringLiteral("down"), num(job, "downSpeed")},
                                                   {QStringLiteral("slow"), num(job, "slowSpeed")}}};
    } else if (cls == "SetRampJob") {
        auto ramp = [&](const char* on, const char* value) {
            return QJsonObject{{QStringLiteral("on"), num(job, on) != 0}, {QStringLiteral("value"), num(job, value)}};
        };
        c = {QStringLiteral("/ramp"), QJsonObject{{QStringLiteral("start"), ramp("softStartStatus", "softStartValue")},
                                                  {QStringLiteral("stop"), ramp("softStopStatus", "softStopValue")}}};
    } else if (cls == "SetFactoryDefaultJob") {
        c = {QStringLiteral("/factoryDefault"), QStringLiteral("0x%1").arg(num(job, "command"), 2, 16, QLatin1Char('0'))};
    } else {
        return false;
    }
    Q_UNUSED(prop)
    return true;
}

// The field's value as the object's proxy records hold it: what the device
// said last; undefined when it never said.
QJsonValue known(VRNObject& object, const QString& field)
{
    const QString section = field.section(QLatin1Char('/'), 1, 1);
    if (section == QLatin1String("limits")) {
        auto motor = qobject_cast<VRNMotorObject*>(&object);
        if (!motor || !motor->proxyMotorConfig().isEndLimitsValid())
            return QJsonValue(QJsonValue::Undefined);
    }
    const QJsonObject entry = NetworkDocument::entryOf(object, {section});
    if (entry.value(QStringLiteral("unread")).toArray().contains(section))
        return QJsonValue(QJsonValue::Undefined);
    return JsonSchemaValidator::resolve(entry, field);
}

} // namespace

void ChangeRecorder::install()
{
    static bool installed = false;
    if (installed)
        return;
    installed = true;
    VRNObjectWorker::setTaskObserver([](VRNObject* object, Task* task) {
        const Job* job = task->job();
        Change change;
        if (!object || !job || !describe(*job, change))
            return;
        ChangeLog::Entry entry;
        entry.tool = ChangeLog::toolName();
        entry.uuid = object->uuid();
        entry.node = object->address() & 0xFFFFFF;
        entry.field = change.field;
        entry.oldValue = ChangeLog::text(known(*object, change.field));
        QPointer<VRNObject> guarded(object);
        QObject::connect(task, &Task::finished, task, [task, guarded, change, entry](Job::Error error) mutable {
            entry.time = QDateTime::currentDateTimeUtc();
            QJsonValue written = change.written;
            if (error == Job::NoError && change.fromDevice && guarded) {
                const QJsonValue now = known(*guarded, change.field);
                if (!now.isUndefined())
                    written = now;
            }
            entry.newValue = ChangeLog::text(written);
            entry.outcome = error == Job::NoError ? QStringLiteral("ok") : task->errorString();
            ChangeLog::append(entry);
        });
    });
}
