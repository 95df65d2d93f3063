#ifndef VRNCONFIG_COMMAND_H
#define VRNCONFIG_COMMAND_H

#include <QCommandLineOption>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

class VrnConfigCli;

/// One command of vrnconfig. A verb several families share ("get", "set")
/// is told apart by its subject, the first word after it ("get label",
/// "get position"); a command without subject takes every argument.
struct Command
{
    QString name;
    QString subject;
    /// Arguments after the name and subject, for the help: "DEVICE TEXT".
    QString arguments;
    /// One line (or a few, joined by '\n') for the help.
    QString help;
    /// Runs with the arguments after the name and subject. It ends the run
    /// through `VrnConfigCli::finish()` or `fail()`, now or later from the
    /// event loop.
    std::function<void(VrnConfigCli&, const QStringList&)> run;
    /// The family's title, set by the registry.
    QString family = QString();

    QString synopsis() const;
};

/// What the command families put in: their commands and the options that
/// only some commands take (any other command refuses them).
class CommandRegistry
{
public:
    void add(const Command& command);
    /// `option` is taken by the named commands only ("list", or "get" for
    /// every "get" subject).
    void addOption(const QCommandLineOption& option, const QStringList& commands);

    /// The command `name` for `args` (the subject is taken off `args`), or
    /// null with the reason in `error`.
    const Command* find(const QString& name, QStringList& args, QString& error) const;
    QList<const Command*> named(const QString& name) const;
    const std::vector<Command>& commands() const { return m_commands; }
    QList<QCommandLineOption> options() const;
    /// The commands that take the option named `option`; empty for a global one.
    QStringList takers(const QString& option) const;

    /// The family whose commands are being added.
    void setFamily(const QString& title) { m_family = title; }

private:
    std::vector<Command> m_commands;
    QList<QPair<QCommandLineOption, QStringList>> m_options;
    QString m_family;
};

/// A family of commands, one per source file, registered by a static object
/// of this class in that file:
///
///     static const CommandFamily family(30, "Motors", [](CommandRegistry& r) { r.add({...}); });
///
/// `order` places the family in the help. Adding the file to the tool's
/// CMakeLists.txt is all a new family needs.
class CommandFamily
{
public:
    using Register = void (*)(CommandRegistry&);
    CommandFamily(int order, const char* title, Register add);

    /// Every family's commands, in the families' order.
    static void registerAll(CommandRegistry& registry);

private:
    int m_order;
    const char* m_title;
    Register m_add;
};

#endif // VRNCONFIG_COMMAND_H
