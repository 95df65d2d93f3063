// A firmware update of five motors, offscreen: the application's Firmware
// view (its Update, every selected device at once, each row showing its
// progress) against the library's jobs queued one device after another as
// vrnconfig queues them. Same bus, same package size; wall time of each.
// On the in-process simulator, then on vrnsim over loopback multicast
// (the bus the application opens at start, as a user's would be).
//
//     bench_appfirmware [image bytes]   (default 8192)

#include "../tests/app/appfixture.h"
#include "../tests/firmware/firmwarefixture.h"

#include "appengine.h"
#include "updatefwjob.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QGuiApplication>
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

int run(int size, const QString& bus)
{
    QTemporaryDir home;
    AppFixture::redirectUserFolders(home);
    FirmwareFixture::Folder folder;
    folder.add(QStringLiteral("motor-9.0.0.bpk"), {int(VRN::NodeMotor)}, QStringLiteral("9.0.0"), size);
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
    QMetaObject::invokeMethod(connection, "discover");
    waitFor([&] { return !connection->property("discovering").toBool(); }, 20000);
    QObject* selection = view(window, "devicesView")->property("selection").value<QObject*>();
    QMetaObject::invokeMethod(selection, "setItems", Q_ARG(ObjectFactory::DevicesTableColumn, ObjectFactory::TypeColumn),
                              Q_ARG(QVariant, int(VRNObject::DtsMotor)));
    const int motors = selection->property("rowCount").toInt();
    std::printf("image %d bytes (%d blocks), %d motors, %s\n", size, (size + 15) / 16, motors,
                bus.isEmpty() ? "in-process simulator" : qPrintable(QStringLiteral("vrnsim on ") + bus));

    // The application: the Firmware view's update of every selected device.
    QMetaObject::invokeMethod(window, "showView", Q_ARG(QVariant, QStringLiteral("firmware")));
    QObject* firmware = view(window, "firmwareView");
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
            std::printf("  %u: %s\n", uuid, qPrintable(job.errorString()));
    }
    std::printf("library, one device after another: %d of %d updated in %.2f s\n", ok, motors, timer.elapsed() / 1000.0);
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    QQuickWindow::setSceneGraphBackend(QStringLiteral("software"));
    const int size = argc > 1 ? QByteArray(argv[1]).toInt() : 8192;
    if (run(size, QString()) != 0)
        return 1;
    AppFixture::destroySingletons();
    for (const QString& line : {QStringLiteral("--mcast 239.255.92.17:47937"), QStringLiteral("--serial")}) {
        QProcess sim;
        sim.start(QCoreApplication::applicationDirPath() + QStringLiteral("/vrnsim"),
                  line.split(QLatin1Char(' ')) + QStringList{QStringLiteral("--devices"), QStringLiteral("motor:5")});
        if (!sim.waitForStarted(5000) || !sim.waitForReadyRead(10000))
            return 1;
        const int code = run(size, QString::fromLatin1(sim.readLine()).trimmed());
        sim.terminate();
        sim.waitForFinished(5000);
        AppFixture::destroySingletons();
        if (code != 0)
            return code;
    }
    return 0;
}
