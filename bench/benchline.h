#ifndef BENCHLINE_H
#define BENCHLINE_H

#include "simnetwork.h"
#include "vrnloopbackbus.h"
#include "vrnobject.h"

#include <QSharedPointer>

// A simulated line taking the time of a serial line at `baud`, on the
// in-process loopback bus, with one node of `kind` and its device object.
struct BenchLine
{
    SimNetwork net;
    VRNLoopbackBus bus;
    SimNode* node = nullptr;
    QSharedPointer<VRNObject> object;

    BenchLine(quint32 seed, int baud, SimNode::Kind kind, VRNObject* device)
        : net(seed)
        , object(device)
    {
        net.setBaud(baud);
        net.setReplyWindow(0);
        node = net.addNode(kind, 0x000100);
        bus.setTimeout(1000);
        net.attach(&bus);
        bus.open();
        object->setNodeAddress(node->address());
        object->attach(&bus);
    }
};

#endif // BENCHLINE_H
