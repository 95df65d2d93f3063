#ifndef BENCHSIM_H
#define BENCHSIM_H

#include "busfactory.h"

#include <QCoreApplication>
#include <QProcess>

#include <cstdio>

// Starts vrnsim (beside the benchmark) with `arguments` and opens the bus
// its first line names in the bus factory; false, with a line said, when
// either fails.
inline bool openSimBus(QProcess& sim, const QStringList& arguments)
{
    sim.start(QCoreApplication::applicationDirPath() + QStringLiteral("/vrnsim"), arguments);
    if (!sim.waitForStarted(5000) || !sim.waitForReadyRead(10000)) {
        std::printf("cannot start vrnsim\n");
        return false;
    }
    BusFactory* buses = BusFactory::instance();
    if (!buses->openUUID(QString::fromLatin1(sim.readLine()).trimmed())) {
        std::printf("cannot open the bus: %s\n", qPrintable(buses->lastError()));
        return false;
    }
    return true;
}

#endif // BENCHSIM_H
