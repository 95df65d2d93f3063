#include "vrnnode.h"
#include "vrnnode_p.h"

#include "bus.h"
#include "dts.h"
#include "vrnbus.h"
#include "vrncall.h"
#include "vrndatawriter.h"

#include <QDebug>

VRNNode::VRNNode(VRN::Addr addr, Bus* bus, QObject* parent)
    : VRNNode(*new VRNNodePrivate(this), addr, bus, parent)
{
}

VRNNode::VRNNode(VRNNodePrivate& dd, VRN::Addr addr, Bus* bus, QObject* parent)
    : BusObject(bus, parent), d_ptr(&dd)
{
    d_ptr->addr = addr;
}

VRNNode::~VRNNode() = default;

VRN::Addr VRNNode::address() const
{
    Q_D(const VRNNode);
    return d->addr;
}

void VRNNode::setAddress(VRN::Addr addr)
{
    Q_D(VRNNode);
    d->addr = addr;
}

VRN::AddrType VRNNode::addressType() const
{
    Q_D(const VRNNode);
    return d->addrType;
}

void VRNNode::setAddressType(VRN::AddrType type)
{
    Q_D(VRNNode);
    d->addrType = type;
}

void VRNNode::attach(VRNBus* bus)
{
    setBus(bus);
}

BusPendingCall VRNNode::request(quint8 cmd, const PayloadWriter& fill) const
{
    Q_D(const VRNNode);
    const VRNCmdInfo info = DTS::cmdInfo(cmd);
    if (!info.isRequest()) {
        qWarning().nospace() << "[VRNNode]: not a request: 0x" << Qt::hex << uint(cmd);
        return BusPendingCall::fromError(BusPendingCall::OtherError, tr("Unknown request"));
    }
    if (!bus())
        return BusPendingCall::fromError(BusPendingCall::BusNotAvailableError);
    // An address no device can have (an old registry row, a forged answer)
    // would reach every node or another tool: never sent.
    if (d->addrType == VRN::AddrNode && !VRN::isDeviceAddr(d->addr)) {
        const QString text = tr("address 0x%1 is reserved, never a device's: request refused")
                                 .arg(d->addr, 8, 16, QLatin1Char('0'));
        qWarning().noquote() << "[VRNNode]:" << text;
        return BusPendingCall::fromError(BusPendingCall::OtherError, text);
    }

    // A node answers exactly once; a group or broadcast request collects
    // whatever arrives in the bus's window.
    const unsigned int maxReplies = d->addrType == VRN::AddrNode ? 1 : 0xFF;
    VRNCall call(info, d->addr, d->addrType, maxReplies);
    if (fill) {
        VRNDataWriter writer(call);
        fill(writer);
    }
    const int size = call.payload().size();
    if (!info.acceptsPayloadSize(size) || !call.prepare()) {
        qWarning().noquote().nospace() << "[VRNNode]: " << info.name() << ": payload of " << size
                             << " bytes, expected " << info.minPayload() << ".." << info.maxPayload();
        return BusPendingCall::fromError(BusPendingCall::OtherError, tr("Invalid request payload"));
    }
    return bus()->call(call);
}
