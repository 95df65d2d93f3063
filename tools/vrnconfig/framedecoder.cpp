#include "framedecoder.h"

#include "dts.h"
#include "vrnmessage.h"

#include <QCoreApplication>
#include <QHash>
#include <QVector>

namespace {

// How a payload field is read and shown.
enum Kind {
    U8,     // a number
    U16,
    U32,
    Hex24,  // a group or node number: 0x000123
    Text,   // the rest of the payload, UTF-8 (labels)
    Bytes,  // the rest of the payload, hexadecimal (serial numbers)
    Cmd,    // a command code, shown by name
    Status  // a NACK status, shown as its text
};

struct Field
{
    const char* name;
    Kind kind;
};

int size(Kind kind)
{
    switch (kind) {
    case U8: case Cmd: case Status: return 1;
    case U16: return 2;
    case Hex24: return 3;
    case U32: return 4;
    default: return 0;
    }
}

// The payload of each command whose fields are worth naming; the others
// show their bytes.
const QHash<quint8, QVector<Field>>& layouts()
{
    static const QHash<quint8, QVector<Field>> table{
        {0x41, {{"index", U8}}},
        {0x61, {{"index", U8}, {"group", Hex24}}},
        {0x52, {{"index", U8}, {"group", Hex24}}},
        {0x62, {{"broadcastPriority", U8}, {"lowPriority", U8}, {"maxRetry", U8}, {"slotCount", U8}}},
        {0x65, {{"label", Text}}},
        {0x55, {{"label", Text}}},
        {0x6C, {{"serialNumber", Bytes}}},
        {0x53, {{"mark", U8}}},
        {0x56, {{"node", Hex24}, {"duration", U16}, {"mode", U8}}},
        {0x59, {{"counters", U8}, {"value", U8}}},
        {0x75, {{"major", U8}, {"minor", U8}, {"patch", U8}, {"build", U16}}},
        {0x03, {{"function", U8}, {"value", U16}, {"reserved", U8}}},
        {0x04, {{"function", U8}, {"value", U16}, {"reserved", U8}}},
        {0x05, {{"direction", U8}, {"duration", U8}, {"speed", U8}}},
        {0x0D, {{"pulses", U16}, {"percent", U8}, {"tilt", U8}, {"ip", U8}}},
        {0x11, {{"function", U8}, {"limit", U8}, {"value", U16}}},
        {0x12, {{"direction", U8}}},
        {0x32, {{"direction", U8}}},
        {0x14, {{"up", U8}, {"down", U8}, {"slow", U8}}},
        {0x23, {{"up", U8}, {"down", U8}, {"slow", U8}}},
        {0x15, {{"function", U8}, {"index", U8}, {"value", U16}}},
        {0x25, {{"index", U8}}},
        {0x35, {{"index", U8}, {"pulses", U16}, {"percent", U8}}},
        {0x1A, {{"function", U8}, {"ramps", U8}, {"value", U8}}},
        {0x29, {{"startOn", U8}, {"start", U8}, {"stopOn", U8}, {"stop", U8}}},
        {0x1F, {{"function", U8}}},
        {0x31, {{"up", U16}, {"down", U16}}},
        {0x6F, {{"status", Status}, {"refused", Cmd}}},
        {0x7F, {{"acknowledged", Cmd}}},
    };
    return table;
}

QString nodeText(quint32 node)
{
    return hexText(node, 6);
}

QString commandName(quint8 code)
{
    const VRNCmdInfo info = DTS::cmdInfo(code);
    return info.isValid() ? info.name() : hexText(code, 2);
}

// A label as a person reads it: quoted, control characters escaped.
QString quoted(const QString& text)
{
    QString out = QStringLiteral("\"");
    for (QChar c : text) {
        if (c == QLatin1Char('"') || c == QLatin1Char('\\'))
            out += QLatin1Char('\\') + QString(c);
        else if (c.category() == QChar::Other_Control)
            out += QStringLiteral("\\x%1").arg(c.unicode(), 2, 16, QLatin1Char('0'));
        else
            out += c;
    }
    return out + QLatin1Char('"');
}

// The fields of `payload` by `layout`; false when the sizes disagree.
bool readFields(const QByteArray& payload, const QVector<Field>& layout, QStringList& words, QJsonObject& json)
{
    int at = 0;
    for (const Field& f : layout) {
        const QString name = QString::fromLatin1(f.name);
        const int n = size(f.kind);
        if (n == 0) {
            const QByteArray rest = payload.mid(at);
            at = payload.size();
            const QString value = f.kind == Text ? QString::fromUtf8(rest) : QString::fromLatin1(rest.toHex()).toUpper();
            json.insert(name, value);
            words << QStringLiteral("%1 %2").arg(name, f.kind == Text ? quoted(value) : value);
            continue;
        }
        if (at + n > payload.size())
            return false;
        quint32 v = 0;
        for (int i = 0; i < n; ++i)
            v = (v << 8) | quint8(payload.at(at + i));
        at += n;
        switch (f.kind) {
        case Hex24:
            json.insert(name, nodeText(v));
            words << QStringLiteral("%1 %2").arg(name, nodeText(v));
            break;
        case Cmd:
            json.insert(name, commandName(quint8(v)));
            words << QStringLiteral("%1 %2").arg(name, commandName(quint8(v)));
            break;
        case Status: {
            const QString text = DTS::toString(DTS::NackStatus(v));
            json.insert(name, qint64(v));
            json.insert(QStringLiteral("statusText"), text);
            words << QStringLiteral("%1 %2 (%3)").arg(name, hexText(v, 2), text);
            break;
        }
        default:
            json.insert(name, qint64(v));
            words << QStringLiteral("%1 %2").arg(name).arg(v);
        }
    }
    return at == payload.size();
}

} // namespace

QString hexText(quint32 value, int width)
{
    return QStringLiteral("0x") + QStringLiteral("%1").arg(value, width, 16, QLatin1Char('0')).toUpper();
}

QString nodeTypeName(int nodeType)
{
    auto tr = [](const char* text) { return QCoreApplication::translate("vrnconfig", text); };
    switch (nodeType) {
    case VRN::NodeTool: return tr("tool");
    case VRN::NodeMotor: return tr("motor");
    case VRN::NodeTX30: return QStringLiteral("TX30");
    case VRN::NodeKeypad: return tr("keypad");
    case VRN::NodeSensor: return tr("sensor");
    case VRN::NodeInterface: return tr("interface");
    case VRN::NodeMotorIO: return tr("motor with inputs");
    case VRN::NodeLRU50: return QStringLiteral("LRU50");
    case VRN::NodeTX50DC: return QStringLiteral("TX50DC");
    case VRN::NodeDCMotor: return tr("DC motor");
    case VRN::NodeSettingTool: return tr("setting tool");
    case VRN::NodeAll: return tr("any");
    default: return tr("type %1").arg(nodeType);
    }
}

DecodedFrame decodeFrame(const QByteArray& bytes)
{
    DecodedFrame d;
    const VRNMessage m{BusMessage(bytes)};
    d.valid = m.isValid();
    d.json.insert(QStringLiteral("valid"), d.valid);
    d.json.insert(QStringLiteral("bytes"), QString::fromLatin1(bytes.toHex(' ')).toUpper());
    if (!d.valid)
        return d;
    const VRN::Addr src = m.srcAddr();
    const int type = int(VRN::getType(src));
    d.source = QStringLiteral("%1 %2").arg(nodeTypeName(type), nodeText(VRN::getNumber(src)));
    const QString dstNode = nodeText(m.dstAddr());
    const QString dstKind = m.isBroadcast() ? QStringLiteral("broadcast")
                          : m.dstType() == VRN::AddrGroup ? QStringLiteral("group") : QStringLiteral("node");
    d.destination = m.isBroadcast() ? QStringLiteral("all") : m.dstType() == VRN::AddrGroup ? QStringLiteral("group ") + dstNode : dstNode;
    d.command = commandName(m.cmd());
    d.json.insert(QStringLiteral("source"), QJsonObject{{QStringLiteral("node"), nodeText(VRN::getNumber(src))},
                                                         {QStringLiteral("nodeType"), type},
                                                         {QStringLiteral("nodeTypeName"), nodeTypeName(type)}});
    d.json.insert(QStringLiteral("destination"), QJsonObject{{QStringLiteral("node"), dstNode}, {QStringLiteral("kind"), dstKind}});
    d.json.insert(QStringLiteral("command"), d.command);
    d.json.insert(QStringLiteral("code"), int(m.cmd()));
    const QByteArray payload = m.payload();
    d.json.insert(QStringLiteral("payload"), QString::fromLatin1(payload.toHex(' ')).toUpper());
    QStringList words;
    QJsonObject fields;
    const auto layout = layouts().constFind(m.cmd());
    if (layout != layouts().constEnd() && readFields(payload, *layout, words, fields)) {
        d.text = words.join(QStringLiteral(", "));
        d.json.insert(QStringLiteral("fields"), fields);
    } else if (!payload.isEmpty()) {
        d.text = QString::fromLatin1(payload.toHex(' ')).toUpper();
    }
    return d;
}
