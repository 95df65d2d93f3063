// Private part of SimNode: not part of the API, may change without notice.
#ifndef SIMNODE_P_H
#define SIMNODE_P_H

#include "simnode.h"

#include <QDeadlineTimer>
#include <array>

class VRNMessage;

class SimNodePrivate
{
    Q_DECLARE_PUBLIC(SimNode)
public:
    SimNodePrivate(SimNode::Kind kind, quint32 number);
    virtual ~SimNodePrivate() = default;

    /// What `execute` decided: an answer in `out`, a NACK status, or nothing.
    enum : int { Answered = 0, NoAnswer = -1 };

    int execute(const VRNMessage& rq, VRNMessage& out);
    int executeNodeCommand(const VRNMessage& rq, VRNMessage& out);
    int executeMotorCommand(const VRNMessage& rq, VRNMessage& out);
    int executeDiagnostic(quint8 cmd, VRNMessage& out) const;
    int moveTo(const VRNMessage& rq);
    int moveOf(const VRNMessage& rq);
    int move(const VRNMessage& rq);
    int setLimits(const VRNMessage& rq);
    int setIp(const VRNMessage& rq);
    int setSoftStartStop(const VRNMessage& rq);
    int setDeafMode(const VRNMessage& rq);
    void factoryDefault(quint8 function);
    void setNetworkCounters(quint8 which, quint8 value);

    bool limitsSet() const;
    quint16 lowLimit() const;   ///< min of the limits
    quint16 highLimit() const;  ///< max of the limits
    quint8 percentOf(quint16 pulses) const;
    quint16 pulsesOf(quint8 percent) const;
    quint16 clampToLimits(int pulses) const;
    int pulseSign(bool down) const;  ///< +1 or -1: the way pulses count when moving down/up
    void travelTo(quint16 pulses);
    quint8 ipIndexAtPosition() const;

    SimNode* q_ptr = nullptr;
    SimNode::Kind kind;
    quint32 number;
    VRN::NodeType nodeType;

    QByteArray label;
    QByteArray serial;
    std::array<quint32, SimNode::GroupSlots> groups{};
    SimNode::AppVersion version;
    SimNode::NetworkConfig networkConfig;
    SimNode::NetworkStat networkStat;
    SimNode::NetworkErrorStat errorStat;

    bool discoveryMark = false;
    bool deaf = false;
    QDeadlineTimer deafUntil;
    bool silent = false;
    quint8 forcedNackStatus = 0;
    int forcedNackCount = 0;

    quint8 direction = 0;
    quint16 upLimit = SimNode::Unset16;
    quint16 downLimit = SimNode::Unset16;
    quint16 position = 0;
    std::array<quint16, SimNode::IpSlots> ips;
    SimNode::RollingSpeed speed;
    SimNode::SoftStartStop ramps;
    SimNode::Diagnostics diagnostics;
};

#endif // SIMNODE_P_H
