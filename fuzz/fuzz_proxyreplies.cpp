// Every reply parser of the node and motor proxies on any frame: none
// crashes, and one that refuses a frame leaves its outputs as they were.
#include "dtsmotorproxy.h"
#include "fuzzinput.h"

#include <tuple>

namespace {

constexpr VRN::Addr Self = (VRN::Addr(VRN::NodeMotor) << 24) | 0x00ABCDu;

// Calls `parse(outputs...)` on outputs preset to `preset...`; a refusal
// must leave every one untouched.
template <typename Parse, typename... T>
void check(Parse parse, T... preset)
{
    std::tuple<T...> out(preset...);
    if (!std::apply(parse, out))
        FUZZ_CHECK(out == std::make_tuple(preset...));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const bool quiet = (fuzzQuiet(), true);
    Q_UNUSED(quiet);
    static DTSMotorProxy proxy(Self);

    FuzzInput in(data, size);
    // Raw bytes or a well-formed frame, mostly from this node to the tool.
    const BusMessage msg = (in.byte() & 1) ? BusMessage(in.rest())
                                           : BusMessage(in.frame(Self, VRN::getNumber(VRN::ToolAddr)));
    const quint16 u16 = 0xA5A5;
    const quint8 u8 = 0x5A;
    const quint32 u32 = 0xA5A5A5A5;

    check([&](QByteArray& label) { return proxy.getNodeLabelReply(msg, label); }, QByteArray("preset"));
    DTSStdProxy::AppVersion version;
    version.major = 9;
    check([&](DTSStdProxy::AppVersion& v) { return proxy.getNodeAppVersionReply(msg, v); }, version);
    check([&](unsigned char& index, unsigned int& addr) { return proxy.getGroupAddrReply(msg, index, addr); },
          (unsigned char)u8, (unsigned int)u32);
    DTSStdProxy::NetworkConfig config;
    config.slotCount = 77;
    check([&](DTSStdProxy::NetworkConfig& c) { return proxy.getNetworkConfigReply(msg, c); }, config);
    DTSStdProxy::NetworkStat stat;
    stat.frameSeen = 77;
    check([&](DTSStdProxy::NetworkStat& s) { return proxy.getNetworkStatReply(msg, s); }, stat);
    DTSStdProxy::NetworkErrorStat errors;
    errors.crcError = 77;
    check([&](DTSStdProxy::NetworkErrorStat& s) { return proxy.getNetworkErrorStatReply(msg, s); }, errors);
    check([&](QByteArray& serial) { return proxy.getNodeSerialNumberReply(msg, serial); }, QByteArray("preset"));
    proxy.isAck(msg);
    DTS::getNackReply(VRNMessage(msg));

    check([&](DTSMotor::TurnDirection& d) { return proxy.getMotorDirectionReply(msg, d); },
          DTSMotor::DirectionReversed);
    check([&](unsigned short& up, unsigned short& down) { return proxy.getMotorLimitsReply(msg, up, down); },
          (unsigned short)u16, (unsigned short)u16);
    check([&](unsigned short& pulse, unsigned char& pct, unsigned char& tilt, unsigned char& ip) {
        return proxy.getMotorPositionReply(msg, pulse, pct, tilt, ip);
    }, (unsigned short)u16, (unsigned char)u8, (unsigned char)u8, (unsigned char)u8);
    check([&](unsigned char& up, unsigned char& down, unsigned char& slow) {
        return proxy.getMotorRollingSpeedReply(msg, up, down, slow);
    }, (unsigned char)u8, (unsigned char)u8, (unsigned char)u8);
    check([&](bool& startOn, unsigned char& start, bool& stopOn, unsigned char& stop) {
        return proxy.getMotorSoftStartStopReply(msg, startOn, start, stopOn, stop);
    }, true, (unsigned char)u8, true, (unsigned char)u8);
    check([&](unsigned char& index, unsigned short& pulse, unsigned char& pct) {
        return proxy.getMotorIPReply(msg, index, pulse, pct);
    }, (unsigned char)u8, (unsigned short)u16, (unsigned char)u8);

    check([&](unsigned int& n) { return proxy.diagGetTotalMoveCountReply(msg, n); }, (unsigned int)u32);
    check([&](unsigned int& n) { return proxy.diagGetTotalRevCountReply(msg, n); }, (unsigned int)u32);
    check([&](unsigned short& n, unsigned short& post) { return proxy.diagGetThermalCountReply(msg, n, post); },
          (unsigned short)u16, (unsigned short)u16);
    check([&](unsigned short& n, unsigned short& post) { return proxy.diagGetObstacleCountReply(msg, n, post); },
          (unsigned short)u16, (unsigned short)u16);
    check([&](unsigned short& n) { return proxy.diagGetPowerCountReply(msg, n); }, (unsigned short)u16);
    check([&](unsigned short& n) { return proxy.diagGetResetCountReply(msg, n); }, (unsigned short)u16);
    check([&](unsigned short& n) { return proxy.diagGetEncoderErrorsReply(msg, n); }, (unsigned short)u16);
    return 0;
}
