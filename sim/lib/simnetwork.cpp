#include "simnetwork.h"
#include "simnetwork_p.h"

#include "dts.h"
#include "vrnmessage.h"

#include <QDebug>

#include <algorithm>

namespace {
constexpr int BitsPerByte = 11;  // start, 8 data, parity, stop
constexpr int DefaultLineBaud = 4800;
constexpr quint32 ToolNumber = 1;
constexpr int MaxNodes = 1000000;
} // namespace

SimNetworkPrivate::SimNetworkPrivate(quint32 seed)
    : rng(seed)
{
    timer.setSingleShot(true);
    timer.setTimerType(Qt::PreciseTimer);
}

qint64 SimNetworkPrivate::lineUs(int bytes) const
{
    return baud > 0 ? qint64(bytes) * BitsPerByte * 1000000 / baud : 0;
}

qint64 SimNetworkPrivate::occupyLine(qint64 earliestUs, int bytes)
{
    if (baud <= 0)
        return earliestUs;
    lineFreeUs = std::max(earliestUs, lineFreeUs) + lineUs(bytes);
    return lineFreeUs;
}

bool SimNetworkPrivate::chance(double probability)
{
    return probability > 0.0 && rng.generateDouble() < probability;
}

void SimNetworkPrivate::send(qint64 wantedUs, QByteArray frame)
{
    if (chance(loss)) {
        ++framesLost;
        return;
    }
    if (chance(corrupt) && !frame.isEmpty()) {
        const int at = rng.bounded(frame.size());
        frame[at] = char(quint8(frame.at(at)) ^ quint8(rng.bounded(1, 256)));
        ++framesCorrupted;
    }
    // A frame reaches the listener when its last byte has crossed the line.
    outbox.emplace(occupyLine(wantedUs, frame.size()), frame);
}

void SimNetworkPrivate::armTimer()
{
    if (outbox.empty())
        return;
    // Simulated microseconds to real milliseconds; a stopped clock is moved on by hand.
    const qint64 waitMs = clock.realMsFor(outbox.begin()->first - nowUs());
    timer.start(int(waitMs < 0 ? 1 : waitMs));
}

void SimNetworkPrivate::flushDue()
{
    Q_Q(SimNetwork);
    // One at a time: a receiver may feed a new request back in synchronously.
    while (!outbox.empty() && outbox.begin()->first <= nowUs()) {
        const QByteArray frame = outbox.begin()->second;
        outbox.erase(outbox.begin());
        ++framesOut;
        bytesOut += quint64(frame.size());
        emit q->frameOut(frame);
    }
    armTimer();
}

QList<QByteArray> SimNetworkPrivate::forge(const VRNMessage& request)
{
    const quint32 tool = request.srcAddr(false);
    auto frame = [tool, &request](quint8 cmd, VRN::Addr src, const QByteArray& payload) {
        VRNMessage m(cmd, src, tool, VRN::AddrNode, payload);
        m.setSeq(request.seq());
        m.prepare();
        return m.data();
    };
    const bool unicast = request.dstType() == VRN::AddrNode;
    const VRN::Addr called = VRN::makeAddr(VRN::NodeMotor, int(request.dstAddr()));
    QList<QByteArray> out;
    switch (hostile) {
    case SimNetwork::NoHostile:
        break;
    case SimNetwork::HostileBroadcast:
        if (request.cmd() != DTS::GetNodeAddr || unicast)
            break;
        // Every kind of address no device may have, in turn.
        for (int i = 0; i < SimNetwork::HostileBroadcastAnswers; ++i) {
            const VRN::Addr forged[] = {
                VRN::makeAddr(VRN::NodeKeypad, int(VRN::BroadcastNumber)),
                VRN::makeAddr(VRN::NodeMotor, 0),
                VRN::makeAddr(VRN::NodeMotor, int(VRN::FirstToolNumber) + i),
                VRN::makeAddr(VRN::NodeAll, 0x100 + i),
                VRN::makeAddr(VRN::NodeTool, int(VRN::BroadcastNumber)),
            };
            out << frame(DTS::PostNodeAddr, forged[i % 5], QByteArray());
        }
        break;
    case SimNetwork::HostileAcks:
        if (unicast) {
            // Codes of other requests, never the one asked.
            const quint8 wrong[] = {DTS::CtrlWink, DTS::CtrlMoveTo, DTS::FwUpdateBegin, DTS::SetGroupAddr};
            for (quint8 code : wrong) {
                if (code != request.cmd()) {
                    out << frame(DTS::Ack, called, QByteArray(1, char(code)));
                    break;
                }
            }
        }
        break;
    case SimNetwork::HostileSlots:
        // Slot 3 for a read of any other slot. (Asked for slot 3, a forger
        // that answers exactly the question from the right node cannot be
        // told apart without authentication; the bus reports a node that
        // gives one request two different answers.)
        if (unicast && request.cmd() == DTS::GetGroupAddr && !request.payloadRef().startsWith('\x03'))
            out << frame(DTS::PostGroupAddr, called, QByteArray::fromHex("03ABCDEF"));
        break;
    case SimNetwork::HostileRandom: {
        const QList<quint8> codes = DTS::cmds().keys();
        for (int n = rng.bounded(1, 4); n > 0; --n) {
            const VRNCmdInfo info = DTS::cmdInfo(codes.at(rng.bounded(codes.size())));
            QByteArray payload(rng.bounded(info.minPayload(), info.maxPayload() + 1), Qt::Uninitialized);
            for (char& c : payload)
                c = char(rng.bounded(256));
            const VRN::Addr src = rng.bounded(2) ? called
                : VRN::makeAddr(VRN::NodeType(rng.bounded(16)), int(rng.bounded(0x1000000u)));
            out << frame(info.cmd(), src, payload);
        }
        break;
    }
    }
    framesForged += quint64(out.size());
    return out;
}

quint32 SimNetworkPrivate::nextFreeNumber()
{
    while (byNumber.contains(nextNumber) || nextNumber == ToolNumber)
        ++nextNumber;
    return nextNumber < VRN::BroadcastNumber ? nextNumber++ : 0;
}

SimNetwork::SimNetwork(quint32 seed, QObject* parent)
    : SimNetwork(*new SimNetworkPrivate(seed), parent)
{
}

SimNetwork::SimNetwork(SimNetworkPrivate& dd, QObject* parent)
    : QObject(parent), d_ptr(&dd)
{
    Q_D(SimNetwork);
    d->q_ptr = this;
    connect(&d->timer, &QTimer::timeout, this, [d] { d->flushDue(); });
}

SimNetwork::~SimNetwork() = default;

SimNode* SimNetwork::addNode(SimNode::Kind kind, quint32 number)
{
    Q_D(SimNetwork);
    if (number == 0)
        number = d->nextFreeNumber();
    if (number == 0 || number == ToolNumber || number >= VRN::BroadcastNumber)
        return nullptr;
    auto* node = new SimNode(kind, number, this);
    node->setClock(&d->clock);
    // Standard nodes and motors come in several node types; take them in turn.
    const int ordinal = ++d->perKind[kind];
    if (kind == SimNode::Std) {
        const VRN::NodeType types[] = {VRN::NodeKeypad, VRN::NodeSensor, VRN::NodeInterface};
        node->setNodeType(types[(ordinal - 1) % 3]);
    } else if (kind == SimNode::Motor && ordinal % 4 == 0) {
        node->setNodeType(VRN::NodeMotorIO);
    }
    node->randomize(d->rng);
    node->setLabel(QStringLiteral("%1 %2").arg(SimNode::labelPrefix(kind)).arg(ordinal).toUtf8());
    d->nodes.append(node);
    d->byNumber.insert(number, node);
    return node;
}

bool SimNetwork::addDevices(const QString& list, QString* error)
{
    QList<QPair<SimNode::Kind, int>> wanted;
    int total = 0;
    const QStringList items = list.split(QLatin1Char(','), Qt::SkipEmptyParts);
    for (const QString& item : items) {
        const QStringList parts = item.trimmed().split(QLatin1Char(':'));
        SimNode::Kind kind;
        bool ok = parts.size() == 2;
        const int count = ok ? parts.at(1).toInt(&ok) : 0;
        QString problem;
        if (!ok || count < 0)
            problem = QStringLiteral("\"%1\" is not KIND:COUNT").arg(item.trimmed());
        else if (!SimNode::kindFromName(parts.at(0).trimmed(), &kind))
            problem = QStringLiteral("unknown device kind \"%1\" (use std, motor, dcmotor, lru50, "
                                     "tx50dc, tx30, settingtool)").arg(parts.at(0).trimmed());
        else if ((total += count) > MaxNodes)
            problem = QStringLiteral("more than %1 devices").arg(MaxNodes);
        if (!problem.isEmpty()) {
            if (error)
                *error = problem;
            return false;
        }
        wanted.append({kind, count});
    }
    for (const auto& w : qAsConst(wanted)) {
        for (int i = 0; i < w.second; ++i)
            addNode(w.first);
    }
    return true;
}

int SimNetwork::addDuplicates(int count)
{
    Q_D(SimNetwork);
    const QList<SimNode*> originals = d->nodes;
    if (originals.isEmpty())
        return 0;
    int added = 0;
    for (int i = 0; i < count; ++i) {
        const SimNode* original = originals.at(d->rng.bounded(originals.size()));
        SimNode* twin = addNode(original->kind(), original->number());
        if (!twin)
            break;
        twin->setNodeType(original->nodeType());
        ++added;
    }
    return added;
}

int SimNetwork::setSilentCount(int count)
{
    Q_D(SimNetwork);
    QList<SimNode*> talking;
    for (SimNode* node : qAsConst(d->nodes)) {
        if (!node->isSilent())
            talking.append(node);
    }
    int done = 0;
    for (; done < count && !talking.isEmpty(); ++done)
        talking.takeAt(d->rng.bounded(talking.size()))->setSilent(true);
    return done;
}

QList<SimNode*> SimNetwork::nodes() const { return d_func()->nodes; }

SimNode* SimNetwork::node(quint32 number) const
{
    Q_D(const SimNetwork);
    // QMultiHash::value gives the most recently inserted; the first added wins here.
    const QList<SimNode*> all = d->byNumber.values(number);
    return all.isEmpty() ? nullptr : all.last();
}

double SimNetwork::loss() const { return d_func()->loss; }
void SimNetwork::setLoss(double probability) { d_func()->loss = qBound(0.0, probability, 1.0); }
double SimNetwork::corrupt() const { return d_func()->corrupt; }
void SimNetwork::setCorrupt(double probability) { d_func()->corrupt = qBound(0.0, probability, 1.0); }
int SimNetwork::latency() const { return d_func()->latencyMs; }
void SimNetwork::setLatency(int ms) { d_func()->latencyMs = qMax(0, ms); }
int SimNetwork::baud() const { return d_func()->baud; }
void SimNetwork::setBaud(int baud) { d_func()->baud = qMax(0, baud); }
int SimNetwork::replyWindow() const { return d_func()->replyWindowMs; }
void SimNetwork::setReplyWindow(int ms) { d_func()->replyWindowMs = qMax(0, ms); }

double SimNetwork::timeScale() const { return d_func()->clock.scale(); }
void SimNetwork::setTimeScale(double scale) { d_func()->clock.setScale(scale); }
SimClock* SimNetwork::clock() { return &d_func()->clock; }

bool SimNetwork::attach(QObject* bus)
{
    if (!bus)
        return false;
    const bool in = connect(bus, SIGNAL(transmitted(QByteArray)), this, SLOT(frameIn(QByteArray)));
    const bool out = in && connect(this, SIGNAL(frameOut(QByteArray)), bus, SLOT(inject(QByteArray)));
    if (!out) {
        disconnect(bus, nullptr, this, nullptr);
        qWarning() << "[SimNetwork]: cannot attach to" << bus
                   << "(needs signal transmitted(QByteArray) and slot inject(QByteArray))";
    }
    return out;
}

void SimNetwork::frameIn(const QByteArray& frame)
{
    Q_D(SimNetwork);
    ++d->framesIn;
    d->bytesIn += quint64(frame.size());
    const qint64 requestEndUs = d->occupyLine(d->nowUs(), frame.size());
    if (d->chance(d->loss)) {
        ++d->framesLost;
        return;
    }
    const VRNMessage request{BusMessage(frame)};
    if (!request.isValid()) {
        ++d->framesInvalid;
        for (SimNode* node : qAsConst(d->nodes))
            node->countInvalidFrame();
        return;
    }
    const bool spread = request.dstType() != VRN::AddrNode;
    QList<SimNode*> listeners = spread ? d->nodes : d->byNumber.values(request.dstAddr());
    if (!spread)  // values() lists the latest insertion first; answer in the order of adding
        std::reverse(listeners.begin(), listeners.end());
    QList<QPair<qint64, QByteArray>> answers;
    // The hostile node answers at once, ahead of the real ones.
    for (const QByteArray& forged : d->forge(request))
        answers.append({requestEndUs, forged});
    const qint64 latencyUs = qint64(d->latencyMs) * 1000;
    const int windowUs = d->replyWindowMs * 1000;
    for (SimNode* node : qAsConst(listeners)) {
        const QList<QByteArray> frames = node->handle(request);
        for (const QByteArray& out : frames) {
            const qint64 offset = spread && windowUs > 0 ? d->rng.bounded(windowUs) : 0;
            answers.append({requestEndUs + latencyUs + offset, out});
        }
    }
    std::stable_sort(answers.begin(), answers.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    for (const auto& answer : qAsConst(answers))
        d->send(answer.first, answer.second);
    d->armTimer();
}

SimNetwork::Hostile SimNetwork::hostile() const { return d_func()->hostile; }
void SimNetwork::setHostile(Hostile mode) { d_func()->hostile = mode; }
quint64 SimNetwork::framesForged() const { return d_func()->framesForged; }

bool SimNetwork::hostileFromName(const QString& name, Hostile* mode)
{
    static const QHash<QString, Hostile> names = {{QStringLiteral("broadcast"), HostileBroadcast},
                                                  {QStringLiteral("acks"), HostileAcks},
                                                  {QStringLiteral("slots"), HostileSlots},
                                                  {QStringLiteral("random"), HostileRandom}};
    const auto it = names.constFind(name);
    if (it == names.constEnd())
        return false;
    if (mode)
        *mode = *it;
    return true;
}

quint64 SimNetwork::framesIn() const { return d_func()->framesIn; }
quint64 SimNetwork::framesOut() const { return d_func()->framesOut; }
quint64 SimNetwork::framesLost() const { return d_func()->framesLost; }
quint64 SimNetwork::framesCorrupted() const { return d_func()->framesCorrupted; }
quint64 SimNetwork::framesInvalid() const { return d_func()->framesInvalid; }
quint64 SimNetwork::bytesIn() const { return d_func()->bytesIn; }
quint64 SimNetwork::bytesOut() const { return d_func()->bytesOut; }

qint64 SimNetwork::lineTimeUs(int baud) const
{
    Q_D(const SimNetwork);
    if (baud <= 0)
        baud = d->baud > 0 ? d->baud : DefaultLineBaud;
    return qint64(d->bytesIn + d->bytesOut) * BitsPerByte * 1000000 / baud;
}

void SimNetwork::resetCounters()
{
    Q_D(SimNetwork);
    d->framesIn = d->framesOut = d->framesLost = d->framesCorrupted = d->framesInvalid = 0;
    d->bytesIn = d->bytesOut = 0;
}

bool SimNetwork::isBusy() const { return !d_func()->outbox.empty(); }
