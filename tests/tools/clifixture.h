#ifndef CLIFIXTURE_H
#define CLIFIXTURE_H

// Shared set-up of the vrnconfig tests: the tool run as a process with its
// settings and registry in a temporary folder, and vrnsim serving a group.

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

namespace CliFixture {

struct Result
{
    int code = -1;
    QByteArray out;
    QByteArray err;
};

/// Runs vrnconfig (with `--timeout timeoutMs` first) on the settings and
/// registry under `home`; waits for its end.
inline Result run(const QTemporaryDir& home, const QStringList& args, int timeoutMs = 200)
{
    QProcess p;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("XDG_CONFIG_HOME"), home.filePath(QStringLiteral("config")));
    env.insert(QStringLiteral("XDG_DATA_HOME"), home.filePath(QStringLiteral("data")));
    p.setProcessEnvironment(env);
    p.start(qEnvironmentVariable("VRNCONFIG"), QStringList{QStringLiteral("--timeout"), QString::number(timeoutMs)} + args);
    if (!p.waitForFinished(30000))
        p.kill();
    return {p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1, p.readAllStandardOutput(),
            p.readAllStandardError()};
}

/// Device `i`'s result in a run's JSON document.
inline QJsonObject result(const QByteArray& out, int i = 0)
{
    return QJsonDocument::fromJson(out).object().value(QStringLiteral("results")).toArray().at(i).toObject();
}

/// Starts vrnsim on multicast `groupPort` with `options`; the bus identifier
/// it prints, empty when it did not start.
inline QString startSim(QProcess& sim, const QString& groupPort, const QStringList& options)
{
    sim.start(qEnvironmentVariable("VRNSIM"), QStringList{QStringLiteral("--mcast"), groupPort} + options);
    if (!sim.waitForStarted(5000) || !sim.waitForReadyRead(5000))
        return QString();
    return QString::fromLatin1(sim.readLine()).trimmed();
}

} // namespace CliFixture

#endif // CLIFIXTURE_H
