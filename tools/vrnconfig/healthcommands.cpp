// The health family: how each node fares on the line, from requests this run
// sends (`health`) or from the traffic a monitor watches (`monitor --health`).
#include "command.h"
#include "healthcommands.h"
#include "output.h"
#include "vrnconfigcli.h"

#include "bus.h"
#include "busfactory.h"
#include "bushealthmodel.h"
#include "buspendingcallwatcher.h"
#include "dts.h"
#include "dtsstdproxy.h"
#include "objectfactory.h"
#include "vrnmessage.h"
#include "vrnobject.h"

#include <QElapsedTimer>
#include <QHash>
#include <QJsonArray>
#include <QTimer>

#include <memory>

namespace {

using Cli = VrnConfigCli;

constexpr quint32 DefaultProbes = 10;
constexpr quint32 MaxProbes = 10000;

QJsonArray healthJson(const BusHealthModel& model)
{
    QJsonArray rows;
    for (int row = 0; row < model.rowCount(); ++row)
        rows.append(QJsonObject::fromVariantMap(model.get(row)));
    return rows;
}

// Worst first, as the model sorts by default.
void printHealth(Output& out, const BusHealthModel& model, const QHash<qint64, QString>& labels)
{
    TextTable table(out, {{QStringLiteral("NODE"), 8}, {QStringLiteral("REQUESTS"), 8, true},
                          {QStringLiteral("REPLIES"), 8, true}, {QStringLiteral("REPEATS"), 8, true},
                          {QStringLiteral("TIMEOUTS"), 8, true}, {QStringLiteral("INVALID"), 8, true},
                          {QStringLiteral("MEDIAN MS"), 9, true}, {QStringLiteral("P95 MS"), 7, true},
                          {QStringLiteral("ERRORS"), 7, true}, {QStringLiteral("LABEL"), 0}});
    table.header();
    for (int row = 0; row < model.rowCount(); ++row) {
        const QVariantMap r = model.get(row);
        auto ms = [](const QVariant& v) { return v.toInt() < 0 ? QStringLiteral("-") : v.toString(); };
        table.row({r.value(QStringLiteral("node")).toString(), r.value(QStringLiteral("requests")).toString(),
                   r.value(QStringLiteral("replies")).toString(), r.value(QStringLiteral("retransmissions")).toString(),
                   r.value(QStringLiteral("timeouts")).toString(), r.value(QStringLiteral("invalidFrames")).toString(),
                   ms(r.value(QStringLiteral("medianMs"))), ms(r.value(QStringLiteral("p95Ms"))),
                   QStringLiteral("%1 %").arg(r.value(QStringLiteral("score")).toDouble() * 100, 0, 'f', 1),
                   labels.value(r.value(QStringLiteral("nodeId")).toLongLong())});
    }
}

// Sends `--count` version reads to each device, one after another through the
// bus's queue, then prints what the bus counted.
void health(Cli& cli, const QStringList& args)
{
    quint32 probes = DefaultProbes;
    if (cli.isSet(QStringLiteral("count"))
        && (!Cli::parseNumber(cli.value(QStringLiteral("count")), MaxProbes, probes) || probes == 0))
        return cli.fail(Cli::Usage, Cli::tr("bad --count: %1 (1..%2)").arg(cli.value(QStringLiteral("count"))).arg(MaxProbes));
    QList<VRNObject::UUID> uuids;
    if (!cli.selectDevices(QStringLiteral("health"), args.isEmpty() ? QStringList{QStringLiteral("all")} : args, uuids))
        return;
    if (!cli.openBus())
        return;
    Bus* bus = BusFactory::instance()->bus();
    auto labels = std::make_shared<QHash<qint64, QString>>();
    auto pending = std::make_shared<int>(0);
    auto finishAll = [&cli, bus, labels] {
        BusHealthModel* model = bus->health();
        model->flush();
        if (cli.json())
            cli.output().document(healthJson(*model));
        else
            printHealth(cli.output(), *model, *labels);
        cli.finish();
    };
    for (VRNObject::UUID uuid : qAsConst(uuids)) {
        const QSharedPointer<VRNObject> object = ObjectFactory::instance()->object(uuid);
        if (!object)
            continue;
        const VRN::Addr addr = object->address();
        labels->insert(VRN::getNumber(addr), QString::fromUtf8(object->label()));
        if (!VRN::isDeviceAddr(addr))
            continue;  // never asked: the registry row is invalid
        auto* proxy = new DTSStdProxy(addr, bus, &cli);
        for (quint32 i = 0; i < probes; ++i) {
            auto* watcher = new BusPendingCallWatcher(proxy->getNodeAppVersion(), &cli);
            ++*pending;
            QObject::connect(watcher, &BusPendingCallWatcher::finished, &cli, [watcher, pending, finishAll] {
                watcher->deleteLater();
                if (--*pending == 0)
                    finishAll();
            });
        }
    }
    if (*pending == 0)
        finishAll();
}

// What a monitor learns from the traffic of every tool on the line: a
// request to a node, the same bytes again (a repeat), the node's answer or
// none before the next request.
class TrafficHealth
{
public:
    explicit TrafficHealth(BusHealthModel* model) : m_model(model)
    {
        model->setNodeNames([](qint64 node) { return Cli::nodeText(quint32(node)); });
    }

    void frame(const BusMessage& bytes)
    {
        const VRNMessage m(bytes);
        if (!m.isValid())
            return;
        const qint64 src = m.srcAddr(false);
        if (VRN::getType(m.srcAddr()) == VRN::NodeTool) {
            if (m.dstType() != VRN::AddrNode)
                return;
            const qint64 node = m.dstAddr();
            Pending& p = m_pending[node];
            if (p.answered == false && !p.request.isEmpty()) {
                if (p.request == bytes.data()) {
                    m_model->recordRetransmission(node);
                    p.clock.start();
                    return;
                }
                m_model->recordTimeout(node);
            }
            m_model->recordRequest(node);
            p = Pending{bytes.data(), false, {}};
            p.clock.start();
            return;
        }
        auto it = m_pending.find(src);
        if (it != m_pending.end() && !it->answered && DTS::answers(VRNMessage(BusMessage(it->request)), m)
            && m.dstAddr() == VRNMessage(BusMessage(it->request)).srcAddr(false)) {
            it->answered = true;
            m_model->recordReply(src, int(it->clock.elapsed()));
            return;
        }
        m_model->recordInvalid(src);
    }

private:
    struct Pending
    {
        QByteArray request;
        bool answered = false;
        QElapsedTimer clock;
    };
    BusHealthModel* m_model;
    QHash<qint64, Pending> m_pending;
};

void addHealthCommands(CommandRegistry& r)
{
    r.add({QStringLiteral("health"), {}, QStringLiteral("[DEVICE...] [--count N]"),
           Cli::tr("asks each device (default: all) N times (default 10) for its version and\n"
                   "shows how each fared, worst first: requests, replies, repeats, timeouts,\n"
                   "invalid frames, median and 95th percentile response time"), health});
    r.addOption(QCommandLineOption(QStringLiteral("health")), {QStringLiteral("monitor")});
}

const CommandFamily family(75, "Health", addHealthCommands);

} // namespace

void monitorHealth(VrnConfigCli& cli, double duration)
{
    if (!cli.openBus())
        return;
    Bus* bus = BusFactory::instance()->bus();
    auto* model = new BusHealthModel(&cli);
    auto traffic = std::make_shared<TrafficHealth>(model);
    QObject::connect(bus, &Bus::messageSent, &cli, [traffic](const BusMessage& m) { traffic->frame(m); });
    QObject::connect(bus, &Bus::messageReceived, &cli, [traffic](const BusMessage& m) { traffic->frame(m); });
    auto refresh = [&cli, model] {
        if (cli.ended())
            return;
        model->flush();
        if (cli.json()) {
            cli.output().jsonLine(QJsonObject{{QStringLiteral("nodes"), healthJson(*model)}});
            return;
        }
        // In place on a terminal: home, clear, the table again.
        if (cli.output().onTerminal())
            cli.output().write("\x1b[H\x1b[2J");
        printHealth(cli.output(), *model, {});
        cli.output().flush();
    };
    auto* timer = new QTimer(&cli);
    QObject::connect(timer, &QTimer::timeout, &cli, refresh);
    timer->start(1000);
    auto end = [&cli, refresh] {
        refresh();
        cli.finish();
    };
    cli.setInterruptHandler(end);
    failWhenBusGoes(cli, bus);
    if (duration >= 0)
        QTimer::singleShot(int(duration * 1000), &cli, end);
}

void failWhenBusGoes(VrnConfigCli& cli, Bus* bus, std::function<void()> before)
{
    QObject::connect(bus, &Bus::closed, &cli, [&cli, bus, before] {
        if (cli.ended())
            return;
        if (before)
            before();
        const QString why = bus->errorString().isEmpty() ? Cli::tr("closed") : bus->errorString();
        cli.fail(Cli::Failed, Cli::tr("the bus went away: %1").arg(why));
    });
}
