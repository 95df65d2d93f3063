#ifndef VRNCMDINFO_H
#define VRNCMDINFO_H

#include <QString>

/// Description of one command of the device network: its code, its name,
/// the code of the reply it gets, and the payload sizes a frame may carry.
class VRNCmdInfo
{
public:
    enum Kind : quint8 { Invalid, Request, Reply };

    VRNCmdInfo() = default;
    VRNCmdInfo(quint8 cmd, const char* name, Kind kind, quint8 reply,
               quint8 minPayload, quint8 maxPayload)
        : m_name(name), m_cmd(cmd), m_reply(reply), m_minPayload(minPayload),
          m_maxPayload(maxPayload), m_kind(kind) {}

    bool isValid() const { return m_kind != Invalid; }
    bool isRequest() const { return m_kind == Request; }
    bool isReply() const { return m_kind == Reply; }
    quint8 cmd() const { return m_cmd; }
    /// Reply code a node sends to this request (0x7F for writes); 0 for replies.
    quint8 reply() const { return m_reply; }
    QString name() const { return QString::fromLatin1(m_name); }
    quint8 minPayload() const { return m_minPayload; }
    quint8 maxPayload() const { return m_maxPayload; }
    bool acceptsPayloadSize(int size) const { return size >= m_minPayload && size <= m_maxPayload; }

private:
    const char* m_name = "";
    quint8 m_cmd = 0;
    quint8 m_reply = 0;
    quint8 m_minPayload = 0;
    quint8 m_maxPayload = 0;
    Kind m_kind = Invalid;
};

#endif // VRNCMDINFO_H
