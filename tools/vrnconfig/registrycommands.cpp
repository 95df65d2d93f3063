// The registry family: listing and forgetting the devices the registry holds.
#include "command.h"
#include "vrnconfigcli.h"

#include "objectfactory.h"
#include "objectquerymodel.h"

#include <QJsonArray>

namespace {

using Cli = VrnConfigCli;

QHash<QString, ObjectQueryModel::Role> sortKeys()
{
    return {{QStringLiteral("uuid"), ObjectQueryModel::UuidRole},
            {QStringLiteral("nodeid"), ObjectQueryModel::NodeIDRole},
            {QStringLiteral("type"), ObjectQueryModel::TypeRole},
            {QStringLiteral("label"), ObjectQueryModel::LabelRole},
            {QStringLiteral("serial"), ObjectQueryModel::SerialNumberRole},
            {QStringLiteral("nboccur"), ObjectQueryModel::NbOccurRole}};
}

void list(Cli& cli, const QStringList& args)
{
    if (!args.isEmpty())
        return cli.fail(Cli::Usage, Cli::tr("list takes no argument besides --sort and --desc"));
    const QString sort = cli.value(QStringLiteral("sort")).toLower();
    if (!sort.isEmpty() && !sortKeys().contains(sort))
        return cli.fail(Cli::Usage, Cli::tr("unknown sort column: %1").arg(sort));
    ObjectQueryModel* model = ObjectFactory::instance()->createQueryModel(&cli);
    model->setSort(sortKeys().value(sort.isEmpty() ? QStringLiteral("uuid") : sort),
                   cli.isSet(QStringLiteral("desc")) ? Qt::DescendingOrder : Qt::AscendingOrder);
    Output& out = cli.output();
    out.setBuffered(true);
    TextTable table(out, {{QStringLiteral("UUID"), 8, true}, {QStringLiteral("NODE"), 8}, {QStringLiteral("KIND"), 13},
                          {QStringLiteral("LABEL"), 17}, {QStringLiteral("SERIAL"), 14}, {QStringLiteral("NBOCCUR"), 0}});
    QJsonArray array;
    if (!cli.json())
        table.header();
    for (int row = 0; row < model->rowCount(); ++row) {
        const QModelIndex index = model->index(row, 0);
        auto value = [&](ObjectQueryModel::Role role) { return model->data(index, role); };
        const uint uuid = value(ObjectQueryModel::UuidRole).toUInt();
        const uint node = value(ObjectQueryModel::NodeIDRole).toUInt();
        const int type = value(ObjectQueryModel::TypeRole).toInt();
        const QString typeName = VRNObject::typeToString(VRNObject::Type(type));
        const QString label = value(ObjectQueryModel::LabelRole).toString();
        const QString serial = QString::fromUtf8(value(ObjectQueryModel::SerialNumberRole).toByteArray());
        const int nbOccur = value(ObjectQueryModel::NbOccurRole).toInt();
        // A number no device can have (an older registry, a forged answer): no job runs on it.
        const bool valid = ObjectFactory::instance()->deviceProblem(uuid) == ObjectFactory::AddressValid;
        if (cli.json())
            array.append(QJsonObject{{QStringLiteral("uuid"), qint64(uuid)}, {QStringLiteral("nodeID"), qint64(node)},
                                     {QStringLiteral("type"), type}, {QStringLiteral("typeName"), typeName},
                                     {QStringLiteral("kind"), Cli::kindName(type)},
                                     {QStringLiteral("label"), label}, {QStringLiteral("serialNumber"), serial},
                                     {QStringLiteral("nbOccur"), nbOccur}, {QStringLiteral("valid"), valid}});
        else
            table.row({QString::number(uuid), Cli::nodeText(node) + (valid ? QString() : Cli::tr(" INVALID")),
                       Cli::kindName(type), label, serial, QString::number(nbOccur)});
    }
    if (cli.json())
        out.document(array);
    cli.finish();
}

void forget(Cli& cli, const QStringList& args)
{
    QList<VRNObject::UUID> uuids;
    if (!cli.selectDevices(QStringLiteral("forget"), args, uuids))
        return;
    if (args.contains(QStringLiteral("all")) && !cli.confirm(Cli::tr("Forget all %1 device(s) of the registry").arg(uuids.size())))
        return;
    int code = Cli::Ok;
    QJsonArray array;
    for (VRNObject::UUID uuid : qAsConst(uuids)) {
        const bool ok = ObjectFactory::instance()->destroyObject(uuid);
        if (!ok)
            code = Cli::Failed;
        if (cli.json())
            array.append(QJsonObject{{QStringLiteral("uuid"), qint64(uuid)}, {QStringLiteral("ok"), ok}});
        else
            cli.output().line(QStringLiteral("%1 %2").arg(uuid).arg(ok ? Cli::tr("forgotten")
                                                                   : ObjectFactory::instance()->lastError().isEmpty()
                                                                       ? Cli::tr("not found")
                                                                       : ObjectFactory::instance()->lastError()));
    }
    if (cli.json())
        cli.output().document(array);
    if (code != Cli::Ok)
        return cli.fail(code, Cli::tr("some devices could not be removed"));
    cli.finish(code);
}

// A device discovery cannot find (a setting tool on its own line, a node
// that keeps quiet), listed by hand.
void add(Cli& cli, const QStringList& args)
{
    quint32 node = 0;
    if (args.size() != 1 || !args.first().startsWith(QLatin1String("node:")))
        return cli.fail(Cli::Usage, Cli::tr("add takes node:NUMBER and --kind KIND"));
    if (!Cli::parseNumber(args.first().mid(5), 0xFFFFFE, node) || node == 0)
        return cli.fail(Cli::Usage, Cli::tr("bad node number: %1 (1 to 0xFFFFFE)").arg(args.first()));
    VRNObject::Type kind = VRNObject::DtsStd;
    if (!cli.isSet(QStringLiteral("kind")) || !Cli::parseKind(cli.value(QStringLiteral("kind")), kind))
        return cli.fail(Cli::Usage, Cli::tr("add needs --kind KIND (one of %1)").arg(Cli::kindWords()));
    ObjectFactory* registry = ObjectFactory::instance();
    const QSharedPointer<VRNObject> object = registry->createObject(kind, node, false);
    if (!object) {
        const QString why = registry->lastError();
        return cli.fail(Cli::Failed, why.isEmpty() ? Cli::tr("%1 %2 is listed already").arg(Cli::kindName(kind), Cli::nodeText(node)) : why);
    }
    if (cli.json())
        cli.output().document(QJsonObject{{QStringLiteral("uuid"), qint64(object->uuid())}, {QStringLiteral("nodeID"), qint64(node)},
                                          {QStringLiteral("type"), int(kind)}, {QStringLiteral("kind"), Cli::kindName(kind)}});
    else
        cli.output().line(Cli::tr("%1 %2 %3 added").arg(object->uuid()).arg(Cli::nodeText(node), Cli::kindName(kind)));
    cli.finish();
}

void addRegistryCommands(CommandRegistry& r)
{
    r.add({QStringLiteral("list"), {}, QStringLiteral("[--sort COLUMN] [--desc]"),
           Cli::tr("the registry; COLUMN: uuid nodeid type label serial nboccur"), list});
    r.add({QStringLiteral("forget"), {}, QStringLiteral("DEVICE... [--yes]"),
           Cli::tr("remove devices from the registry (all asks first)"), forget});
    r.addOption(QCommandLineOption(QStringLiteral("sort"), QString(), QStringLiteral("COLUMN")), {QStringLiteral("list")});
    r.addOption(QCommandLineOption(QStringLiteral("desc")), {QStringLiteral("list")});
    r.addOption(QCommandLineOption(QStringLiteral("yes")), {QStringLiteral("forget")});
    r.add({QStringLiteral("add"), {}, QStringLiteral("node:NUMBER --kind KIND"),
           Cli::tr("list a device by hand (one discovery cannot find)"), add});
    r.addOption(QCommandLineOption(QStringLiteral("kind"), QString(), QStringLiteral("KIND")), {QStringLiteral("add")});
}

const CommandFamily family(20, "Registry", addRegistryCommands);

} // namespace
