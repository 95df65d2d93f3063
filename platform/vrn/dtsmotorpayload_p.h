// Payloads shared by the motor and group proxies; not part of the library's API.
#ifndef DTSMOTORPAYLOAD_P_H
#define DTSMOTORPAYLOAD_P_H

#include "vrndatawriter.h"

// A motor and a group of motors take the same movement requests.
namespace DTSMotorPayload {

/// CTRL_MOVETO and CTRL_MOVEOF: function, value, reserved byte.
inline auto move(quint8 function, quint16 value, quint8 reserved)
{
    return [=](VRNDataWriter& w) { w.writeUint8(function).writeUint16(value).writeUint8(reserved); };
}

/// CTRL_STOP: reserved byte.
inline auto stop(quint8 reserved)
{
    return [=](VRNDataWriter& w) { w.writeUint8(reserved); };
}

} // namespace DTSMotorPayload

#endif // DTSMOTORPAYLOAD_P_H
