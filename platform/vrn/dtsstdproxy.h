#ifndef DTSSTDPROXY_H
#define DTSSTDPROXY_H

#include "vrnnode.h"
#include "vrnvalue.h"

#include <QByteArray>
#include <QMetaType>
#include <QString>
#include <functional>
#include <tuple>

class VRNDataReader;

/// The commands every node of the device network understands: label,
/// version, group addresses, network configuration and statistics, serial
/// number and the discovery mark.
///
/// Requests return the pending call of the bus; parsers read a reply into
/// their output arguments and return true, or return false and leave the
/// outputs untouched when the frame is invalid, is not the expected reply,
/// has the wrong size, holds a value out of range or does not come from
/// this node:
///
///     watcher = proxy->getNodeLabel();
///     ...
///     QByteArray label;
///     if (proxy->getNodeLabelReply(watcher.reply(), label)) ...
///
/// The byte layout of every frame is in PROTOCOL.md.
class DTSStdProxy : public VRNNode
{
    Q_OBJECT
public:
    /// Traffic counters of a node.
    struct NetworkStat : public VRNValue<NetworkStat>
    {
        quint8 maxRetryCount = 0;
        quint32 frameSent = 0;
        quint32 frameSeen = 0;
        quint32 frameReceived = 0;
        quint16 busyCount = 0;
        quint8 maxSlot = 0;
        quint8 supervisionFailure = 0;

    private:
        friend class VRNValue<NetworkStat>;
        auto fields() const
        {
            return std::tie(maxRetryCount, frameSent, frameSeen, frameReceived, busyCount, maxSlot,
                            supervisionFailure);
        }
    };

    /// Error counters of a node.
    struct NetworkErrorStat : public VRNValue<NetworkErrorStat>
    {
        quint16 txFailures = 0;
        quint16 collisions = 0;
        quint16 rxDataError = 0;
        quint16 unknownMessage = 0;
        quint16 msgLengthError = 0;
        quint16 rxFifoFull = 0;
        quint16 txFifoFull = 0;
        quint16 crcError = 0;
        quint16 bundleSizeError = 0;

    private:
        friend class VRNValue<NetworkErrorStat>;
        auto fields() const
        {
            return std::tie(txFailures, collisions, rxDataError, unknownMessage, msgLengthError,
                            rxFifoFull, txFifoFull, crcError, bundleSizeError);
        }
    };

    /// Medium access settings of a node.
    struct NetworkConfig : public VRNValue<NetworkConfig>
    {
        quint8 brPriority = 0;   ///< priority of broadcast replies
        quint8 lpPriority = 0;   ///< low priority
        quint8 maxRetry = 0;
        quint8 slotCount = 0;

    private:
        friend class VRNValue<NetworkConfig>;
        auto fields() const { return std::tie(brPriority, lpPriority, maxRetry, slotCount); }
    };

    /// Version of a node's application firmware.
    struct AppVersion : public VRNValue<AppVersion>
    {
        quint8 major = 0;
        quint8 minor = 0;
        quint8 patch = 0;
        quint16 build = 0;

        /// False when cleared, and for major 0xFF (a node without application).
        bool isValid() const { return *this != AppVersion() && major != 0xFF; }
        /// "major.minor.patch", with ".build" when build is not 0: "2.1.0.17".
        QString toString() const;

    private:
        friend class VRNValue<AppVersion>;
        auto fields() const { return std::tie(major, minor, patch, build); }
    };

    /// Number of group address slots of a node (indices 0..15).
    enum : quint8 { GroupSlotCount = 16 };

    explicit DTSStdProxy(VRN::Addr addr = 0, Bus* bus = nullptr, QObject* parent = nullptr);
    ~DTSStdProxy() override;

    BusPendingCall getNodeLabel();
    /// At most 16 bytes; a longer label ends the call at once with an error.
    BusPendingCall setNodeLabel(const QByteArray& label);
    BusPendingCall getNodeAppVersion();
    BusPendingCall getGroupAddr(unsigned char index);
    /// `addr`: group number (24 bits); 0 empties the slot.
    BusPendingCall setGroupAddr(unsigned char index, unsigned int addr);
    BusPendingCall getNetworkConfig();
    BusPendingCall getNetworkStat();
    BusPendingCall getNetworkErrorStat();
    /// `counters`: 0 traffic, 1 errors, 2 all; `value` 0 resets them.
    BusPendingCall setNetworkStat(unsigned char counters, unsigned char value);
    BusPendingCall getNodeSerialNumber();
    /// `mark` true: the node stops answering discovery requests.
    BusPendingCall setNodeDiscovery(bool mark);
    BusPendingCall clearDiscovery();

    bool getNodeLabelReply(const BusMessage& msg, QByteArray& label) const;
    bool getNodeAppVersionReply(const BusMessage& msg, AppVersion& version) const;
    bool getGroupAddrReply(const BusMessage& msg, unsigned char& index, unsigned int& addr) const;
    bool getNetworkConfigReply(const BusMessage& msg, NetworkConfig& config) const;
    bool getNetworkStatReply(const BusMessage& msg, NetworkStat& stat) const;
    bool getNetworkErrorStatReply(const BusMessage& msg, NetworkErrorStat& stat) const;
    bool getNodeSerialNumberReply(const BusMessage& msg, QByteArray& serial) const;
    /// True for an acknowledgement of a known request, from this node.
    bool isAck(const BusMessage& msg) const;

protected:
    /// Reads a reply of code `cmd` with `read(reader, values...)` into fresh
    /// values and copies them to `out...` only when the whole reply checks
    /// out (see `checkReply`). `read` returns false for a value out of range.
    template <typename Read, typename... T>
    bool parseReply(const BusMessage& msg, quint8 cmd, Read read, T&... out) const;

    /// The checks shared by every parser, in order: a valid frame of code
    /// `cmd`, a payload size the command allows, `read` consuming the whole
    /// payload and accepting its values, and this node as the source.
    bool checkReply(const BusMessage& msg, quint8 cmd,
                    const std::function<bool(VRNDataReader&)>& read) const;
};

template <typename Read, typename... T>
bool DTSStdProxy::parseReply(const BusMessage& msg, quint8 cmd, Read read, T&... out) const
{
    std::tuple<T...> values;
    const bool ok = checkReply(msg, cmd, [&](VRNDataReader& reader) {
        return std::apply([&](T&... v) { return read(reader, v...); }, values);
    });
    if (ok)
        std::tie(out...) = values;
    return ok;
}

Q_DECLARE_METATYPE(DTSStdProxy::NetworkStat)
Q_DECLARE_METATYPE(DTSStdProxy::NetworkErrorStat)
Q_DECLARE_METATYPE(DTSStdProxy::NetworkConfig)
Q_DECLARE_METATYPE(DTSStdProxy::AppVersion)

#endif // DTSSTDPROXY_H
