#include "busobject.h"
#include "bus.h"

BusObject::BusObject(Bus* bus, QObject* parent) : QObject(parent), m_bus(bus) {}

BusObject::~BusObject() = default;

Bus* BusObject::bus() const
{
    return m_bus;
}

void BusObject::setBus(Bus* bus)
{
    if (m_bus == bus)
        return;
    m_bus = bus;
    emit busChanged(bus);
}
