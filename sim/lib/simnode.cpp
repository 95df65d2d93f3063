#include "simnode.h"
#include "simnode_p.h"

#include "dts.h"
#include "vrndatawriter.h"
#include "vrnmessage.h"

#include <QRandomGenerator>

#include <algorithm>

// The node every kind shares: addressing, the node commands, faults and the
// statistics. Motor commands live in simmotor.cpp, the DC-motor additions in
// simdcmotor.cpp.

namespace {

struct KindInfo {
    SimNode::Kind kind;
    const char* name;
    VRN::NodeType type;
    const char* labelPrefix;
};
const KindInfo Kinds[] = {
    {SimNode::Std, "std", VRN::NodeKeypad, "Node"},
    {SimNode::Motor, "motor", VRN::NodeMotor, "Motor"},
    {SimNode::DCMotor, "dcmotor", VRN::NodeDCMotor, "DC motor"},
    {SimNode::LRU50, "lru50", VRN::NodeLRU50, "LRU50"},
    {SimNode::TX50DC, "tx50dc", VRN::NodeTX50DC, "TX50DC"},
    {SimNode::TX30, "tx30", VRN::NodeTX30, "TX30"},
    {SimNode::SettingTool, "settingtool", VRN::NodeSettingTool, "Setting tool"},
};

bool isToolType(VRN::NodeType type)
{
    return type == VRN::NodeTool || type == VRN::NodeSettingTool;
}

bool isMotorCommand(quint8 cmd) { return cmd < DTS::GetNodeAddr; }

} // namespace

SimNodePrivate::SimNodePrivate(SimNode::Kind kind, quint32 number)
    : kind(kind), number(number & 0xFFFFFFu), nodeType(SimNode::defaultNodeType(kind))
{
    ips.fill(SimNode::Unset16);
    if (SimNode::isDC(kind))
        resetDC(DTSMotor::FactoryAll);
    serial = QByteArray::number(number, 16).rightJustified(6, '0').toUpper();
}

// --- requests ---------------------------------------------------------------

int SimNodePrivate::execute(const VRNMessage& rq, VRNMessage& out)
{
    const VRNCmdInfo info = DTS::cmdInfo(rq.cmd());
    const bool motorCmd = isMotorCommand(rq.cmd());
    if (bootloader)
        return executeBootloader(rq, out);
    if (rq.cmd() == DTS::CtrlStopAll)
        return stopAll(rq);
    if (!info.isRequest() || (motorCmd && !SimNode::hasMotor(kind))
        || (SimReply::isDCCommand(rq.cmd()) && !SimNode::isDC(kind))) {
        errorStat.unknownMessage++;
        return DTS::NackUnknownMessage;
    }
    if (!info.acceptsPayloadSize(rq.payload().size())) {
        errorStat.msgLengthError++;
        return DTS::NackMessageLength;
    }
    if (info.reply() != DTS::Ack)
        out.setCmd(info.reply());
    if (isFirmwareCommand(rq.cmd()))
        return executeFirmwareCommand(rq, out);
    return motorCmd ? executeMotorCommand(rq, out) : executeNodeCommand(rq, out);
}

int SimNodePrivate::executeNodeCommand(const VRNMessage& rq, VRNMessage& out)
{
    VRNDataReader in(rq.payload());
    VRNDataWriter w(out);
    switch (rq.cmd()) {
    case DTS::GetNodeAddr:
        return discoveryMark ? NoAnswer : Answered;
    case DTS::GetGroupAddr: {
        const quint8 index = in.readUint8();
        if (index >= SimNode::GroupSlots)
            return DTS::NackDataOutOfRange;
        w.writeUint8(index).writeUint24(groups[index]);
        return Answered;
    }
    case DTS::GetNetworkConfig:
        w.writeUint8(networkConfig.broadcastPriority).writeUint8(networkConfig.lowPriority)
            .writeUint8(networkConfig.maxRetry).writeUint8(networkConfig.slotCount);
        return Answered;
    case DTS::GetNodeLabel:
        w.writeBytes(label);
        return Answered;
    case DTS::GetNetworkStat:
        w.writeUint8(networkStat.maxRetryCount).writeUint32(networkStat.frameSent)
            .writeUint32(networkStat.frameSeen).writeUint32(networkStat.frameReceived)
            .writeUint16(networkStat.busyCount).writeUint8(networkStat.maxSlot)
            .writeUint8(networkStat.supervisionFailure);
        return Answered;
    case DTS::GetNetworkErrorStat:
        for (quint16 v : {errorStat.txFailures, errorStat.collisions, errorStat.rxDataError,
                          errorStat.unknownMessage, errorStat.msgLengthError, errorStat.rxFifoFull,
                          errorStat.txFifoFull, errorStat.crcError, errorStat.bundleSizeError})
            w.writeUint16(v);
        return Answered;
    case DTS::GetNodeSerialNumber:
        w.writeBytes(serial);
        return Answered;
    case DTS::ClearDiscovery:
        discoveryMark = false;
        return SimReply::ack(out);
    case DTS::SetGroupAddr: {
        const quint8 index = in.readUint8();
        const quint32 group = in.readUint24();
        if (index >= SimNode::GroupSlots || group == VRN::BroadcastNumber)
            return DTS::NackDataOutOfRange;
        groups[index] = group;
        return SimReply::ack(out);
    }
    case DTS::SetNodeDiscovery: {
        const quint8 mark = in.readUint8();
        if (mark > 1)
            return DTS::NackDataOutOfRange;
        discoveryMark = mark == 1;
        return SimReply::ack(out);
    }
    case DTS::SetNodeLabel:
        label = rq.payload();
        return SimReply::ack(out);
    case DTS::SetDeafMode:
        return SimReply::ackUnless(setDeafMode(rq), out);
    case DTS::SetNetworkStat: {
        const quint8 which = in.readUint8();
        const quint8 value = in.readUint8();
        if (which > 2)
            return DTS::NackDataOutOfRange;
        setNetworkCounters(which, value);
        return SimReply::ack(out);
    }
    case DTS::GetNodeAppVersion:
        w.writeUint8(version.major).writeUint8(version.minor).writeUint8(version.patch)
            .writeUint16(version.build);
        return Answered;
    }
    errorStat.unknownMessage++;
    return DTS::NackUnknownMessage;
}

// Returns a NACK status, 0 when accepted.
int SimNodePrivate::setDeafMode(const VRNMessage& rq)
{
    VRNDataReader in(rq.payload());
    const quint32 target = in.readUint24();
    const quint16 duration = in.readUint16();
    const quint8 mode = in.readUint8();
    if (mode != 0x00 && mode != 0xFF)
        return DTS::NackDataOutOfRange;
    if (target != VRN::BroadcastNumber && target != number)
        return 0;
    Q_Q(SimNode);
    if (mode == 0x00 || duration == 0)
        q->setDeaf(0);
    else
        q->setDeaf(duration == 0xFFFF ? -1 : int(duration) * 10);
    return 0;
}

void SimNodePrivate::setNetworkCounters(quint8 which, quint8 value)
{
    if (which == 0 || which == 2) {
        networkStat.maxRetryCount = value;
        networkStat.frameSent = networkStat.frameSeen = networkStat.frameReceived = value;
        networkStat.busyCount = value;
        networkStat.maxSlot = networkStat.supervisionFailure = value;
    }
    if (which == 1 || which == 2) {
        errorStat.txFailures = errorStat.collisions = errorStat.rxDataError = value;
        errorStat.unknownMessage = errorStat.msgLengthError = errorStat.rxFifoFull = value;
        errorStat.txFifoFull = errorStat.crcError = errorStat.bundleSizeError = value;
    }
}

// --- SimNode ----------------------------------------------------------------

SimNode::SimNode(Kind kind, quint32 number, QObject* parent)
    : SimNode(*new SimNodePrivate(kind, number), parent)
{
}

SimNode::SimNode(SimNodePrivate& dd, QObject* parent)
    : QObject(parent), d_ptr(&dd)
{
    d_ptr->q_ptr = this;
}

SimNode::~SimNode() = default;

SimNode::Kind SimNode::kind() const { return d_func()->kind; }
quint32 SimNode::number() const { return d_func()->number; }
VRN::NodeType SimNode::nodeType() const { return d_func()->nodeType; }
VRN::Addr SimNode::address() const { return VRN::makeAddr(nodeType(), int(number())); }

bool SimNode::setNodeType(VRN::NodeType type)
{
    Q_D(SimNode);
    bool ok = type == defaultNodeType(d->kind);
    if (d->kind == Std)
        ok = type == VRN::NodeKeypad || type == VRN::NodeSensor || type == VRN::NodeInterface;
    else if (d->kind == Motor)
        ok = type == VRN::NodeMotor || type == VRN::NodeMotorIO;
    if (ok)
        d->nodeType = type;
    return ok;
}

VRN::NodeType SimNode::defaultNodeType(Kind kind)
{
    for (const KindInfo& k : Kinds) {
        if (k.kind == kind)
            return k.type;
    }
    return VRN::NodeKeypad;
}

bool SimNode::hasMotor(Kind kind) { return kind != Std && kind != SettingTool; }
bool SimNode::isDC(Kind kind) { return kind == DCMotor || kind == TX50DC || kind == TX30; }

QString SimNode::kindName(Kind kind)
{
    for (const KindInfo& k : Kinds) {
        if (k.kind == kind)
            return QString::fromLatin1(k.name);
    }
    return QString();
}

bool SimNode::kindFromName(const QString& name, Kind* kind)
{
    for (const KindInfo& k : Kinds) {
        if (name.compare(QLatin1String(k.name), Qt::CaseInsensitive) == 0) {
            if (kind)
                *kind = k.kind;
            return true;
        }
    }
    return false;
}

QString SimNode::labelPrefix(Kind kind)
{
    for (const KindInfo& k : Kinds) {
        if (k.kind == kind)
            return QString::fromLatin1(k.labelPrefix);
    }
    return QString();
}

void SimNode::randomize(QRandomGenerator& rng)
{
    Q_D(SimNode);
    d->serial = QByteArray::number(rng.bounded(100000000u, 999999999u));
    d->version = {quint8(rng.bounded(1, 4)), quint8(rng.bounded(10)), quint8(rng.bounded(20)),
                  quint16(rng.bounded(1, 2000))};
    d->networkConfig = {2, quint8(rng.bounded(1, 4)), quint8(rng.bounded(3, 6)), 16};
    d->networkStat.frameSent = rng.bounded(10000u);
    d->networkStat.frameSeen = d->networkStat.frameSent * 4 + rng.bounded(1000u);
    d->networkStat.frameReceived = d->networkStat.frameSent + rng.bounded(100u);
    d->networkStat.maxRetryCount = quint8(rng.bounded(4));
    d->networkStat.maxSlot = quint8(rng.bounded(16));
    d->errorStat.collisions = quint16(rng.bounded(50));
    d->errorStat.crcError = quint16(rng.bounded(10));
    // Mostly no groups; a few nodes share one of eight groups.
    if (rng.bounded(4) == 0)
        d->groups[0] = 0x0F0000u + rng.bounded(8u);
    if (hasMotor(d->kind))
        d->randomizeMotor(rng);
}


bool SimNode::isAddressedBy(const VRNMessage& request) const
{
    Q_D(const SimNode);
    switch (request.dstType()) {
    case VRN::AddrBroadcast:
        return true;
    case VRN::AddrGroup:
        return request.dstAddr() != 0
            && std::find(d->groups.begin(), d->groups.end(), request.dstAddr()) != d->groups.end();
    case VRN::AddrNode:
        break;
    }
    return request.dstAddr() == d->number;
}

void SimNode::countInvalidFrame()
{
    d_func()->errorStat.crcError++;
}

QList<QByteArray> SimNode::handle(const VRNMessage& request)
{
    Q_D(SimNode);
    if (!request.isValid()) {
        countInvalidFrame();
        return {};
    }
    d->networkStat.frameSeen++;
    // Replies of other nodes are seen on the line but never answered.
    if (!isAddressedBy(request) || DTS::cmdInfo(request.cmd()).isReply())
        return {};
    d->networkStat.frameReceived++;
    if (d->silent || (isDeaf() && !isToolType(VRN::getType(request.srcAddr()))))
        return {};
    // A tool repeats a request whose answer it did not get, with the same
    // sequence number: answer again, never act twice.
    const bool numbered = request.dstType() == VRN::AddrNode && request.seq() != 0;
    if (numbered) {
        const auto last = d->lastRequests.constFind(request.srcAddr(false));
        if (last != d->lastRequests.constEnd() && last->request == request.data()
            && d->nowUs() - last->atUs < qint64(RepeatWindowMs) * 1000) {
            d->repeatsAnswered++;
            d->networkStat.frameSent += quint32(last->replies.size());
            return last->replies;
        }
    }
    const QList<QByteArray> replies = answer(request);
    if (numbered)
        d->lastRequests.insert(request.srcAddr(false), {request.data(), replies, d->nowUs()});
    return replies;
}

quint64 SimNode::repeatsAnswered() const { return d_func()->repeatsAnswered; }

QList<QByteArray> SimNode::answer(const VRNMessage& request)
{
    Q_D(SimNode);
    const bool unicast = request.dstType() == VRN::AddrNode;
    VRNMessage out;
    int status = SimNodePrivate::NoAnswer;
    if (unicast && d->forcedNackCount != 0) {
        status = d->forcedNackStatus;
        if (d->forcedNackCount > 0 && --d->forcedNackCount == 0)
            d->forcedNackStatus = 0;
    } else {
        d->settle();  // motors answer from where they are now
        status = d->execute(request, out);
        if (status == SimNodePrivate::Answered && out.cmd() == DTS::Ack)
            emit changed();
    }
    if (status == SimNodePrivate::NoAnswer)
        return {};
    if (status != SimNodePrivate::Answered) {
        out.setCmd(DTS::Nack);
        out.setPayload(QByteArray(1, char(status)) + char(request.cmd()));
    } else if (out.cmd() == DTS::Ack) {
        out.setPayload(QByteArray(1, char(request.cmd())));
    }
    if (!unicast && (out.cmd() == DTS::Ack || out.cmd() == DTS::Nack))
        return {};
    out.setSrcAddr(address());
    out.setDstAddr(request.srcAddr(false), VRN::AddrNode);
    out.setSeq(request.seq());
    out.prepare();
    d->networkStat.frameSent++;
    return {out.data()};
}

QByteArray SimNode::label() const { return d_func()->label; }
void SimNode::setLabel(const QByteArray& label) { d_func()->label = label.left(MaxLabelSize); }
QByteArray SimNode::serialNumber() const { return d_func()->serial; }
void SimNode::setSerialNumber(const QByteArray& serial) { d_func()->serial = serial.left(MaxSerialSize); }

quint32 SimNode::group(int index) const
{
    return index >= 0 && index < GroupSlots ? d_func()->groups[index] : 0;
}
void SimNode::setGroup(int index, quint32 group)
{
    if (index >= 0 && index < GroupSlots)
        d_func()->groups[index] = group & 0xFFFFFFu;
}
QList<quint32> SimNode::groups() const
{
    Q_D(const SimNode);
    return QList<quint32>(d->groups.begin(), d->groups.end());
}

SimNode::AppVersion SimNode::appVersion() const { return d_func()->version; }
void SimNode::setAppVersion(const AppVersion& version) { d_func()->version = version; }
SimNode::NetworkConfig SimNode::networkConfig() const { return d_func()->networkConfig; }
void SimNode::setNetworkConfig(const NetworkConfig& config) { d_func()->networkConfig = config; }
SimNode::NetworkStat SimNode::networkStat() const { return d_func()->networkStat; }
void SimNode::setNetworkStat(const NetworkStat& stat) { d_func()->networkStat = stat; }
SimNode::NetworkErrorStat SimNode::networkErrorStat() const { return d_func()->errorStat; }
void SimNode::setNetworkErrorStat(const NetworkErrorStat& stat) { d_func()->errorStat = stat; }

bool SimNode::discoveryMark() const { return d_func()->discoveryMark; }
void SimNode::setDiscoveryMark(bool mark) { d_func()->discoveryMark = mark; }

void SimNode::setDeaf(int durationMs)
{
    Q_D(SimNode);
    d->deaf = durationMs != 0;
    d->deafUntil = durationMs < 0 ? QDeadlineTimer(QDeadlineTimer::Forever)
                                  : QDeadlineTimer(qMax(0, durationMs));
}
bool SimNode::isDeaf() const
{
    Q_D(const SimNode);
    return d->deaf && !d->deafUntil.hasExpired();
}

bool SimNode::isSilent() const { return d_func()->silent; }
void SimNode::setSilent(bool silent) { d_func()->silent = silent; }

void SimNode::setForcedNack(quint8 status, int count)
{
    Q_D(SimNode);
    d->forcedNackStatus = status;
    d->forcedNackCount = status ? count : 0;
}
quint8 SimNode::forcedNack() const { return d_func()->forcedNackStatus; }

