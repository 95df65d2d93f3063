#include "vrnloopbackbus.h"
#include "vrnbus_p.h"

class VRNLoopbackBusPrivate : public VRNBusPrivate
{
};

VRNLoopbackBus::VRNLoopbackBus(QObject* parent)
    : VRNBus(*new VRNLoopbackBusPrivate, parent)
{
}

VRNLoopbackBus::~VRNLoopbackBus()
{
    close();
}

bool VRNLoopbackBus::open()
{
    d_func()->resetStream();
    return Bus::open();
}

void VRNLoopbackBus::close()
{
    d_func()->resetStream();
    Bus::close();
}

void VRNLoopbackBus::inject(const QByteArray& bytes)
{
    if (isOpen())
        d_func()->receiveBytes(bytes);
}

bool VRNLoopbackBus::writeFrame(const BusMessage& message)
{
    if (!isOpen())
        return false;
    emit transmitted(message.data());
    return true;
}
