#include "dtsstdproxy.h"

#include "dts.h"
#include "vrndatawriter.h"
#include "vrnmessage.h"

QString DTSStdProxy::AppVersion::toString() const
{
    QString text = QStringLiteral("%1.%2.%3").arg(major).arg(minor).arg(patch);
    if (build != 0)
        text += QLatin1Char('.') + QString::number(build);
    return text;
}

DTSStdProxy::DTSStdProxy(VRN::Addr addr, Bus* bus, QObject* parent)
    : VRNNode(addr, bus, parent)
{
}

DTSStdProxy::~DTSStdProxy() = default;

BusPendingCall DTSStdProxy::getNodeLabel()
{
    return request(DTS::GetNodeLabel);
}

BusPendingCall DTSStdProxy::setNodeLabel(const QByteArray& label)
{
    return request(DTS::SetNodeLabel, [&](VRNDataWriter& w) { w.writeBytes(label); });
}

BusPendingCall DTSStdProxy::getNodeAppVersion()
{
    return request(DTS::GetNodeAppVersion);
}

BusPendingCall DTSStdProxy::getGroupAddr(unsigned char index)
{
    return request(DTS::GetGroupAddr, [&](VRNDataWriter& w) { w.writeUint8(index); });
}

BusPendingCall DTSStdProxy::setGroupAddr(unsigned char index, unsigned int addr)
{
    return request(DTS::SetGroupAddr, [&](VRNDataWriter& w) { w.writeUint8(index).writeUint24(addr); });
}

BusPendingCall DTSStdProxy::getNetworkConfig()
{
    return request(DTS::GetNetworkConfig);
}

BusPendingCall DTSStdProxy::getNetworkStat()
{
    return request(DTS::GetNetworkStat);
}

BusPendingCall DTSStdProxy::getNetworkErrorStat()
{
    return request(DTS::GetNetworkErrorStat);
}

BusPendingCall DTSStdProxy::setNetworkStat(unsigned char counters, unsigned char value)
{
    return request(DTS::SetNetworkStat, [&](VRNDataWriter& w) { w.writeUint8(counters).writeUint8(value); });
}

BusPendingCall DTSStdProxy::getNodeSerialNumber()
{
    return request(DTS::GetNodeSerialNumber);
}

BusPendingCall DTSStdProxy::setNodeDiscovery(bool mark)
{
    return request(DTS::SetNodeDiscovery, [&](VRNDataWriter& w) { w.writeUint8(mark ? 1 : 0); });
}

BusPendingCall DTSStdProxy::clearDiscovery()
{
    return request(DTS::ClearDiscovery);
}

bool DTSStdProxy::checkReply(const BusMessage& msg, quint8 cmd,
                             const std::function<bool(VRNDataReader&)>& read) const
{
    const VRNMessage frame(msg);
    if (!frame.isValid() || frame.cmd() != cmd)
        return false;
    const QByteArray payload = frame.payload();
    if (!DTS::cmdInfo(cmd).acceptsPayloadSize(payload.size()))
        return false;
    VRNDataReader reader(payload);
    if (!read(reader) || !reader.ok() || !reader.atEnd())
        return false;
    return frame.srcAddr(false) == VRN::getNumber(address());
}

bool DTSStdProxy::getNodeLabelReply(const BusMessage& msg, QByteArray& label) const
{
    return parseReply(msg, DTS::PostNodeLabel, [](VRNDataReader& r, QByteArray& l) {
        // An empty label is a label (a node that was never named), not "unknown".
        l = r.readAll();
        if (l.isNull())
            l = QByteArray("");
        return true;
    }, label);
}

bool DTSStdProxy::getNodeAppVersionReply(const BusMessage& msg, AppVersion& version) const
{
    return parseReply(msg, DTS::PostNodeAppVersion, [](VRNDataReader& r, AppVersion& v) {
        v.major = r.readUint8();
        v.minor = r.readUint8();
        v.patch = r.readUint8();
        v.build = r.readUint16();
        return true;
    }, version);
}

bool DTSStdProxy::getGroupAddrReply(const BusMessage& msg, unsigned char& index, unsigned int& addr) const
{
    return parseReply(msg, DTS::PostGroupAddr, [](VRNDataReader& r, unsigned char& i, unsigned int& a) {
        i = r.readUint8();
        a = r.readUint24();
        return i < GroupSlotCount;
    }, index, addr);
}

bool DTSStdProxy::getNetworkConfigReply(const BusMessage& msg, NetworkConfig& config) const
{
    return parseReply(msg, DTS::PostNetworkConfig, [](VRNDataReader& r, NetworkConfig& c) {
        c.brPriority = r.readUint8();
        c.lpPriority = r.readUint8();
        c.maxRetry = r.readUint8();
        c.slotCount = r.readUint8();
        return true;
    }, config);
}

bool DTSStdProxy::getNetworkStatReply(const BusMessage& msg, NetworkStat& stat) const
{
    return parseReply(msg, DTS::PostNetworkStat, [](VRNDataReader& r, NetworkStat& s) {
        s.maxRetryCount = r.readUint8();
        s.frameSent = r.readUint32();
        s.frameSeen = r.readUint32();
        s.frameReceived = r.readUint32();
        s.busyCount = r.readUint16();
        s.maxSlot = r.readUint8();
        s.supervisionFailure = r.readUint8();
        return true;
    }, stat);
}

bool DTSStdProxy::getNetworkErrorStatReply(const BusMessage& msg, NetworkErrorStat& stat) const
{
    return parseReply(msg, DTS::PostNetworkErrorStat, [](VRNDataReader& r, NetworkErrorStat& s) {
        for (quint16* field : {&s.txFailures, &s.collisions, &s.rxDataError, &s.unknownMessage,
                               &s.msgLengthError, &s.rxFifoFull, &s.txFifoFull, &s.crcError,
                               &s.bundleSizeError})
            *field = r.readUint16();
        return true;
    }, stat);
}

bool DTSStdProxy::getNodeSerialNumberReply(const BusMessage& msg, QByteArray& serial) const
{
    return parseReply(msg, DTS::PostNodeSerialNumber, [](VRNDataReader& r, QByteArray& s) {
        s = r.readAll();
        return true;
    }, serial);
}

bool DTSStdProxy::isAck(const BusMessage& msg) const
{
    return checkReply(msg, DTS::Ack, [](VRNDataReader& r) { return DTS::cmdInfo(r.readUint8()).isRequest(); });
}
