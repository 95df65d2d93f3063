#ifndef DTSGROUPPROXY_H
#define DTSGROUPPROXY_H

#include "dts.h"
#include "vrnnode.h"

/// Movement requests to every motor of a group address at once.
///
/// A group request asks for no acknowledgement and gets no reply: its
/// pending call ends without error when the bus's broadcast window closes.
///
///     DTSGroupProxy group(0x000123, bus);
///     group.moveTo(DTSMotor::MoveToPercent, 50, 0xFF);
class DTSGroupProxy : public VRNNode
{
    Q_OBJECT
public:
    /// `group`: the group number (24 bits).
    explicit DTSGroupProxy(VRN::Addr group = 0, Bus* bus = nullptr, QObject* parent = nullptr);
    ~DTSGroupProxy() override;

    BusPendingCall moveTo(DTSMotor::MoveToFunction function, unsigned short value, unsigned char reserved);
    BusPendingCall moveOf(DTSMotor::MoveOfFunction function, unsigned short value, unsigned char reserved);
    BusPendingCall stop(unsigned char reserved);
    /// Stops every motor that holds the group number, or every motor when
    /// the number is 0xFFFFFF (`VRN::BroadcastNumber`): one CTRL_STOP_ALL
    /// frame that every node hears, whatever groups it holds.
    BusPendingCall stopAll();
};

#endif // DTSGROUPPROXY_H
