// Private implementation of VRNNode; not part of the library's API.
#ifndef VRNNODE_P_H
#define VRNNODE_P_H

#include "vrnnode.h"

class VRNNodePrivate
{
public:
    explicit VRNNodePrivate(VRNNode* q) : q_ptr(q) {}
    virtual ~VRNNodePrivate() = default;

    VRNNode* q_ptr;
    VRN::Addr addr = 0;
    VRN::AddrType addrType = VRN::AddrNode;
};

#endif // VRNNODE_P_H
