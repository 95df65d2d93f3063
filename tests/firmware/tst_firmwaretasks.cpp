// Firmware check and updates on simulated nodes: the bindings, the check's
// outcomes, the standard update with the version read before and after,
// what the version before decides (skip, refuse, force), refusals before
// anything is sent, resuming, faults on the line, recovery from the
// bootloader after a power loss, and giving up on a block refused every time.
#include "firmwarefixture.h"
#include "taskfixture.h"

#include "checkfwjob.h"
#include "directupdatefwjob.h"
#include "dts.h"
#include "firmwaretask.h"
#include "jobregistration.h"
#include "settingtoolobject.h"
#include "updatefwjob.h"
#include "vrnmotorobject.h"
#include "vrnobjectworker.h"
#include "workqueue.h"

using namespace FirmwareFixture;
using namespace TaskFixture;

namespace {
enum Device { Motor, Tool, Keypad };
const quint32 Numbers[] = {0x000301, 0x000302, 0x000303};
} // namespace

class tst_FirmwareTasks : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void bindings_data();
    void bindings();
    void check_data();
    void check();
    void update_data();
    void update();
    void versionDecides_data();
    void versionDecides();
    void refusedBeforeSending_data();
    void refusedBeforeSending();
    void nodeRefusesOtherKind();
    void resumesAfterInterruption();
    void recoversFromBootloader_data();
    void recoversFromBootloader();
    void givesUpWithLastError_data();
    void givesUpWithLastError();

private:
    /// Queues `job` on the worker of `device` and waits for its end.
    Job::Error run(Device device, Job& job, int ms = 10000);
    SimNode* sim(Device d) const { return m_wire->net.node(Numbers[d]); }

    QScopedPointer<Folder> m_folder;
    QScopedPointer<Wire> m_wire;
    QSharedPointer<VRNObject> m_objects[3];
    QScopedPointer<VRNObjectWorker> m_workers[3];
};

void tst_FirmwareTasks::init()
{
    m_folder.reset(new Folder);
    m_wire.reset(new Wire);
    m_wire->net.addNode(SimNode::Motor, Numbers[Motor]);
    m_wire->net.addNode(SimNode::SettingTool, Numbers[Tool]);
    m_wire->net.addNode(SimNode::Std, Numbers[Keypad]);
    m_objects[Motor].reset(new VRNMotorObject);
    m_objects[Tool].reset(new SettingToolObject);
    m_objects[Keypad].reset(new VRNStdObject);
    for (int d = Motor; d <= Keypad; ++d) {
        m_objects[d]->setNodeAddress(sim(Device(d))->address());
        m_objects[d]->attach(m_wire->bus);
        m_workers[d].reset(new VRNObjectWorker(m_objects[d]));
    }
    sim(Motor)->setAppVersion({1, 2, 0, 0});
    sim(Tool)->setAppVersion({1, 0, 0, 0});
    sim(Keypad)->setAppVersion({1, 0, 0, 0});
}

void tst_FirmwareTasks::cleanup()
{
    for (auto& w : m_workers)
        w.reset();
    for (auto& o : m_objects)
        o.reset();
    m_wire.reset();
    m_folder.reset();
}

Job::Error tst_FirmwareTasks::run(Device device, Job& job, int ms)
{
    if (!m_workers[device]->queue()->enqueue(job, 0) || !waitEnd(job, ms))
        return Job::AbortedError;
    return job.error();
}

void tst_FirmwareTasks::bindings_data()
{
    QTest::addColumn<int>("device");
    QTest::addColumn<QString>("job");
    QTest::addColumn<QString>("task");

    QTest::newRow("update, setting tool") << int(Tool) << "UpdateFwJob" << "SettingToolUpdateTask";
    QTest::newRow("update, motor") << int(Motor) << "UpdateFwJob" << "StdUpdateTask";
    QTest::newRow("update, keypad") << int(Keypad) << "UpdateFwJob" << "StdUpdateTask";
    QTest::newRow("bootloader, motor") << int(Motor) << "DirectUpdateFwJob" << "MotorBLUpdateTask";
    QTest::newRow("bootloader, setting tool") << int(Tool) << "DirectUpdateFwJob" << "SettingToolBLUpdateTask";
    QTest::newRow("bootloader, keypad") << int(Keypad) << "DirectUpdateFwJob" << "MotorBLUpdateTask";
    QTest::newRow("check, motor") << int(Motor) << "CheckFwJob" << "CheckFwTask";
}

void tst_FirmwareTasks::bindings()
{
    QFETCH(int, device);
    QFETCH(QString, job);
    QFETCH(QString, task);
    QScopedPointer<Job> j(JobRegistration::create(job));
    QVERIFY(j);
    j->setProperty("package", m_folder->home.filePath(QStringLiteral("missing.bpk")));
    run(Device(device), *j);
    QVERIFY(j->task());
    QCOMPARE(QString::fromLatin1(j->task()->metaObject()->className()), task);
}

void tst_FirmwareTasks::check_data()
{
    QTest::addColumn<QStringList>("packages"); // "types:version", "!" first: signed by a stranger
    QTest::addColumn<QString>("status");
    QTest::addColumn<QString>("available");
    QTest::addColumn<int>("upToDate");

    QTest::newRow("same version") << QStringList{"1:1.2.0"} << "upToDate" << "1.2.0" << int(VRNObject::UpToDate);
    QTest::newRow("newer package") << QStringList{"1:1.1.0", "1,9:1.10.0"} << "updateAvailable" << "1.10.0"
                                   << int(VRNObject::OutOfDate);
    QTest::newRow("device newer") << QStringList{"1:1.1.9"} << "deviceNewer" << "1.1.9" << int(VRNObject::UpToDate);
    QTest::newRow("forged newer ignored") << QStringList{"1:1.2.0", "!1:9.0.0"} << "upToDate" << "1.2.0"
                                          << int(VRNObject::UpToDate);
    QTest::newRow("none fits") << QStringList{"9:3.0.0"} << "noPackage" << "" << int(VRNObject::UpToDateUnknown);
}

void tst_FirmwareTasks::check()
{
    QFETCH(QStringList, packages);
    QFETCH(QString, status);
    QFETCH(QString, available);
    QFETCH(int, upToDate);
    const BpkKeys stranger = BpkKeys::generate();
    int n = 0;
    for (QString p : packages) {
        const bool forged = p.startsWith(QLatin1Char('!'));
        p.remove(QLatin1Char('!'));
        QList<int> types;
        for (const QString& t : p.section(QLatin1Char(':'), 0, 0).split(QLatin1Char(',')))
            types.append(t.toInt());
        m_folder->add(QStringLiteral("p%1.bpk").arg(n++), types, p.section(QLatin1Char(':'), 1), 100,
                      forged ? &stranger : nullptr);
    }
    CheckFwJob job;
    QCOMPARE(run(Motor, job), Job::NoError);
    const QVariantMap result = job.result().toMap();
    QCOMPARE(result.value("status").toString(), status);
    QCOMPARE(result.value("version").toString(), QStringLiteral("1.2.0"));
    QCOMPARE(result.value("available").toString(), available);
    QCOMPARE(int(m_objects[Motor]->isUpToDate()), upToDate);
    QCOMPARE(m_wire->sentOf(DTS::GetNodeAppVersion).size(), 1);
}

void tst_FirmwareTasks::update_data()
{
    QTest::addColumn<int>("device");
    QTest::addColumn<int>("size");
    QTest::newRow("motor") << int(Motor) << 1000;
    QTest::newRow("setting tool") << int(Tool) << 333;
}

void tst_FirmwareTasks::update()
{
    QFETCH(int, device);
    QFETCH(int, size);
    const int type = VRN::getType(sim(Device(device))->address());
    m_folder->add(QStringLiteral("old.bpk"), {type}, QStringLiteral("1.9.0"), size);
    m_folder->add(QStringLiteral("new.bpk"), {type}, QStringLiteral("2.0.1"), size);
    UpdateFwJob job;
    QList<int> done;
    connect(&job, &Job::started, this, [&] {
        connect(qobject_cast<FirmwareTask*>(job.task()), &FirmwareTask::progress, this,
                [&](int d, int) { done.append(d); });
    });
    QCOMPARE(run(Device(device), job), Job::NoError);
    const int blocks = (size + 15) / 16;
    QCOMPARE(sim(Device(device))->firmwareImage(), image(size, 1));
    QCOMPARE(sim(Device(device))->appVersion().minor, quint8(0));
    QCOMPARE(sim(Device(device))->appVersion().major, quint8(2));
    QCOMPARE(job.result().toMap().value("version").toString(), QStringLiteral("2.0.1"));
    QCOMPARE(m_wire->sentOf(DTS::FwUpdateBlock).size(), blocks);
    QCOMPARE(m_wire->sentOf(DTS::GetNodeAppVersion).size(), 2); // before and after
    QCOMPARE(done.last(), blocks);
    QCOMPARE(m_objects[device]->isUpToDate(), VRNObject::UpToDate);
    if (auto* motor = qobject_cast<VRNMotorObject*>(m_objects[device].data()))
        QCOMPARE(motor->localStdConfig().getConstData().appVersion.toString(), QStringLiteral("2.0.1"));
}

void tst_FirmwareTasks::versionDecides_data()
{
    QTest::addColumn<QStringList>("packages"); // the first is the one given, unless "auto"
    QTest::addColumn<bool>("given");
    QTest::addColumn<bool>("force");
    QTest::addColumn<bool>("downgrade");
    QTest::addColumn<QString>("outcome"); // "sent", "skipped", or the start of the error

    // The motor runs 1.2.0.
    QTest::newRow("same version skipped") << QStringList{"1.2.0"} << true << false << false << "skipped";
    QTest::newRow("same version forced") << QStringList{"1.2.0"} << true << true << false << "sent";
    QTest::newRow("older refused") << QStringList{"1.1.0"} << true << false << false << "Package ";
    QTest::newRow("older allowed") << QStringList{"1.1.0"} << true << false << true << "sent";
    QTest::newRow("newest older skipped") << QStringList{"1.1.0", "1.0.9"} << false << false << false << "skipped";
}

void tst_FirmwareTasks::versionDecides()
{
    QFETCH(QStringList, packages);
    QFETCH(bool, given);
    QFETCH(bool, force);
    QFETCH(bool, downgrade);
    QFETCH(QString, outcome);
    QString first;
    for (int i = 0; i < packages.size(); ++i) {
        const QString path = m_folder->add(QStringLiteral("p%1.bpk").arg(i), {1}, packages.at(i), 64);
        if (i == 0)
            first = path;
    }
    UpdateFwJob job;
    if (given)
        job.setPackage(first);
    job.setForce(force);
    job.setAllowDowngrade(downgrade);
    const Job::Error error = run(Motor, job);
    const int blocks = m_wire->sentOf(DTS::FwUpdateBlock).size();
    if (outcome == QLatin1String("sent")) {
        QCOMPARE(error, Job::NoError);
        QCOMPARE(blocks, 4);
        QCOMPARE(job.result().toMap().value("previous").toString(), QStringLiteral("1.2.0"));
        return;
    }
    QCOMPARE(blocks, 0);
    QCOMPARE(m_wire->sentOf(DTS::FwUpdateBegin).size(), 0);
    if (outcome == QLatin1String("skipped")) {
        QCOMPARE(error, Job::NoError);
        QCOMPARE(job.result().toMap().value("skipped").toBool(), true);
    } else {
        QCOMPARE(error, Job::TaskFailedError);
        QVERIFY2(job.errorString().startsWith(outcome) && job.errorString().contains("older than the device's 1.2.0"),
                 qPrintable(job.errorString()));
    }
}

void tst_FirmwareTasks::refusedBeforeSending_data()
{
    QTest::addColumn<QString>("package"); // "forged", "dcmotor", "damaged", "none"
    QTest::addColumn<QString>("error");
    QTest::newRow("forged") << "forged" << "package signature does not verify";
    QTest::newRow("for another kind") << "dcmotor" << "made for dcmotor, not for this device (motor)";
    QTest::newRow("damaged") << "damaged" << "package damaged: not an archive";
    QTest::newRow("none in catalogue") << "" << "No firmware package fits this device";
}

void tst_FirmwareTasks::refusedBeforeSending()
{
    QFETCH(QString, package);
    QFETCH(QString, error);
    const BpkKeys stranger = BpkKeys::generate();
    UpdateFwJob job;
    if (package == QLatin1String("forged"))
        job.setPackage(m_folder->add(QStringLiteral("x.bpk"), {1}, QStringLiteral("2.0.0"), 100, &stranger));
    else if (package == QLatin1String("dcmotor"))
        job.setPackage(m_folder->add(QStringLiteral("x.bpk"), {9}, QStringLiteral("2.0.0")));
    else if (package == QLatin1String("damaged")) {
        const QString path = m_folder->add(QStringLiteral("x.bpk"), {1}, QStringLiteral("2.0.0"));
        QFile f(path);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write("nonsense");
        job.setPackage(path);
    }
    QCOMPARE(run(Motor, job), Job::TaskFailedError);
    QVERIFY2(job.errorString().endsWith(error), qPrintable(job.errorString()));
    QVERIFY(m_wire->sent.isEmpty());
}

void tst_FirmwareTasks::nodeRefusesOtherKind()
{
    // The device list says motor; the node answering is a motor with inputs.
    m_wire->net.addNode(SimNode::Motor, 0x000400)->setNodeType(VRN::NodeMotorIO);
    m_objects[Motor]->setNodeAddress(VRN::makeAddr(VRN::NodeMotor, 0x000400));
    UpdateFwJob job;
    job.setPackage(m_folder->add(QStringLiteral("m.bpk"), {1}, QStringLiteral("2.0.0")));
    QCOMPARE(run(Motor, job), Job::TaskFailedError);
    QVERIFY2(job.errorString().endsWith(QStringLiteral("made for motor, not for this device (motorio)")),
             qPrintable(job.errorString()));
    QVERIFY(m_wire->sentOf(DTS::FwUpdateBegin).isEmpty());
}

void tst_FirmwareTasks::resumesAfterInterruption()
{
    const QString path = m_folder->add(QStringLiteral("m.bpk"), {1}, QStringLiteral("2.0.0"), 1600);
    UpdateFwJob first;
    first.setPackage(path);
    connect(&first, &Job::started, this, [&] {
        connect(qobject_cast<FirmwareTask*>(first.task()), &FirmwareTask::progress, this, [&](int done, int) {
            if (done == 40)
                m_workers[Motor]->queue()->dequeue(first);
        });
    });
    QCOMPARE(run(Motor, first), Job::AbortedError);
    QCOMPARE(sim(Motor)->updateNextBlock(), 40);
    m_wire->sent.clear();

    // Faults on the way: damaged blocks refused, frames lost; both retried.
    sim(Motor)->setBlockCorruption(0.1);
    m_wire->net.setLoss(0.05);
    UpdateFwJob second;
    second.setPackage(path);
    second.setRetries(20);
    QCOMPARE(run(Motor, second, 30000), Job::NoError);
    const QList<VRNMessage> blocks = m_wire->sentOf(DTS::FwUpdateBlock);
    QCOMPARE(blocks.first().payload().left(2), QByteArray::fromHex("0028"));
    QVERIFY(sim(Motor)->refusedBlocks() > 0);
    QVERIFY(second.result().toMap().value("retries").toInt() > 0);
    QCOMPARE(sim(Motor)->firmwareImage(), image(1600, 0));
}

void tst_FirmwareTasks::recoversFromBootloader_data()
{
    QTest::addColumn<int>("device");
    QTest::newRow("motor") << int(Motor);
    QTest::newRow("setting tool") << int(Tool);
    QTest::newRow("keypad") << int(Keypad);
}

void tst_FirmwareTasks::recoversFromBootloader()
{
    QFETCH(int, device);
    SimNode* node = sim(Device(device));
    const QString path = m_folder->add(QStringLiteral("m.bpk"), {VRN::getType(node->address())},
                                       QStringLiteral("3.1.0"), 500);
    node->setPowerLossAtBlock(7);
    UpdateFwJob update;
    update.setPackage(path);
    update.setRetries(1);
    QCOMPARE(run(Device(device), update), Job::TaskFailedError);
    QCOMPARE(update.errorString(), QStringLiteral("Timeout error; device waits in its bootloader: run "
                                                  "`vrnconfig firmware recover node:0x%1`").arg(Numbers[device], 6, 16, QLatin1Char('0')));
    QVERIFY(node->inBootloader());

    // The exit's answer is lost: the node has left its bootloader when the
    // exit arrives (again), and its application refuses it as unknown.
    connect(m_wire->bus, &Bus::messageSent, this, [node](const BusMessage& m) {
        if (VRNMessage(m).cmd() == DTS::BlExit && node->inBootloader())
            node->handle(VRNMessage(m));
    });
    DirectUpdateFwJob recover;
    recover.setPackage(path);
    node->setBlockCorruption(0.1);
    recover.setRetries(10);
    QCOMPARE(run(Device(device), recover), Job::NoError);
    QVERIFY(!node->inBootloader());
    QCOMPARE(node->appVersion().major, quint8(3));
    QCOMPARE(node->firmwareImage(), image(500, 1));
    QCOMPARE(recover.result().toMap().value("version").toString(), QStringLiteral("3.1.0"));
}

void tst_FirmwareTasks::givesUpWithLastError_data()
{
    QTest::addColumn<bool>("bootloader");
    QTest::addColumn<int>("blockCmd");
    QTest::addColumn<QString>("error");
    QTest::newRow("standard") << false << int(DTS::FwUpdateBlock) << QStringLiteral("Nack(block checksum error)");
    QTest::newRow("bootloader") << true << int(DTS::BlWrite) << QStringLiteral("Bootloader refused: checksum error");
}

void tst_FirmwareTasks::givesUpWithLastError()
{
    // Every block arrives damaged: the first one is sent once and retried
    // 4 x 3 times in a row (a refusal proves the node is there), then the
    // device's refusal ends the task.
    QFETCH(bool, bootloader);
    QFETCH(int, blockCmd);
    QFETCH(QString, error);
    const QString path = m_folder->add(QStringLiteral("m.bpk"), {1}, QStringLiteral("2.0.0"), 800);
    sim(Motor)->setBlockCorruption(1.0);
    UpdateFwJob standard;
    DirectUpdateFwJob direct;
    FirmwareJob& job = bootloader ? static_cast<FirmwareJob&>(direct) : standard;
    job.setPackage(path);
    job.setRetries(3);
    QCOMPARE(run(Motor, job), Job::TaskFailedError);
    QVERIFY2(job.errorString().startsWith(error), qPrintable(job.errorString()));
    // In its bootloader the node waits there: the failure says so.
    QCOMPARE(job.errorString().contains("device waits in its bootloader"), bootloader);
    const QList<VRNMessage> blocks = m_wire->sentOf(quint8(blockCmd));
    QCOMPARE(blocks.size(), 1 + FirmwareTask::RefusalFactor * 3);
    for (const VRNMessage& block : blocks)
        QCOMPARE(block.payload(), blocks.first().payload());
}

QTEST_GUILESS_MAIN(tst_FirmwareTasks)
#include "tst_firmwaretasks.moc"
