// A firmware update of five motors, offscreen: the application's Firmware
// view (its Update, every selected device at once, each row showing its
// progress) against the library's jobs queued one device after another as
// vrnconfig queues them. Same bus, same package size; wall time of each.
// On the in-process simulator, then on vrnsim over loopback multicast
// (the bus the application opens at start, as a user's would be), started
// as the application starts (its log, a tool number of its own, the bus
// timeout and repeats of its settings). Over vrnsim the update runs twice:
// after a discovery, then in a second start of the application whose
// registry already holds the devices (no discovery).
//
//     bench_appfirmware [image bytes] [vrnsim options...]   (default 8192 bytes)
//     bench_appfirmware 8192 --latency 20 --loss 0.1

#include "../tests/app/appfixture.h"
#include "../tests/firmware/firmwarefixture.h"

#include "appengine.h"
#include "updatefwjob.h"
#include "vrnmessage.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QApplication>
#include <QQmlApplicationEngine>
#include <QQuickWindow>

#include <cstdio>
#include <functional>

namespace {

bool waitFor(const std::function<bool()>& done, int ms)
{
    QElapsedTimer t;
    t.start();
    while (!done() && t.elapsed() < ms)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    return done();
}

QObject* view(QObject* window, const char* name)
{
    return window->property(name).value<QObject*>();
}

// `discover`: a discovery first; else the registry of an earlier start
// holds the devices. `force`: also devices that run the package's version.
int run(int size, const QString& bus, bool discover = true, bool force = false)
{
    QTemporaryDir home;
    AppFixture::redirectUserFolders(home);
    FirmwareFixture::Folder folder;
    folder.add(QStringLiteral("motor-9.0.0.bpk"), {int(VRN::NodeMotor)}, QStringLiteral("9.0.0"), size);
    QString logError;
    AppEngine::startLog(home.filePath(QStringLiteral("vrnconfigtool.log")), false, &logError);
    QScopedPointer<AppFixture::Network> network;
    if (bus.isEmpty())
        network.reset(new AppFixture::Network(QStringLiteral("motor:5"), 20));
    QQmlApplicationEngine engine;
    QString error;
    if (!AppEngine::start(engine, bus, &error)) {
        std::printf("application did not start: %s\n", qPrintable(error));
        return 1;
    }
    QObject* window = engine.rootObjects().first();
    QMetaObject::invokeMethod(window, "showView", Q_ARG(QVariant, QStringLiteral("connection")));
    QObject* connection = view(window, "connectionView");
    if (discover) {
        QMetaObject::invokeMethod(connection, "discover");
        waitFor([&] { return !connection->property("discovering").toBool(); }, 60000);
    }
    QObject* selection = view(window, "devicesView")->property("selection").value<QObject*>();
    QMetaObject::invokeMethod(selection, "setItems", Q_ARG(ObjectFactory::DevicesTableColumn, ObjectFactory::TypeColumn),
                              Q_ARG(QVariant, int(VRNObject::DtsMotor)));
    const int motors = selection->property("rowCount").toInt();
    std::printf("image %d bytes (%d blocks), %d motors, %s, %s\n", size, (size + 15) / 16, motors,
                bus.isEmpty() ? "in-process simulator" : qPrintable(QStringLiteral("vrnsim on ") + bus),
                discover ? "after a discovery" : "registry of an earlier start, no discovery");

    // The application: the Firmware view's update of every selected device.
    QMetaObject::invokeMethod(window, "showView", Q_ARG(QVariant, QStringLiteral("firmware")));
    QObject* firmware = view(window, "firmwareView");
    firmware->setProperty("force", force);
    QElapsedTimer timer;
    timer.start();
    QVariant started;
    QMetaObject::invokeMethod(firmware, "update", Q_RETURN_ARG(QVariant, started), Q_ARG(QVariant, false));
    waitFor([&] { return firmware->property("busy").toInt() == 0; }, 300000);
    std::printf("application, Firmware view: %d devices in %.2f s (%s)\n", started.toInt(), timer.elapsed() / 1000.0,
                qPrintable(firmware->property("summary").toString()));

    // As vrnconfig: one job after another on the devices' workers.
    QList<VRNObject::UUID> uuids;
    for (int i = 0; i < motors; ++i) {
        QVariant uuid;
        QMetaObject::invokeMethod(selection, "data", Q_RETURN_ARG(QVariant, uuid), Q_ARG(int, i));
        uuids.append(uuid.toUInt());
    }
    timer.restart();
    int ok = 0;
    for (VRNObject::UUID uuid : uuids) {
        QSharedPointer<VRNObjectWorker> worker = ObjectFactory::instance()->objectWorker(uuid);
        UpdateFwJob job;
        job.setForce(true);
        worker->queue()->enqueue(job, 10);
        waitFor([&] { return job.state() == Job::Finished; }, 120000);
        ok += job.error() == Job::NoError ? 1 : 0;
        if (job.error() != Job::NoError)
            std::printf("  %u (node 0x%06x, node type %d in the registry): %s\n", uuid,
                        unsigned(VRN::getNumber(worker->vrnObject()->address())),
                        int(ObjectFactory::instance()->deviceNodeType(uuid)), qPrintable(job.errorString()));
    }
    std::printf("library, one device after another: %d of %d updated in %.2f s\n", ok, motors, timer.elapsed() / 1000.0);
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv); // the Health chart is a graphics view of Qt Widgets
    QQuickWindow::setSceneGraphBackend(QStringLiteral("software"));
    // As the application: a tool number of this process's own.
    VRN::setToolNumber(0xFE0000u + quint32(QCoreApplication::applicationPid()) % 0x10000u);
    const int size = argc > 1 ? QByteArray(argv[1]).toInt() : 8192;
    const QStringList simOptions = QCoreApplication::arguments().mid(2);
    if (simOptions.isEmpty() && run(size, QString()) != 0)
        return 1;
    AppFixture::destroySingletons();
    for (const QString& line : {QStringLiteral("--mcast 239.255.92.17:47937"), QStringLiteral("--serial")}) {
        QProcess sim;
        sim.start(QCoreApplication::applicationDirPath() + QStringLiteral("/vrnsim"),
                  line.split(QLatin1Char(' ')) + QStringList{QStringLiteral("--devices"), QStringLiteral("motor:5")}
                      + simOptions);
        if (!sim.waitForStarted(5000) || !sim.waitForReadyRead(10000))
            return 1;
        const QString bus = QString::fromLatin1(sim.readLine()).trimmed();
        if (!simOptions.isEmpty())
            std::printf("vrnsim %s\n", qPrintable(simOptions.join(QLatin1Char(' '))));
        int code = run(size, bus);
        AppFixture::destroySingletons();
        if (code == 0) {
            code = run(size, bus, false, true);
            AppFixture::destroySingletons();
        }
        sim.terminate();
        sim.waitForFinished(5000);
        if (code != 0)
            return code;
    }
    return 0;
}
