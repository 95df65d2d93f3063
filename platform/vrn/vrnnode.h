#ifndef VRNNODE_H
#define VRNNODE_H

#include "bus.h"
#include "busobject.h"
#include "buspendingcall.h"
#include "vrn.h"

#include <QScopedPointer>
#include <functional>

class VRNBus;
class VRNDataWriter;
class VRNNodePrivate;

/// One node (or one group of nodes) of the device network, seen from the
/// tool: its address and the bus its requests travel on.
///
/// Device objects create their node with address 0 and no bus; the object
/// factory then sets the address and attaches the node to the open bus:
///
///     node->setAddress(VRN::makeAddr(VRN::NodeMotor, 0x123456));
///     node->attach(busFactory->bus());
///
/// Proxies derived from this class send every request through `request()`.
class VRNNode : public BusObject
{
    Q_OBJECT
public:
    explicit VRNNode(VRN::Addr addr = 0, Bus* bus = nullptr, QObject* parent = nullptr);
    ~VRNNode() override;

    /// Node type in the top 8 bits, node (or group) number below.
    VRN::Addr address() const;
    void setAddress(VRN::Addr addr);
    /// How the address is read on the wire: one node (default) or a group.
    VRN::AddrType addressType() const;

public slots:
    /// Moves the node onto `bus`; null detaches it (requests then end at once
    /// with `BusNotAvailableError`).
    void attach(VRNBus* bus);

protected:
    VRNNode(VRNNodePrivate& dd, VRN::Addr addr, Bus* bus, QObject* parent);

    using PayloadWriter = std::function<void(VRNDataWriter&)>;

    /// Sends request `cmd` of `DTS::cmds()` to this node, its payload written
    /// by `fill`. Ends at once with `BusNotAvailableError` without a bus, and
    /// with `OtherError` when the command is unknown or the payload does not
    /// fit the command's size.
    BusPendingCall request(quint8 cmd, const PayloadWriter& fill = PayloadWriter()) const;

    void setAddressType(VRN::AddrType type);

    QScopedPointer<VRNNodePrivate> d_ptr;

private:
    Q_DECLARE_PRIVATE(VRNNode)
};

#endif // VRNNODE_H
