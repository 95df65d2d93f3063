// The labels and groups family: a node's label, firmware version and group
// slots, read and written through the device runner.
#include "command.h"
#include "devicerunner.h"
#include "labelcommands.h"
#include "vrnconfigcli.h"

#include "busfactory.h"
#include "getfwversionjob.h"
#include "getgroupsjob.h"
#include "getlabeljob.h"
#include "objectfactory.h"
#include "setgroupsjob.h"
#include "setgroupstask.h"
#include "setlabeljob.h"
#include "vrnbus.h"
#include "vrnstdobject.h"

#include <QJsonArray>
#include <QTimer>

#include <algorithm>

namespace {

using Cli = VrnConfigCli;

const int LabelMax = 16;
const int GroupSlots = 16;

// A list of group numbers as a JSON array and as one line of hexadecimal words.
void putGroups(const QList<quint32>& list, DeviceRun& run)
{
    QJsonArray array;
    QStringList words;
    for (quint32 group : list) {
        array.append(qint64(group));
        words << Cli::nodeText(group);
    }
    run.line = words.join(QLatin1Char(' '));
    run.result.insert(QStringLiteral("groups"), array);
}

// A label the device takes and the registry can store: checked before
// anything is sent, so a device is never renamed to something the registry
// then refuses. The message never repeats the label (it may be long).
bool labelFits(const QString& label, QString& why)
{
    const int bytes = label.toUtf8().size();
    if (bytes > LabelMax)
        why = Cli::tr("the label is %1 bytes of UTF-8; a device takes at most %2").arg(bytes).arg(LabelMax);
    else if (label.contains(QLatin1Char('\'')))
        why = Cli::tr("the registry cannot store a label with a single quote (')");
    else if (std::any_of(label.begin(), label.end(), [](QChar c) { return c.category() == QChar::Other_Control; }))
        why = Cli::tr("a label cannot hold control characters");
    return why.isEmpty();
}

// Keeps the label in the registry, so `list` shows it: the one written, or
// the one the device reported.
bool storeLabel(DeviceRun& run, QString& error, bool read = false)
{
    ObjectFactory* registry = ObjectFactory::instance();
    // A read-only registry serves reads: what the device said is shown, not kept.
    if (read && registry->isReadOnly())
        return true;
    if (read ? registry->storeLabelRead(run.object.data()) : registry->save(run.object.data()))
        return true;
    error = registry->lastError().isEmpty() ? Cli::tr("the registry did not store the label")
                                            : Cli::tr("the registry did not store the label: %1").arg(registry->lastError());
    return false;
}

bool readVersion(DeviceRun& run, QString&)
{
    run.line = run.device->proxyStdConfig().getConstData().appVersion.toString();
    run.result.insert(QStringLiteral("version"), run.line);
    return true;
}

bool readGroups(DeviceRun& run, QString&)
{
    QList<quint32> groups;
    for (VRN::Addr g : run.device->proxyStdConfig().getConstData().groups)
        groups << g;
    putGroups(groups, run);
    return true;
}

// How long a group write of `slots` slots may take with the runner's
// devices running at once.
int writeBound(const DeviceRunner& runner, int slots)
{
    return runner.parallel() * (slots + 1) * BusFactory::instance()->bus()->timeout() + 1000;
}

// Writes `groups` to the device's first slots, then calls `then`. A group
// write that fails leaves its job running for good (see SetGroupsTask): the
// run stops it once a slot is refused, and bounds the wait by `bound` ms.
void writeGroups(Cli& cli, DeviceRun& run, const QVariantList& groups, int bound, std::function<void()> then)
{
    auto job = new SetGroupsJob;
    job->setGroups(groups);
    QObject::connect(job, &Job::started, &cli, [&cli, &run, job] {
        auto task = qobject_cast<SetGroupsTask*>(job->task());
        if (!task)
            return;
        // Queued: the task is still inside its slot job's end when it reports.
        QObject::connect(task, &SetGroupsTask::slotFailed, &cli, [&run](int slot, const QString& error) {
            run.result.insert(QStringLiteral("slot"), slot);
            run.stop(Cli::tr("group slot %1 refused: %2").arg(slot).arg(error));
        }, Qt::QueuedConnection);
    });
    QPointer<SetGroupsJob> watched(job);
    QTimer::singleShot(bound, job, [&run, watched, bound] {
        auto task = watched ? qobject_cast<SetGroupsTask*>(watched->task()) : nullptr;
        if (task && task->failedSlot() >= 0)
            run.stop(Cli::tr("group slot %1 refused: %2").arg(task->failedSlot()).arg(task->slotError()));
        else
            run.stop(Cli::tr("no end within %1 ms").arg(bound));
    });
    run.start(job, [&run, then](Job::Error error) {
        if (error != Job::NoError)
            return run.fail(run.jobError());
        then();
    });
}

void setLabel(Cli& cli, const QStringList& args)
{
    if (args.size() != 2)
        return cli.fail(Cli::Usage, Cli::tr("set label takes one DEVICE and one TEXT"));
    const QByteArray label = args.at(1).toUtf8();
    QString why;
    if (!labelFits(args.at(1), why))
        return cli.fail(Cli::Usage, why);
    QList<VRNObject::UUID> uuids;
    if (!cli.resolveDevices(args.mid(0, 1), uuids) || !cli.openBus())
        return;
    (new DeviceRunner(cli))->runJobs(uuids, [label](VRNStdObject&) {
        auto job = new SetLabelJob;
        job->setLabel(label);
        return job;
    }, [label](DeviceRun& run, QString& error) {
        run.line = QString::fromUtf8(label);
        run.result.insert(QStringLiteral("label"), run.line);
        return storeLabel(run, error);
    });
}

void setGroups(Cli& cli, const QStringList& args)
{
    if (args.size() < 2)
        return cli.fail(Cli::Usage, Cli::tr("set groups takes one DEVICE and group numbers"));
    QVariantList groups;
    QList<quint32> numbers;
    for (const QString& word : args.mid(1)) {
        quint32 group = 0;
        if (!Cli::parseNumber(word, 0xFFFFFF, group))
            return cli.fail(Cli::Usage, Cli::tr("not a valid group address: %1").arg(word));
        groups << group;
        numbers << group;
    }
    if (groups.size() > GroupSlots)
        return cli.fail(Cli::Usage, Cli::tr("a node has %1 group slots, %2 given").arg(GroupSlots).arg(groups.size()));
    QList<VRNObject::UUID> uuids;
    if (!cli.resolveDevices(args.mid(0, 1), uuids) || !cli.openBus())
        return;
    auto runner = new DeviceRunner(cli);
    const int bound = writeBound(*runner, groups.size());
    runner->run(uuids, [&cli, groups, numbers, bound](DeviceRun& run) {
        writeGroups(cli, run, groups, bound, [&run, numbers] {
            putGroups(numbers, run);
            run.succeed();
        });
    });
}

// One membership changed: the slots are read, one is changed, all are
// written back and read again; the other slots keep what they held.
void changeMembership(Cli& cli, const QStringList& args, bool add)
{
    const QString name = add ? QStringLiteral("group add") : QStringLiteral("group remove");
    if (args.size() < 2)
        return cli.fail(Cli::Usage, Cli::tr("%1 takes one ADDR and at least one DEVICE").arg(name));
    quint32 group = 0;
    if (!Cli::parseGroupAddress(args.at(0), group))
        return cli.fail(Cli::Usage, Cli::tr("not a valid group address: %1 (1 to 0xFFFFFE)").arg(args.at(0)));
    QList<VRNObject::UUID> uuids;
    if (!cli.resolveDevices(args.mid(1), uuids) || !cli.openBus())
        return;
    auto runner = new DeviceRunner(cli);
    const int bound = writeBound(*runner, GroupSlots);
    runner->run(uuids, [&cli, group, add, bound](DeviceRun& run) {
        run.start(new GetGroupsJob, [&cli, &run, group, add, bound](Job::Error error) {
            if (error != Job::NoError)
                return run.fail(run.jobError());
            QList<unsigned int> wanted = run.device->proxyStdConfig().getConstData().groups;
            while (wanted.size() < GroupSlots)
                wanted.append(0);
            const int at = wanted.indexOf(group);
            if (add == (at >= 0)) {
                // Nothing to change: a member already, or not one.
                run.line = add ? Cli::tr("already a member") : Cli::tr("not a member");
                run.result.insert(QStringLiteral("changed"), false);
                return run.succeed();
            }
            const int free = wanted.indexOf(0);
            if (add && free < 0)
                return run.fail(Cli::tr("no free group slot"));
            wanted[add ? free : at] = add ? group : 0;
            QVariantList all;
            for (unsigned int slot : wanted)
                all << slot;
            writeGroups(cli, run, all, bound, [&run, wanted] {
                run.start(new GetGroupsJob, [&run, wanted](Job::Error error) {
                    if (error != Job::NoError)
                        return run.fail(run.jobError());
                    QList<unsigned int> back = run.device->proxyStdConfig().getConstData().groups;
                    while (back.size() < GroupSlots)
                        back.append(0);
                    if (back != wanted)
                        return run.fail(Cli::tr("the device holds other groups than were written"));
                    QList<quint32> numbers;
                    for (unsigned int g : back)
                        numbers << g;
                    putGroups(numbers, run);
                    run.result.insert(QStringLiteral("changed"), true);
                    run.succeed();
                });
            });
        });
    });
}

void addLabelCommands(CommandRegistry& r)
{
    r.add({QStringLiteral("get"), QStringLiteral("label"), QStringLiteral("DEVICE..."), Cli::tr("read the label"),
           DeviceRunner::onEach(QStringLiteral("get label"), [](VRNStdObject&) { return new GetLabelJob; }, readLabel)});
    r.add({QStringLiteral("get"), QStringLiteral("version"), QStringLiteral("DEVICE..."), Cli::tr("read the firmware version"),
           DeviceRunner::onEach(QStringLiteral("get version"), [](VRNStdObject&) { return new GetFwVersionJob; }, readVersion)});
    r.add({QStringLiteral("get"), QStringLiteral("groups"), QStringLiteral("DEVICE..."), Cli::tr("read the 16 group slots"),
           DeviceRunner::onEach(QStringLiteral("get groups"), [](VRNStdObject&) { return new GetGroupsJob; }, readGroups)});
    r.add({QStringLiteral("set"), QStringLiteral("label"), QStringLiteral("DEVICE TEXT"),
           Cli::tr("write the label (up to 16 bytes of UTF-8)"), setLabel});
    r.add({QStringLiteral("set"), QStringLiteral("groups"), QStringLiteral("DEVICE ADDR..."),
           Cli::tr("write the group slots: group numbers, decimal or 0x hexadecimal"), setGroups});
    r.add({QStringLiteral("group"), QStringLiteral("add"), QStringLiteral("ADDR DEVICE..."),
           Cli::tr("make devices members of a group; their other slots stay"),
           [](Cli& cli, const QStringList& args) { changeMembership(cli, args, true); }});
    r.add({QStringLiteral("group"), QStringLiteral("remove"), QStringLiteral("ADDR DEVICE..."),
           Cli::tr("take devices out of a group; their other slots stay"),
           [](Cli& cli, const QStringList& args) { changeMembership(cli, args, false); }});
}

} // namespace

bool readLabel(DeviceRun& run, QString& error)
{
    run.line = QString::fromUtf8(run.device->proxyStdConfig().getConstData().label);
    run.result.insert(QStringLiteral("label"), run.line);
    return storeLabel(run, error, true);
}

namespace {

const CommandFamily family(30, "Labels and groups", addLabelCommands);

} // namespace
