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

/// The words of `line`: `words("--json get label all")`.
inline QStringList words(const QString& line) { return line.split(QLatin1Char(' ')); }

/// Device `i`'s result in a run's JSON document.
inline QJsonObject result(const QByteArray& out, int i = 0)
{
    return QJsonDocument::fromJson(out).object().value(QStringLiteral("results")).toArray().at(i).toObject();
}

struct Result
{
    int code = -1;
    QByteArray out;
    QByteArray err;
    /// The run's JSON document.
    QJsonObject doc() const { return QJsonDocument::fromJson(out).object(); }
    /// Device `i`'s result in it.
    QJsonObject result(int i = 0) const { return CliFixture::result(out, i); }
};

/// The environment that puts the settings and registry under `home`.
inline QProcessEnvironment environment(const QTemporaryDir& home)
{
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("XDG_CONFIG_HOME"), home.filePath(QStringLiteral("config")));
    env.insert(QStringLiteral("XDG_DATA_HOME"), home.filePath(QStringLiteral("data")));
    return env;
}

/// Starts `program` in the folder `home`, with the settings and registry under it.
inline void startIn(QProcess& p, const QTemporaryDir& home, const QString& program, const QStringList& args)
{
    p.setProcessEnvironment(environment(home));
    p.setWorkingDirectory(home.path());
    p.start(program, args);
}

/// Starts vrnconfig (with `--timeout timeoutMs` first) on the settings and
/// registry under `home`.
inline void start(QProcess& p, const QTemporaryDir& home, const QStringList& args, int timeoutMs = 200)
{
    startIn(p, home, qEnvironmentVariable("VRNCONFIG"), QStringList{QStringLiteral("--timeout"), QString::number(timeoutMs)} + args);
}

/// Waits for the end of a run started with start(); a run that does not end is killed.
inline Result finished(QProcess& p, int ms = 60000)
{
    if (!p.waitForFinished(ms))
        p.kill();
    return {p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1, p.readAllStandardOutput(),
            p.readAllStandardError()};
}

/// Runs vrnconfig on the settings and registry under `home`; waits for its end.
inline Result run(const QTemporaryDir& home, const QStringList& args, int timeoutMs = 200)
{
    QProcess p;
    start(p, home, args, timeoutMs);
    return finished(p);
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

/// startSim(), then vrnconfig opens its bus and discovers it (with
/// `--timeout timeoutMs`) on the settings and registry under `home`; the
/// bus, empty when a step failed.
inline QString discoverSim(QProcess& sim, const QTemporaryDir& home, const QString& groupPort,
                           const QStringList& options, int timeoutMs = 200)
{
    const QString bus = startSim(sim, groupPort, options);
    if (bus.isEmpty() || run(home, {QStringLiteral("open"), bus}, timeoutMs).code != 0
        || run(home, {QStringLiteral("discover")}, timeoutMs).code != 0)
        return QString();
    return bus;
}

/// Ends a simulator started with startSim().
inline void stopSim(QProcess& sim)
{
    sim.terminate();
    sim.waitForFinished(5000);
}

} // namespace CliFixture

#endif // CLIFIXTURE_H
