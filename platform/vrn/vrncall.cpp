#include "vrncall.h"

VRNCall::VRNCall(const VRNCmdInfo& info, unsigned int addr, VRN::AddrType type, unsigned int maxReplies)
    : VRNMessage(info.cmd(), VRN::toolAddr(), addr, type), m_info(info), m_maxReplies(maxReplies)
{
    // Requests to one node ask for an acknowledgement; group and broadcast
    // requests never do, as every member would answer at once.
    setAck(type == VRN::AddrNode);
    prepare();
}
