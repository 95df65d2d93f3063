#include "networkconfiguration.h"
#include "networkconfiguration_p.h"

#include "changelog.h"
#include "changerecorder.h"
#include "devicebackups.h"
#include "jsonschemavalidator.h"

#include "getdirectionjob.h"
#include "getendlimitsjob.h"
#include "getfwversionjob.h"
#include "getgroupsjob.h"
#include "getlabeljob.h"
#include "getmotoripsjob.h"
#include "getrampjob.h"
#include "getserialnumberjob.h"
#include "getspeedjob.h"
#include "groupfactory.h"
#include "grouptask.h"
#include "grouptaskresultmodel.h"
#include "groupworker.h"
#include "objectfactory.h"
#include "setdirectionjob.h"
#include "setendlimitsjob.h"
#include "setfactorydefaultjob.h"
#include "setgroupsjob.h"
#include "setgroupstask.h"
#include "setlabeljob.h"
#include "setmotoripjob.h"
#include "setrampjob.h"
#include "setspeedjob.h"
#include "vrndcmotorobject.h"
#include "vrnobjectworker.h"
#include "workqueue.h"
#include "registrysql_p.h"

#include <QDateTime>
#include <QDebug>
#include <QJsonArray>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QSet>
#include <QTimer>

#include <algorithm>

namespace {

using Make = NetworkConfigurationPrivate::Make;

enum Level { StdLevel, MotorLevel, DCLevel };

struct ReadSection
{
    const char* section;
    Level level;
    Make make;
};

template <class J>
Make maker()
{
    return [] { return new J; };
}

// Every section a backup reads, by the class of device that has it.
const QList<ReadSection>& readSections()
{
    static const QList<ReadSection> sections{
        {"serialNumber", StdLevel, maker<GetSerialNumberJob>()},
        {"label", StdLevel, maker<GetLabelJob>()},
        {"groups", StdLevel, maker<GetGroupsJob>()},
        {"firmwareVersion", StdLevel, maker<GetFwVersionJob>()},
        {"direction", MotorLevel, maker<GetDirectionJob>()},
        {"limits", MotorLevel, maker<GetEndLimitsJob>()},
        {"ips", MotorLevel, maker<GetMotorIpsJob>()},
        {"speed", DCLevel, maker<GetSpeedJob>()},
        {"ramp", DCLevel, maker<GetRampJob>()},
    };
    return sections;
}

bool hasLevel(VRNObject* object, Level level)
{
    switch (level) {
    case StdLevel: return qobject_cast<VRNStdObject*>(object);
    case MotorLevel: return qobject_cast<VRNMotorObject*>(object);
    case DCLevel: return qobject_cast<VRNDCMotorObject*>(object);
    }
    return false;
}

QString section(const QString& field)
{
    return field.section(QLatin1Char('/'), 1, 1);
}

// A pause before a job that met a timeout runs again: the bus may be busy.
constexpr int RetryDelayMs = 50;

} // namespace

NetworkConfigurationPrivate::NetworkConfigurationPrivate(NetworkConfiguration* q)
    : q_ptr(q)
{
}

bool NetworkConfigurationPrivate::begin(Mode m)
{
    Q_Q(NetworkConfiguration);
    if (mode != Idle)
        return false;
    mode = m;
    ++generation;
    order.clear();
    // The previous operation's workers (and the records their objects hold)
    // stay until this one has taken its own.
    previous = devices;
    devices.clear();
    groups.clear();
    done = total = jobsLeft = 0;
    results.clear();
    if (m != Apply)
        differences.clear();
    readDocument = NetworkDocument();
    readDocument.bus = bus;
    readDocument.toolVersion = toolVersion;
    readDocument.time = QDateTime::currentDateTimeUtc().toString(Qt::ISODate);
    emit q->runningChanged(true);
    return true;
}

NetworkConfigurationPrivate::Device& NetworkConfigurationPrivate::device(quint32 uuid)
{
    auto it = devices.find(uuid);
    if (it == devices.end()) {
        it = devices.insert(uuid, Device());
        it->uuid = uuid;
        order.append(uuid);
        // The worker held here is the one every job of the device runs on, and
        // it keeps the object whose records the reads fill.
        it->worker = ObjectFactory::instance()->objectWorker(uuid);
        if (it->worker)
            it->object = it->worker->vrnObject();
    }
    return *it;
}

QmlJob* NetworkConfigurationPrivate::own(QmlJob* job)
{
    job->setParent(q_ptr);
    return job;
}

void NetworkConfigurationPrivate::startReads(const QList<quint32>& uuids)
{
    Q_Q(NetworkConfiguration);
    QList<quint32> byLevel[3];
    for (quint32 uuid : uuids) {
        Device& d = device(uuid);
        if (!d.object)
            continue;
        for (int level = StdLevel; level <= DCLevel; ++level) {
            if (hasLevel(d.object.data(), Level(level)))
                byLevel[level] << uuid;
        }
        for (const ReadSection& s : readSections())
            d.jobsLeft += hasLevel(d.object.data(), s.level) ? 1 : 0;
    }
    for (quint32 uuid : uuids) {
        Device& d = device(uuid);
        // Not in the registry, or a device that is no network node: nothing to read.
        if (d.jobsLeft == 0)
            QTimer::singleShot(0, q, [this, uuid, g = generation] {
                if (g == generation)
                    deviceRead(device(uuid));
            });
    }
    for (const ReadSection& s : readSections()) {
        const QList<quint32>& members = byLevel[s.level];
        if (members.isEmpty())
            continue;
        QSharedPointer<GroupWorker> group = GroupFactory::instance()->groupWorker(members);
        groups << group;
        QmlJob* job = own(s.make());
        const QString name = QLatin1String(s.section);
        const Make make = s.make;
        total += members.size();
        ++jobsLeft;
        QObject::connect(job, &Job::started, q, [this, job, name, make] {
            auto task = qobject_cast<GroupTask*>(job->task());
            if (!task)
                return;
            QObject::connect(task, &GroupTask::deviceDone, q_ptr, [this, task, name, make](unsigned int uuid) {
                // The group's copy of the job tells how this device's run ended.
                readDone(uuid, name, task->innerJob(), make);
            });
        });
        QObject::connect(job, &Job::finished, q, [this, job] {
            job->deleteLater();
            jobDone();
        });
        if (!group->queue()->enqueue(*job, 0)) {
            --jobsLeft;
            job->deleteLater();
            for (quint32 uuid : members)
                readDone(uuid, name, nullptr, Make());
        }
    }
    // Otherwise the last device (or the last job) ends the operation.
    if (order.isEmpty() || jobsLeft == 0)
        endLater();
}

void NetworkConfigurationPrivate::readDone(quint32 uuid, const QString& name, const QmlJob* job, const Make& make)
{
    Q_Q(NetworkConfiguration);
    auto it = devices.find(uuid);
    if (it == devices.end() || it->ended)
        return;
    Device& d = *it;
    const bool ok = job && job->state() == Job::Finished && job->error() == Job::NoError;
    if (!ok && job && job->isTransientError() && d.tries < retries && make && d.worker) {
        ++d.tries;
        QmlJob* again = own(make());
        ++jobsLeft;
        QObject::connect(again, &Job::finished, q, [this, uuid, name, again, make] {
            again->deleteLater();
            readDone(uuid, name, again, make);
            jobDone();
        });
        QTimer::singleShot(RetryDelayMs, again, [this, uuid, name, again, worker = d.worker] {
            if (worker->queue()->enqueue(*again, 0))
                return;
            again->deleteLater();
            readDone(uuid, name, nullptr, Make());
            jobDone();
        });
        return;
    }
    ++done;
    emit q->progress(done, total);
    if (ok)
        d.read << name;
    else
        d.errors << QStringLiteral("%1: %2").arg(name, job ? job->errorString() : NetworkConfiguration::tr("not run"));
    if (--d.jobsLeft == 0)
        deviceRead(d);
}

void NetworkConfigurationPrivate::deviceRead(Device& d)
{
    if (d.ended)
        return;
    if (!d.object) {
        endDevice(d, false, NetworkConfiguration::tr("not in the registry"));
        return;
    }
    const QJsonObject entry = NetworkDocument::entryOf(*d.object, d.read);
    readDocument.devices.append(entry);
    // The registry keeps the serial number the device told.
    if (d.read.contains(QLatin1String("serialNumber")))
        ObjectFactory::instance()->setSerialNumber(d.uuid, entry.value(QStringLiteral("serialNumber")).toString().toUtf8());
    if (mode == Compare || mode == Replace) {
        const QJsonObject want = wanted.value(d.uuid);
        const auto found = NetworkConfiguration::compareEntries(want, entry);
        differences << found;
        d.differences = found;
    }
    endDevice(d, d.errors.isEmpty(), d.errors.join(QStringLiteral("; ")));
}

void NetworkConfigurationPrivate::endDevice(Device& d, bool ok, const QString& error)
{
    Q_Q(NetworkConfiguration);
    if (d.ended)
        return;
    d.ended = true;
    NetworkConfiguration::DeviceResult r;
    r.uuid = d.uuid;
    r.node = d.object ? (d.object->address() & 0xFFFFFF) : 0;
    r.ok = ok;
    r.error = error;
    for (const Write& w : qAsConst(d.writes))
        r.fields << w.fields;
    results << r;
    emit q->deviceFinished(d.uuid, ok, error);
    // An apply or a device without jobs ends with its last device.
    if ((mode == Apply || jobsLeft == 0) && results.size() == order.size())
        endLater();
}

void NetworkConfigurationPrivate::endLater()
{
    // Queued ends of an operation that has ended meanwhile (a replacement
    // goes on with its writes) do nothing.
    QTimer::singleShot(0, q_ptr, [this, g = generation] {
        if (g == generation)
            end();
    });
}

void NetworkConfigurationPrivate::jobDone()
{
    if (--jobsLeft == 0 && mode != Apply)
        end();
}

void NetworkConfigurationPrivate::end()
{
    Q_Q(NetworkConfiguration);
    if (mode == Idle)
        return;
    for (quint32 uuid : qAsConst(order)) {
        Device& d = devices[uuid];
        if (!d.ended)
            endDevice(d, false, NetworkConfiguration::tr("not run"));
    }
    if (mode == Replace) {
        // The device has been read: now the differences are written.
        QList<NetworkConfiguration::Difference> found = differences;
        mode = Idle;
        groups.clear();
        const bool failed = !results.isEmpty() && !results.first().ok;
        if (!failed) {
            q->apply(found);
            return;
        }
        emit q->runningChanged(false);
        emit q->finished();
        return;
    }
    // Keep the documents's order: the order the devices were asked for.
    if (mode == Backup || mode == Compare) {
        QList<QJsonObject> sorted;
        for (quint32 uuid : qAsConst(order)) {
            for (const QJsonObject& e : qAsConst(readDocument.devices)) {
                if (e.value(QStringLiteral("uuid")).toVariant().toUInt() == uuid)
                    sorted << e;
            }
        }
        readDocument.devices = sorted;
    }
    mode = Idle;
    groups.clear();
    previous.clear();
    emit q->runningChanged(false);
    emit q->finished();
}

// --- apply ------------------------------------------------------------------

void NetworkConfigurationPrivate::planWrites(Device& d)
{
    QHash<QString, QList<NetworkConfiguration::Difference>> bySection;
    for (const auto& diff : qAsConst(d.differences))
        bySection[section(diff.field)] << diff;
    auto fieldsOf = [&](const QString& s) {
        QStringList f;
        for (const auto& diff : bySection.value(s))
            f << diff.field;
        return f;
    };
    auto motor = qobject_cast<VRNMotorObject*>(d.object.data());
    if (bySection.contains(QStringLiteral("label"))) {
        const QByteArray label = bySection.value(QStringLiteral("label")).first().document.toString().toUtf8();
        d.writes << Write{[label] {
                              auto job = new SetLabelJob;
                              job->setLabel(label);
                              return job;
                          },
                          fieldsOf(QStringLiteral("label")), maker<GetLabelJob>()};
    }
    if (bySection.contains(QStringLiteral("groups"))) {
        // A group write sets slotValues 0 to n-1: the slotValues below the last one
        // that differs keep the values the device holds (equal to the document's).
        auto stdObject = qobject_cast<VRNStdObject*>(d.object.data());
        QList<VRN::Addr> slotValues = stdObject ? stdObject->proxyStdConfig().getConstData().groups : QList<VRN::Addr>();
        int last = -1;
        for (const auto& diff : bySection.value(QStringLiteral("groups"))) {
            const int i = diff.field.section(QLatin1Char('/'), 2, 2).toInt();
            if (i < slotValues.size())
                slotValues[i] = VRN::Addr(diff.document.toVariant().toUInt());
            last = qMax(last, i);
        }
        QVariantList list;
        for (int i = 0; i <= last && i < slotValues.size(); ++i)
            list << slotValues.at(i);
        if (list.size() == last + 1) {
            d.writes << Write{[list] {
                                  auto job = new SetGroupsJob;
                                  job->setGroups(list);
                                  return job;
                              },
                              fieldsOf(QStringLiteral("groups")), maker<GetGroupsJob>()};
        } else {
            d.failedFields << fieldsOf(QStringLiteral("groups"));
            d.errors << NetworkConfiguration::tr("groups: the device's group slotValues were not read");
        }
    }
    if (motor && bySection.contains(QStringLiteral("direction"))) {
        const int direction = bySection.value(QStringLiteral("direction")).first().document.toString()
                == QLatin1String("reversed") ? DTSMotor::DirectionReversed : DTSMotor::DirectionStandard;
        d.writes << Write{[direction] {
                              auto job = new SetDirectionJob;
                              job->setDirection(direction);
                              return job;
                          },
                          fieldsOf(QStringLiteral("direction")), maker<GetDirectionJob>()};
    }
    if (motor && bySection.contains(QStringLiteral("limits"))) {
        // A limit is cleared only with both (factory values of the limits):
        // the other one is then written again when it is to stay set.
        const MotorConfigDataData& m = motor->proxyMotorConfig().getConstData();
        QHash<int, QJsonValue> target{{DTSMotor::LimitUp, m.upEndLimit == 0xFFFF ? QJsonValue() : QJsonValue(int(m.upEndLimit))},
                                      {DTSMotor::LimitDown, m.downEndLimit == 0xFFFF ? QJsonValue() : QJsonValue(int(m.downEndLimit))}};
        QSet<int> changed;
        for (const auto& diff : bySection.value(QStringLiteral("limits"))) {
            const int which = diff.field.endsWith(QLatin1String("/up")) ? DTSMotor::LimitUp : DTSMotor::LimitDown;
            target[which] = diff.document;
            changed << which;
        }
        const bool clear = target.value(DTSMotor::LimitUp).isNull() || target.value(DTSMotor::LimitDown).isNull();
        if (clear) {
            d.writes << Write{[] {
                                  auto job = new SetFactoryDefaultJob;
                                  job->setCommand(DTSMotor::FactoryEndLimits);
                                  return job;
                              },
                              fieldsOf(QStringLiteral("limits")), maker<GetEndLimitsJob>()};
            changed = {DTSMotor::LimitUp, DTSMotor::LimitDown};
        }
        for (int which : {int(DTSMotor::LimitUp), int(DTSMotor::LimitDown)}) {
            const QJsonValue v = target.value(which);
            if (!changed.contains(which) || v.isNull())
                continue;
            const QString field = which == DTSMotor::LimitUp ? QStringLiteral("/limits/up") : QStringLiteral("/limits/down");
            const int value = v.toInt();
            // The set reads the limits back itself.
            d.writes << Write{[which, value] {
                                  auto job = new SetEndLimitsJob;
                                  job->setCommand(DTSMotor::LimitSetValue);
                                  job->setLimit(which);
                                  job->setDelta(value);
                                  return job;
                              },
                              clear ? QStringList() : QStringList{field}, Make()};
        }
    }
    if (motor) {
        for (const auto& diff : bySection.value(QStringLiteral("ips"))) {
            const int index = diff.field.section(QLatin1Char('/'), 2, 2).toInt();
            const bool unset = diff.document.isNull();
            const int value = diff.document.toInt();
            // The write reads the position back itself.
            d.writes << Write{[index, unset, value] {
                                  auto job = new SetMotorIpJob;
                                  job->setIpIndex(index);
                                  job->setFunction(unset ? DTSMotor::IPDelete : DTSMotor::IPSetPulse);
                                  job->setValue(unset ? 0 : value);
                                  return job;
                              },
                              {diff.field}, Make()};
        }
    }
    if (bySection.contains(QStringLiteral("speed"))) {
        const QJsonObject s = bySection.value(QStringLiteral("speed")).first().document.toObject();
        const int up = s.value(QStringLiteral("up")).toInt(), down = s.value(QStringLiteral("down")).toInt(),
                  slow = s.value(QStringLiteral("slow")).toInt();
        d.writes << Write{[up, down, slow] {
                              auto job = new SetSpeedJob;
                              job->setUpSpeed(up);
                              job->setDownSpeed(down);
                              job->setSlowSpeed(slow);
                              return job;
                          },
                          fieldsOf(QStringLiteral("speed")), maker<GetSpeedJob>()};
    }
    if (bySection.contains(QStringLiteral("ramp"))) {
        const QJsonObject r = bySection.value(QStringLiteral("ramp")).first().document.toObject();
        const QJsonObject start = r.value(QStringLiteral("start")).toObject(), stop = r.value(QStringLiteral("stop")).toObject();
        d.writes << Write{[start, stop] {
                              auto job = new SetRampJob;
                              job->setRamps(DTSMotor::RampStart); // start and stop, each its own
                              job->setSoftStartStatus(start.value(QStringLiteral("on")).toBool());
                              job->setSoftStartValue(start.value(QStringLiteral("value")).toInt());
                              job->setSoftStopStatus(stop.value(QStringLiteral("on")).toBool());
                              job->setSoftStopValue(stop.value(QStringLiteral("value")).toInt());
                              return job;
                          },
                          fieldsOf(QStringLiteral("ramp")), maker<GetRampJob>()};
    }
    // Read-backs follow the writes, each section once.
    QList<Write> readBacks;
    QSet<QString> seen;
    for (const Write& w : qAsConst(d.writes)) {
        if (!w.readBack || w.fields.isEmpty() || seen.contains(section(w.fields.first())))
            continue;
        seen << section(w.fields.first());
        readBacks << Write{w.readBack, {}, Make()};
    }
    d.writes << readBacks;
    total += d.writes.size();
}

void NetworkConfigurationPrivate::runNextWrite(Device& d)
{
    if (d.next >= d.writes.size())
        return verify(d);
    QmlJob* job = own(d.writes.at(d.next).make());
    const quint32 uuid = d.uuid;
    QSharedPointer<QString> stopped(new QString);
    QObject::connect(job, &Job::started, q_ptr, [this, job, uuid, stopped] {
        // A refused group slot leaves a group write running for good: it is
        // taken off its queue with the slot's reason.
        if (auto task = qobject_cast<SetGroupsTask*>(job->task())) {
            QObject::connect(task, &SetGroupsTask::slotFailed, q_ptr, [this, job, uuid, stopped](int slot, const QString& error) {
                *stopped = NetworkConfiguration::tr("group slot %1 refused: %2").arg(slot).arg(error);
                Device& d = devices[uuid];
                if (d.worker)
                    d.worker->queue()->dequeue(*job);
            }, Qt::QueuedConnection);
        }
    });
    QObject::connect(job, &Job::finished, q_ptr, [this, job, uuid, stopped] {
        job->deleteLater();
        writeDone(devices[uuid], job, *stopped);
    });
    if (!d.worker || !d.worker->queue()->enqueue(*job, 0)) {
        job->deleteLater();
        writeDone(d, nullptr, NetworkConfiguration::tr("cannot queue the job"));
    }
}

void NetworkConfigurationPrivate::writeDone(Device& d, QmlJob* job, const QString& stopped)
{
    Q_Q(NetworkConfiguration);
    const Write& w = d.writes.at(d.next);
    const bool ok = job && job->error() == Job::NoError && stopped.isEmpty();
    if (!ok && job && stopped.isEmpty() && job->isTransientError() && d.tries < retries) {
        ++d.tries;
        QTimer::singleShot(RetryDelayMs, q, [this, uuid = d.uuid, g = generation] {
            if (g == generation)
                runNextWrite(devices[uuid]);
        });
        return;
    }
    // The change log has the write already (ChangeRecorder).
    const QString error = !stopped.isEmpty() ? stopped : job ? job->errorString() : QString();
    if (!ok) {
        d.failedFields << w.fields;
        d.errors << QStringLiteral("%1: %2").arg(w.fields.isEmpty() ? NetworkConfiguration::tr("read-back")
                                                                    : w.fields.join(QLatin1Char(',')), error);
    }
    d.tries = 0;
    ++d.next;
    ++done;
    emit q->progress(done, total);
    runNextWrite(d);
}

void NetworkConfigurationPrivate::verify(Device& d)
{
    QStringList sections;
    for (const auto& diff : qAsConst(d.differences))
        sections << section(diff.field);
    const QJsonObject entry = d.object ? NetworkDocument::entryOf(*d.object, sections) : QJsonObject();
    for (const auto& diff : qAsConst(d.differences)) {
        if (d.failedFields.contains(diff.field))
            continue;
        const QJsonValue now = JsonSchemaValidator::resolve(entry, diff.field);
        if (now != diff.document)
            d.errors << NetworkConfiguration::tr("%1: reads back %2, not %3")
                            .arg(diff.field, now.isUndefined() ? NetworkConfiguration::tr("nothing") : ChangeLog::text(now),
                                 ChangeLog::text(diff.document));
    }
    const bool labelWritten = std::any_of(d.differences.begin(), d.differences.end(), [&](const auto& diff) {
        return diff.field == QLatin1String("/label") && !d.failedFields.contains(diff.field);
    });
    // The registry shows the label the device now has.
    if (labelWritten && d.object)
        ObjectFactory::instance()->save(d.object.data());
    endDevice(d, d.errors.isEmpty(), d.errors.join(QStringLiteral("; ")));
}

// --- public -----------------------------------------------------------------

NetworkConfiguration::NetworkConfiguration(QObject* parent)
    : QObject(parent)
    , d_ptr(new NetworkConfigurationPrivate(this))
{
    ChangeRecorder::install();
}

NetworkConfiguration::~NetworkConfiguration() = default;

bool NetworkConfiguration::isRunning() const
{
    return d_func()->mode != NetworkConfigurationPrivate::Idle;
}

void NetworkConfiguration::setBus(const QString& bus)
{
    d_func()->bus = bus;
}

void NetworkConfiguration::setToolVersion(const QString& version)
{
    d_func()->toolVersion = version;
}

void NetworkConfiguration::setRetries(int retries)
{
    d_func()->retries = qBound(0, retries, 10);
}

bool NetworkConfiguration::backup(const QList<quint32>& uuids)
{
    Q_D(NetworkConfiguration);
    if (!d->begin(NetworkConfigurationPrivate::Backup))
        return false;
    d->startReads(uuids);
    return true;
}

bool NetworkConfiguration::compare(const NetworkDocument& document, const QList<quint32>& uuids)
{
    Q_D(NetworkConfiguration);
    QList<quint32> matched;
    QString error;
    matchDevices(document, matched, error);
    if (!d->begin(NetworkConfigurationPrivate::Compare))
        return false;
    d->wanted.clear();
    QList<quint32> chosen;
    for (int i = 0; i < document.devices.size(); ++i) {
        const quint32 uuid = matched.value(i);
        if (uuid && (uuids.isEmpty() || uuids.contains(uuid)) && !d->wanted.contains(uuid)) {
            d->wanted.insert(uuid, document.devices.at(i));
            chosen << uuid;
        }
    }
    d->startReads(chosen);
    return true;
}

bool NetworkConfiguration::replace(const QJsonObject& entry, quint32 uuid)
{
    Q_D(NetworkConfiguration);
    const QSharedPointer<VRNObject> object = ObjectFactory::instance()->object(uuid);
    if (!object || NetworkDocument::kindKey(object->type()) != entry.value(QStringLiteral("kind")).toString())
        return false;
    if (!d->begin(NetworkConfigurationPrivate::Replace))
        return false;
    d->wanted.clear();
    d->wanted.insert(uuid, entry);
    d->startReads({uuid});
    return true;
}

bool NetworkConfiguration::apply(const QList<Difference>& differences)
{
    Q_D(NetworkConfiguration);
    if (!d->begin(NetworkConfigurationPrivate::Apply))
        return false;
    d->differences = differences;
    for (const Difference& diff : differences)
        d->device(diff.uuid).differences << diff;
    if (d->order.isEmpty()) {
        d->endLater();
        return true;
    }
    for (quint32 uuid : qAsConst(d->order))
        d->planWrites(d->devices[uuid]);
    for (quint32 uuid : qAsConst(d->order)) {
        auto& dev = d->devices[uuid];
        if (!dev.object)
            d->endDevice(dev, false, tr("not in the registry"));
        else
            d->runNextWrite(dev);
    }
    return true;
}

NetworkDocument NetworkConfiguration::document() const
{
    return d_func()->readDocument;
}

QList<NetworkConfiguration::Difference> NetworkConfiguration::differences() const
{
    return d_func()->differences;
}

QList<NetworkConfiguration::DeviceResult> NetworkConfiguration::results() const
{
    return d_func()->results;
}

QList<NetworkConfiguration::Difference> NetworkConfiguration::compareEntries(const QJsonObject& document,
                                                                             const QJsonObject& device)
{
    QList<Difference> result;
    const auto have = NetworkDocument::settings(device);
    QHash<QString, QJsonValue> onDevice;
    for (const auto& field : have)
        onDevice.insert(field.first, field.second);
    const int type = NetworkDocument::kindOf(device.value(QStringLiteral("kind")).toString());
    for (const auto& field : NetworkDocument::settings(document)) {
        if (!onDevice.contains(field.first))
            continue;
        const QJsonValue now = onDevice.value(field.first);
        if (now == field.second)
            continue;
        Difference d;
        d.uuid = device.value(QStringLiteral("uuid")).toVariant().toUInt();
        d.node = device.value(QStringLiteral("node")).toVariant().toUInt();
        d.type = type;
        d.field = field.first;
        d.document = field.second;
        d.device = now;
        result << d;
    }
    return result;
}

bool NetworkConfiguration::matchDevices(const NetworkDocument& document, QList<quint32>& uuids, QString& error)
{
    uuids.clear();
    QMultiHash<quint32, QPair<quint32, int>> byNode;
    QSqlQuery query = RegistrySql::query(ObjectFactory::instance()->database());
    if (!query.exec(QStringLiteral("SELECT uuid, nodeID, type FROM Devices"))) {
        error = tr("the registry cannot be read: %1").arg(query.lastError().text());
        return false;
    }
    while (query.next())
        byNode.insert(query.value(1).toUInt(), {query.value(0).toUInt(), query.value(2).toInt()});
    for (int i = 0; i < document.devices.size(); ++i) {
        const QJsonObject entry = document.devices.at(i);
        const quint32 node = entry.value(QStringLiteral("node")).toVariant().toUInt();
        const QString kind = entry.value(QStringLiteral("kind")).toString();
        // The device of the entry's kind on its number; another kind there
        // (and none of this one) means the document is not of this network.
        QPair<quint32, int> found{0u, -1};
        const auto there = byNode.values(node);
        for (const auto& candidate : there) {
            if (NetworkDocument::kindKey(candidate.second) == kind)
                found = candidate;
        }
        if (!found.first && !there.isEmpty()) {
            error = tr("/devices/%1/kind: the document describes node %2 as %3, the bus has a %4 there")
                        .arg(i).arg(node).arg(kind, NetworkDocument::kindKey(there.first().second));
            return false;
        }
        uuids << found.first;
    }
    return true;
}

quint32 NetworkConfiguration::findDevice(const QString& nodeOrSerial)
{
    QString text = nodeOrSerial;
    const bool nodeOnly = text.startsWith(QLatin1String("node:"));
    if (nodeOnly)
        text = text.mid(5);
    bool isNumber = false;
    const quint32 node = text.startsWith(QLatin1String("0x"), Qt::CaseInsensitive) ? text.mid(2).toUInt(&isNumber, 16)
                                                                                   : text.toUInt(&isNumber, 10);
    QSqlQuery query = RegistrySql::query(ObjectFactory::instance()->database());
    if (isNumber && node <= 0xFFFFFF) {
        query.prepare(QStringLiteral("SELECT uuid FROM Devices WHERE nodeID = ?"));
        query.addBindValue(node);
        if (query.exec() && query.next())
            return query.value(0).toUInt();
    }
    if (nodeOnly)
        return 0;
    query.prepare(QStringLiteral("SELECT uuid FROM Devices WHERE serialNumber = ? OR CAST(serialNumber AS TEXT) = ?"));
    query.addBindValue(nodeOrSerial.toUtf8());
    query.addBindValue(nodeOrSerial);
    if (query.exec() && query.next())
        return query.value(0).toUInt();
    // The serial numbers the last backups read, of devices still in the registry.
    return DeviceBackups::findSerial(nodeOrSerial);
}

bool NetworkConfiguration::takeOver(quint32 from, quint32 to, QString& error)
{
    QSqlDatabase db = ObjectFactory::instance()->database();
    QSqlQuery query = RegistrySql::query(db);
    query.prepare(QStringLiteral("SELECT nodeID, type, serialNumber FROM Devices WHERE uuid = ?"));
    query.addBindValue(to);
    if (!query.exec() || !query.next()) {
        error = tr("device %1 is not in the registry").arg(to);
        return false;
    }
    const QVariant node = query.value(0), type = query.value(1);
    QVariant serial = query.value(2);
    // A serial number the device told us beats whatever the registry kept.
    if (auto worker = ObjectFactory::instance()->objectWorker(to)) {
        if (auto device = qobject_cast<VRNStdObject*>(worker->vrnObject().data())) {
            if (!device->proxyStdConfig().getConstData().serialNumber.isNull())
                serial = device->proxyStdConfig().getConstData().serialNumber;
        }
    }
    if (from == to)
        return true;
    query.prepare(QStringLiteral("SELECT uuid FROM Devices WHERE uuid = ?"));
    query.addBindValue(from);
    if (!query.exec() || !query.next()) {
        error = tr("device %1 is not in the registry").arg(from);
        return false;
    }
    // Through the factory, so that views hear of the device's end.
    ObjectFactory::instance()->destroyObject(to);
    query.prepare(QStringLiteral("UPDATE Devices SET nodeID = ?, type = ?, serialNumber = ? WHERE uuid = ?"));
    query.addBindValue(node);
    query.addBindValue(type);
    query.addBindValue(serial);
    query.addBindValue(from);
    if (!query.exec()) {
        error = tr("the registry refused the replacement: %1").arg(query.lastError().text());
        return false;
    }
    if (auto object = ObjectFactory::instance()->objectFromCache(from))
        object->setNodeAddress(VRN::makeAddr(VRNObject::nodeType(VRNObject::Type(type.toInt())), node.toUInt()));
    return true;
}
