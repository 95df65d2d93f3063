#include "dtsgroupproxy.h"
#include "dtsmotorpayload_p.h"

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
