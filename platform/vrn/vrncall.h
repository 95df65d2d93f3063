#ifndef VRNCALL_H
#define VRNCALL_H

#include "vrncmdinfo.h"
#include "vrnmessage.h"

/// A request frame for one command of the table.
///
/// `addr` is the destination (a node address, a group address, or any address
/// with `VRN::AddrBroadcast`); `maxReplies` is how many replies the caller
/// wants: 1 for a node, 0xFF for "every reply within the collection window".
class VRNCall : public VRNMessage
{
public:
    VRNCall(const VRNCmdInfo& info, unsigned int addr, VRN::AddrType type, unsigned int maxReplies);

    const VRNCmdInfo& info() const { return m_info; }
    unsigned int maxReplies() const { return m_maxReplies; }

private:
    VRNCmdInfo m_info;
    unsigned int m_maxReplies;
};

#endif // VRNCALL_H
