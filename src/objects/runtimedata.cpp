#include "runtimedata.h"

#include "defaultpayload_p.h"

RuntimeData::RuntimeData()
    : d(&defaultPayload<RuntimeDataData>())
{
}

RuntimeData::RuntimeData(const RuntimeData& other) = default;

RuntimeData::RuntimeData(RuntimeDataData& data)
    : d(&data)
{
}

RuntimeData::~RuntimeData() = default;

RuntimeData& RuntimeData::operator=(const RuntimeData& other) = default;

void RuntimeData::updateData(const RuntimeData& other)
{
    d->update(other.getConstData());
}

void RuntimeData::eraseData()
{
    d->erase();
}

bool RuntimeData::operator==(const RuntimeData& other) const
{
    return d.constData() == other.d.constData() || *d.constData() == *other.d.constData();
}
