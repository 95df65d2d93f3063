#ifndef APPFIXTURE_H
#define APPFIXTURE_H

// Shared set-up of the front-end tests: user folders in a temporary place,
// and simulated devices on a loopback wire that the bus factory holds as
// its open bus.

#include "../tasks/taskfixture.h"

#include "busfactory.h"
#include "groupfactory.h"
#include "objectfactory.h"
#include "settings.h"
#include "simnetwork.h"
#include "vrnloopbackbus.h"

#include <QFile>
#include <QPointer>
#include <QStandardPaths>
#include <QTemporaryDir>

namespace AppFixture {

/// Points settings and data at `home` (before any singleton exists).
inline void redirectUserFolders(const QTemporaryDir& home)
{
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(home.path() + QStringLiteral("/config")));
    qputenv("XDG_DATA_HOME", QFile::encodeName(home.path() + QStringLiteral("/data")));
    QStandardPaths::setTestModeEnabled(true);
}

/// Ends the process-wide singletons, once the engine that used them is gone.
inline void destroySingletons()
{
    GroupFactory::destroy();
    ObjectFactory::destroy();
    BusFactory::destroy();
    Settings::destroy();
}

/// The simulated network the application talks to; the bus factory owns the wire.
class Network
{
public:
    /// `devices` as vrnsim's --devices takes it ("std:4,motor:2").
    explicit Network(const QString& devices, double timeScale = 20, const QString& uuid = QStringLiteral("loopback"))
        : net(7)
    {
        bus->setTimeout(60);
        bus->setBroadcastWindow(25);
        net.setReplyWindow(10);
        net.setTimeScale(timeScale);
        net.addDevices(devices);
        net.attach(bus);
        bus->open();
        // A registry of its own, not one an earlier run left (test mode keeps
        // registries in a folder of its own, shared by the test programs).
        for (const char* suffix : {"", "-wal", "-shm"})
            QFile::remove(ObjectFactory::registryFile(uuid) + QLatin1String(suffix));
        TaskFixture::installBus(bus, uuid);
    }

    QPointer<VRNLoopbackBus> bus = new VRNLoopbackBus;
    SimNetwork net;
};

} // namespace AppFixture

#endif // APPFIXTURE_H
