// Every reply parser of the node proxies: one valid frame, then one row per
// way a frame can be wrong; a rejected frame leaves the outputs untouched.
#include "dtsmotorproxy.h"
#include "motordiagnostic.h"
#include "vrnmessage.h"

#include <QtTest>
#include <cstring>
#include <functional>
#include <type_traits>

namespace {

const quint32 NodeNumber = 0x123456;
const VRN::Addr MotorAddr = VRN::makeAddr(VRN::NodeMotor, NodeNumber);

// Parses `msg` with outputs preset to a sentinel and prints the outputs,
// whatever the parser returned.
using Parse = std::function<bool(const DTSMotorProxy&, const BusMessage&, QString&)>;

template <typename T> T sentinel()
{
    if constexpr (std::is_same_v<T, bool>) {
        return true;
    } else if constexpr (std::is_same_v<T, QByteArray>) {
        return QByteArray("untouched");
    } else if constexpr (std::is_enum_v<T> || std::is_arithmetic_v<T>) {
        return T(0x5A);
    } else {
        static_assert(std::is_trivially_copyable_v<T>);
        T value;
        std::memset(static_cast<void*>(&value), 0x5A, sizeof value);
        return value;
    }
}

QString show(const QByteArray& v) { return QLatin1Char('"') + QString::fromLatin1(v) + QLatin1Char('"'); }
template <typename T> std::enable_if_t<std::is_arithmetic_v<T> || std::is_enum_v<T>, QString> show(T v)
{
    return QString::number(qint64(v));
}
QString show(const DTSStdProxy::AppVersion& v);
QString show(const DTSStdProxy::NetworkConfig& v);
QString show(const DTSStdProxy::NetworkStat& v);
QString show(const DTSStdProxy::NetworkErrorStat& v);
template <typename... T> QString showAll(const T&... v) { return QStringList{show(v)...}.join(QLatin1Char(',')); }
QString show(const DTSStdProxy::AppVersion& v) { return showAll(v.major, v.minor, v.patch, v.build); }
QString show(const DTSStdProxy::NetworkConfig& v)
{
    return showAll(v.brPriority, v.lpPriority, v.maxRetry, v.slotCount);
}
QString show(const DTSStdProxy::NetworkStat& v)
{
    return showAll(v.maxRetryCount, v.frameSent, v.frameSeen, v.frameReceived, v.busyCount, v.maxSlot,
                   v.supervisionFailure);
}
QString show(const DTSStdProxy::NetworkErrorStat& v)
{
    return showAll(v.txFailures, v.collisions, v.rxDataError, v.unknownMessage, v.msgLengthError, v.rxFifoFull,
                   v.txFifoFull, v.crcError, v.bundleSizeError);
}

template <typename C, typename... Out> Parse parser(bool (C::*parse)(const BusMessage&, Out&...) const)
{
    return [parse](const DTSMotorProxy& proxy, const BusMessage& msg, QString& shown) {
        std::tuple<Out...> out{sentinel<Out>()...};
        const bool ok = std::apply([&](Out&... o) { return (proxy.*parse)(msg, o...); }, out);
        shown = std::apply([](const Out&... o) { return showAll(o...); }, out);
        return ok;
    };
}

struct ReplyCase
{
    const char* name;
    Parse parse;
    quint8 cmd;
    QByteArray payload;     // a valid reply
    QString parsed;         // its outputs
    QVector<QPair<const char*, QByteArray>> outOfRange;
};

QByteArray hex(const char* text) { return QByteArray::fromHex(text); }

QVector<ReplyCase> replyCases()
{
    using S = DTSStdProxy;
    using M = DTSMotorProxy;
    return {
        {"label", parser(&S::getNodeLabelReply), 0x65, "Kitchen", "\"Kitchen\"", {}},
        {"appVersion", parser(&S::getNodeAppVersionReply), 0x75, hex("0201000011"), "2,1,0,17", {}},
        {"groupAddr", parser(&S::getGroupAddrReply), 0x61, hex("0FABCDEF"), "15,11259375",
         {{"index 16", hex("10ABCDEF")}, {"index 255", hex("FF000001")}}},
        {"networkConfig", parser(&S::getNetworkConfigReply), 0x62, hex("01020304"), "1,2,3,4", {}},
        {"networkStat", parser(&S::getNetworkStatReply), 0x68, hex("03 00000010 FFFFFFFF 00010000 0102 07 09"),
         "3,16,4294967295,65536,258,7,9", {}},
        {"networkErrorStat", parser(&S::getNetworkErrorStatReply), 0x69,
         hex("0001 0002 0003 0004 0005 0006 0007 0008 FFFF"), "1,2,3,4,5,6,7,8,65535", {}},
        {"serialNumber", parser(&S::getNodeSerialNumberReply), 0x6C, "SN-0042", "\"SN-0042\"", {}},
        {"ack", parser(&S::isAck), 0x7F, hex("55"), "",
         {{"unknown code", hex("99")}, {"reply code", hex("65")}}},
        {"direction", parser(&M::getMotorDirectionReply), 0x32, hex("01"), "1", {{"direction 2", hex("02")}}},
        {"limits", parser(&M::getMotorLimitsReply), 0x31, hex("1388 0064"), "5000,100", {}},
        {"position", parser(&M::getMotorPositionReply), 0x0D, hex("04D2 32 FF 02"), "1234,50,255,2",
         {{"percent 101", hex("04D2 65 FF 02")}, {"tilt 101", hex("04D2 32 65 02")},
          {"ip 16", hex("04D2 32 FF 10")}}},
        {"rollingSpeed", parser(&M::getMotorRollingSpeedReply), 0x23, hex("06 1C 0C"), "6,28,12",
         {{"up 5", hex("05 1C 0C")}, {"down 29", hex("06 1D 0C")}, {"slow 0", hex("06 1C 00")}}},
        {"softStartStop", parser(&M::getMotorSoftStartStopReply), 0x29, hex("01 28 00 64"), "1,40,0,100",
         {{"start flag 2", hex("02 28 00 64")}, {"stop flag 2", hex("01 28 02 64")},
          {"start 101", hex("01 65 00 64")}, {"stop 101", hex("01 28 00 65")}}},
        {"motorIP", parser(&M::getMotorIPReply), 0x35, hex("0F FFFF FF"), "15,65535,255",
         {{"index 16", hex("10 0102 32")}, {"percent 101", hex("00 0102 65")}}},
        {"diagTotalMoveCount", parser(&M::diagGetTotalMoveCountReply), 0x36, hex("00012345"), "74565", {}},
        {"diagTotalRevCount", parser(&M::diagGetTotalRevCountReply), 0x37, hex("FFFFFFFE"), "4294967294", {}},
        {"diagThermalCount", parser(&M::diagGetThermalCountReply), 0x38, hex("0003 0010"), "3,16", {}},
        {"diagObstacleCount", parser(&M::diagGetObstacleCountReply), 0x3A, hex("0004 0011"), "4,17", {}},
        {"diagPowerCount", parser(&M::diagGetPowerCountReply), 0x3B, hex("0102"), "258", {}},
        {"diagResetCount", parser(&M::diagGetResetCountReply), 0x3C, hex("0203"), "515", {}},
        {"diagEncoderErrors", parser(&M::diagGetEncoderErrorsReply), 0x3D, hex("0304"), "772", {}},
    };
}

QByteArray frame(quint8 cmd, const QByteArray& payload, quint32 src = NodeNumber)
{
    return VRNMessage(cmd, VRN::makeAddr(VRN::NodeMotor, int(src)), VRN::getNumber(VRN::ToolAddr),
                      VRN::AddrNode, payload).data();
}

QByteArray flipped(QByteArray bytes, int at)
{
    bytes[at] = char(bytes.at(at) ^ 0x01);
    return bytes;
}

} // namespace

Q_DECLARE_METATYPE(Parse)

class tst_DTSProxyReplies : public QObject
{
    Q_OBJECT

private slots:
    void parse_data();
    void parse();
    void valueTypesCompareEveryField();
    void appVersion_data();
    void appVersion();
};

void tst_DTSProxyReplies::parse_data()
{
    QTest::addColumn<Parse>("parse");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("parsed"); // empty: the frame is rejected

    for (const ReplyCase& c : replyCases()) {
        const QByteArray valid = frame(c.cmd, c.payload);
        const VRNCmdInfo info = DTS::cmdInfo(c.cmd);
        const int size = c.payload.size();
        auto row = [&](const char* what, const QByteArray& bytes, const QString& parsed = QString()) {
            QTest::addRow("%s: %s", c.name, what) << c.parse << bytes << parsed;
        };
        row("valid", valid, c.parsed.isEmpty() ? QStringLiteral("accepted") : c.parsed);
        if (!info.acceptsPayloadSize(size - 1))
            row("truncated", frame(c.cmd, c.payload.chopped(1)));
        if (!info.acceptsPayloadSize(size + 1))
            row("extra byte", frame(c.cmd, c.payload + '\0'));
        if (info.minPayload() != info.maxPayload()) {
            row("over the longest", frame(c.cmd, QByteArray(info.maxPayload() + 1, 'x')));
            if (info.minPayload() > 0)
                row("under the shortest", frame(c.cmd, QByteArray(info.minPayload() - 1, 'x')));
        }
        row("wrong command", frame(c.cmd == DTS::Ack ? quint8(DTS::Nack) : quint8(DTS::Ack), c.payload));
        row("negative acknowledgement", frame(DTS::Nack, QByteArray::fromHex("01") + char(c.cmd)));
        row("bad checksum", flipped(valid, valid.size() - 1));
        row("corrupted byte", flipped(valid, VRNMessage::HeaderSize - 1));
        row("length byte disagrees", [&] { QByteArray b = valid; b[1] = char(b.at(1) + 1); return b; }());
        row("wrong source", frame(c.cmd, c.payload, NodeNumber + 1));
        row("empty", QByteArray());
        for (const auto& bad : c.outOfRange)
            row(bad.first, frame(c.cmd, bad.second));
    }
}

void tst_DTSProxyReplies::parse()
{
    QFETCH(Parse, parse);
    QFETCH(QByteArray, bytes);
    QFETCH(QString, parsed);

    const DTSMotorProxy proxy(MotorAddr);
    QString untouched;
    QVERIFY(!parse(proxy, BusMessage(), untouched));

    QString shown;
    const bool ok = parse(proxy, BusMessage(bytes), shown);
    if (parsed.isEmpty()) {
        QVERIFY(!ok);
        QCOMPARE(shown, untouched);
    } else {
        QVERIFY(ok);
        if (parsed != QLatin1String("accepted"))
            QCOMPARE(shown, parsed);
    }
}

namespace {
// Each field on its own makes a value differ from the default, and clear()
// brings it back.
template <typename T, typename... F> void checkEveryField(F T::*... field)
{
    auto one = [](auto T::*f) {
        T v;
        v.*f = 1;
        QVERIFY(v != T());
        QVERIFY(!(v == T()));
        v.clear();
        QVERIFY(v == T());
    };
    (one(field), ...);
}
} // namespace

void tst_DTSProxyReplies::valueTypesCompareEveryField()
{
    using S = DTSStdProxy;
    using M = MotorDiagnostic;
    checkEveryField<M>(&M::totalMoveCount, &M::totalRevCount, &M::thermalCount, &M::postThermalMove,
                       &M::obstacleCount, &M::postObstacleMove, &M::powerCount, &M::resetCount,
                       &M::encoderErrCount);
    checkEveryField<S::NetworkStat>(&S::NetworkStat::maxRetryCount, &S::NetworkStat::frameSent,
                                    &S::NetworkStat::frameSeen, &S::NetworkStat::frameReceived,
                                    &S::NetworkStat::busyCount, &S::NetworkStat::maxSlot,
                                    &S::NetworkStat::supervisionFailure);
    using E = S::NetworkErrorStat;
    checkEveryField<E>(&E::txFailures, &E::collisions, &E::rxDataError, &E::unknownMessage, &E::msgLengthError,
                       &E::rxFifoFull, &E::txFifoFull, &E::crcError, &E::bundleSizeError);
    using C = S::NetworkConfig;
    checkEveryField<C>(&C::brPriority, &C::lpPriority, &C::maxRetry, &C::slotCount);
    using V = S::AppVersion;
    checkEveryField<V>(&V::major, &V::minor, &V::patch, &V::build);
}

void tst_DTSProxyReplies::appVersion_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<bool>("valid");
    QTest::addColumn<QString>("text");
    QTest::newRow("cleared") << hex("0000000000") << false << "0.0.0";
    QTest::newRow("no application") << hex("FF01020000") << false << "255.1.2";
    QTest::newRow("without build") << hex("0201000000") << true << "2.1.0";
    QTest::newRow("with build") << hex("0A0B0C0102") << true << "10.11.12.258";
    QTest::newRow("build only") << hex("0000000001") << true << "0.0.0.1";
}

void tst_DTSProxyReplies::appVersion()
{
    QFETCH(QByteArray, payload);
    QFETCH(bool, valid);
    QFETCH(QString, text);
    const DTSStdProxy proxy(MotorAddr);
    DTSStdProxy::AppVersion version;
    QVERIFY(proxy.getNodeAppVersionReply(BusMessage(frame(DTS::PostNodeAppVersion, payload)), version));
    QCOMPARE(version.isValid(), valid);
    QCOMPARE(version.toString(), text);
}

QTEST_MAIN(tst_DTSProxyReplies)
#include "tst_dtsproxyreplies.moc"
