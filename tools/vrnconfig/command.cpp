#include "command.h"

#include <QCoreApplication>

#include <algorithm>

namespace {

std::vector<const CommandFamily*>& families()
{
    static std::vector<const CommandFamily*> list;
    return list;
}

} // namespace

QString Command::synopsis() const
{
    QStringList words{name};
    if (!subject.isEmpty())
        words << subject;
    if (!arguments.isEmpty())
        words << arguments;
    return words.join(QLatin1Char(' '));
}

void CommandRegistry::add(const Command& command)
{
    Command c = command;
    c.family = m_family;
    m_commands.push_back(c);
}

void CommandRegistry::addOption(const QCommandLineOption& option, const QStringList& commands)
{
    for (auto& known : m_options) {
        if (known.first.names() == option.names()) {
            for (const QString& c : commands)
                if (!known.second.contains(c))
                    known.second << c;
            return;
        }
    }
    m_options.append({option, commands});
}

const Command* CommandRegistry::find(const QString& name, QStringList& args, QString& error) const
{
    const QList<const Command*> candidates = named(name);
    if (candidates.isEmpty()) {
        error = QCoreApplication::translate("vrnconfig", "unknown command: %1; see vrnconfig --help").arg(name);
        return nullptr;
    }
    QStringList subjects;
    for (const Command* c : candidates) {
        if (c->subject.isEmpty())
            return c;
        if (!args.isEmpty() && args.first() == c->subject) {
            args.removeFirst();
            return c;
        }
        subjects << c->subject;
    }
    error = args.isEmpty()
        ? QCoreApplication::translate("vrnconfig", "%1 needs what: %2").arg(name, subjects.join(QStringLiteral(", ")))
        : QCoreApplication::translate("vrnconfig", "cannot %1 %2 (%3)").arg(name, args.first(), subjects.join(QStringLiteral(", ")));
    return nullptr;
}

QList<const Command*> CommandRegistry::named(const QString& name) const
{
    QList<const Command*> list;
    for (const Command& c : m_commands)
        if (c.name == name)
            list << &c;
    return list;
}

QList<QCommandLineOption> CommandRegistry::options() const
{
    QList<QCommandLineOption> list;
    for (const auto& o : m_options)
        list << o.first;
    return list;
}

QStringList CommandRegistry::takers(const QString& option) const
{
    for (const auto& o : m_options)
        if (o.first.names().contains(option))
            return o.second;
    return {};
}

CommandFamily::CommandFamily(int order, const char* title, Register add) : m_order(order), m_title(title), m_add(add)
{
    families().push_back(this);
}

void CommandFamily::registerAll(CommandRegistry& registry)
{
    std::vector<const CommandFamily*> list = families();
    std::stable_sort(list.begin(), list.end(), [](const CommandFamily* a, const CommandFamily* b) { return a->m_order < b->m_order; });
    for (const CommandFamily* f : list) {
        registry.setFamily(QString::fromUtf8(f->m_title));
        f->m_add(registry);
    }
}
