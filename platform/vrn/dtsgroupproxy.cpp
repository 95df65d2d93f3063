#include "dtsgroupproxy.h"
#include "dtsmotorpayload_p.h"
#include "vrndatawriter.h"

DTSGroupProxy::DTSGroupProxy(VRN::Addr group, Bus* bus, QObject* parent)
    : VRNNode(group, bus, parent)
{
    setAddressType(VRN::AddrGroup);
}

DTSGroupProxy::~DTSGroupProxy() = default;

BusPendingCall DTSGroupProxy::moveTo(DTSMotor::MoveToFunction function, unsigned short value,
                                     unsigned char reserved)
{
    return request(DTS::CtrlMoveTo, DTSMotorPayload::move(function, value, reserved));
}

BusPendingCall DTSGroupProxy::moveOf(DTSMotor::MoveOfFunction function, unsigned short value,
                                     unsigned char reserved)
{
    return request(DTS::CtrlMoveOf, DTSMotorPayload::move(function, value, reserved));
}

BusPendingCall DTSGroupProxy::stop(unsigned char reserved)
{
    return request(DTS::CtrlStop, DTSMotorPayload::stop(reserved));
}

BusPendingCall DTSGroupProxy::stopAll()
{
    // The group travels in the payload; the frame goes to every node.
    const VRN::AddrType type = addressType();
    const quint32 group = VRN::getNumber(address());
    setAddressType(VRN::AddrBroadcast);
    const BusPendingCall call = request(DTS::CtrlStopAll, [group](VRNDataWriter& w) { w.writeUint24(group); });
    setAddressType(type);
    return call;
}
