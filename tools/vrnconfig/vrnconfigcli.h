#ifndef VRNCONFIGCLI_H
#define VRNCONFIGCLI_H

#include "command.h"
#include "output.h"
#include "vrnobject.h"

#include <QCommandLineParser>
#include <QObject>
#include <QStringList>

#include <functional>

class QSocketNotifier;

/// The `vrnconfig` command line: parses the options, runs one command of the
/// registered families (see command.h) on the event loop and quits with 0
/// (all went well), 1 (a device's job or the bus failed), 2 (usage error)
/// or 130 (interrupted).
///
/// The commands use what is shared here: the options, the output layer,
/// opening the registry and the bus, naming devices, confirmation, and the
/// device runner (devicerunner.h).
class VrnConfigCli : public QObject
{
    Q_OBJECT
public:
    enum Exit { Ok = 0, Failed = 1, Usage = 2, Interrupted = 130 };

    explicit VrnConfigCli(QObject* parent = nullptr);
    ~VrnConfigCli() override;

    /// Parses `arguments` (program name first) and starts the command;
    /// false when it has already ended (exit code in `exitCode()`).
    bool start(const QStringList& arguments);
    int exitCode() const { return m_exit; }
    bool ended() const { return m_ended; }

    // --- for the commands ---------------------------------------------------

    Output& output() { return m_output; }
    bool json() const { return m_output.json(); }
    /// An option's value, or whether it was given ("sort", "yes").
    QString value(const QString& option) const;
    bool isSet(const QString& option) const { return m_parser.isSet(option); }
    /// --timeout in ms, or -1.
    int timeout() const { return m_timeout; }
    /// --retries: how often a job that timed out runs again (0..10, default 2).
    int retries() const { return m_retries; }

    /// Opens the bus (--bus or the remembered one); false when it failed (the
    /// run has then ended with the reason).
    bool openBus();
    /// A bus identifier the tool can use (multicast: group, port and bind
    /// address checked); false on a usage error (the run has ended).
    bool checkBusUuid(const QString& uuid);
    /// Opens and remembers `uuid`; false with the reason (the run has ended).
    bool openBusUuid(const QString& uuid);
    /// The devices named by `words` (uuids, node:NUMBER, group:ADDR,
    /// type:KIND, all); false on a usage error, an empty selection included
    /// (the run has ended).
    bool resolveDevices(const QStringList& words, QList<VRNObject::UUID>& uuids);
    /// `resolveDevices` for the command `name`, which needs at least one DEVICE.
    bool selectDevices(const QString& name, const QStringList& words, QList<VRNObject::UUID>& uuids);
    /// Asks "question [y/N]" on a terminal, or needs --yes; false when not
    /// confirmed (the run has ended).
    bool confirm(const QString& question);
    /// Called on Ctrl-C instead of ending with 130 (the runner takes the
    /// waiting devices off; a monitor closes its capture).
    void setInterruptHandler(std::function<void()> handler) { m_interrupt = std::move(handler); }

    /// One error line (and, with --json, the error document); ends the run.
    void fail(int code, const QString& message);
    void finish(int code = Ok);

    /// A whole number in 0..max, decimal or 0x hexadecimal.
    static bool parseNumber(const QString& text, quint32 max, quint32& value);
    /// A group address: 1 to 0xFFFFFE, decimal or 0x hexadecimal.
    static bool parseGroupAddress(const QString& text, quint32& group);
    /// A node's number, written one way everywhere: 0x000102.
    static QString nodeText(quint32 node);
    /// One device's result, in the columns every command on devices prints:
    /// uuid, node, "ok" or "FAILED", then what was read or why it failed
    /// (made printable).
    static QString resultLine(quint32 uuid, const QString& node, bool ok, const QString& text);
    /// A device kind as a person names it ("DC motor"); JSON carries the
    /// enum key (`VRNObject::typeToString`) and the number beside it.
    static QString kindName(int type);
    /// A kind as the tool's words name it ("dcmotor") or by its enum key.
    static bool parseKind(const QString& word, VRNObject::Type& kind);
    /// The kind words, for messages.
    static QString kindWords();
    /// The registry file of a bus when --db is not given: one per bus, in
    /// the user's data folder, named from the bus identifier.
    static QString registryFile(const QString& dataFolder, const QString& busUuid);
    /// A group, port and bind address that a multicast bus can use; false
    /// with the offending value named in `error`.
    static bool checkMCastUuid(const QString& uuid, QString& error);
    static QString hex(quint32 value, int width);

    /// True, and the run ended with one line, when the registry is read-only
    /// (for commands that change it).
    bool refuseReadOnly();
    /// Why a registry write failed during the run, empty when none did.
    QString registryError() const { return m_registryError; }

Q_SIGNALS:
    void done(int exitCode);

private:
    bool openDatabase(const QString& busUuid);
    /// Removes the registry file this run created while it is still empty.
    void discardNewRegistry();
    void printHelp(const QString& command);
    void watchInterrupts();

    CommandRegistry m_registry;
    QCommandLineParser m_parser;
    Output m_output;
    QString m_busUuid;
    QString m_dbFile;
    QString m_registryPath;
    bool m_registryCreated = false;
    QString m_registryError;
    /// The command that asks before changing more than one device, until it asked.
    QString m_asking;
    int m_timeout = -1;
    int m_retries = 2;
    int m_repeats = -1;  // -1: the bus's own (the setting)
    int m_exit = Ok;
    bool m_ended = false;
    std::function<void()> m_interrupt;
    QSocketNotifier* m_interruptNotifier = nullptr;
};

#endif // VRNCONFIGCLI_H
