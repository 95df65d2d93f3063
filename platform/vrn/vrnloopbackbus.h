#ifndef VRNLOOPBACKBUS_H
#define VRNLOOPBACKBUS_H

#include "vrnbus.h"

class VRNLoopbackBusPrivate;

/// An in-process wire for tests and the simulator: every frame the bus writes
/// is emitted by `transmitted()`, and the peer answers with `inject()`.
/// Injected bytes are read at once as a serial stream would be (garbage is
/// dropped, split frames wait for their rest); the peer adds any delay itself.
/// Bytes injected while the bus is closed are lost, as on an unplugged line.
///
///     VRNLoopbackBus bus;
///     connect(&bus, &VRNLoopbackBus::transmitted, peer, &Peer::onFrame);
///     bus.open();
class VRNLoopbackBus : public VRNBus
{
    Q_OBJECT
public:
    explicit VRNLoopbackBus(QObject* parent = nullptr);
    ~VRNLoopbackBus() override;

    /// Always succeeds.
    bool open() override;
    void close() override;

public slots:
    void inject(const QByteArray& bytes);

signals:
    void transmitted(const QByteArray& frame);

protected:
    bool writeFrame(const BusMessage& message) override;

private:
    Q_DECLARE_PRIVATE(VRNLoopbackBus)
};

#endif // VRNLOOPBACKBUS_H
