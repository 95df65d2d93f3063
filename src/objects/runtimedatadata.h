#ifndef RUNTIMEDATADATA_H
#define RUNTIMEDATADATA_H

#include "dtsstdproxy.h"
#include "motordiagnostic.h"

#include <QSharedData>
#include <QSharedDataPointer>

/// Payload of `RuntimeData`: what changes while a device runs.
///
/// Not-known values: both positions 0, the three statistics cleared.
class RuntimeDataData : public QSharedData
{
public:
    RuntimeDataData() = default;
    RuntimeDataData(const RuntimeDataData& other) = default;
    virtual ~RuntimeDataData();

    virtual RuntimeDataData* clone() const;
    RuntimeDataData& operator=(const RuntimeDataData& other);
    bool operator==(const RuntimeDataData& other) const;
    bool operator!=(const RuntimeDataData& other) const { return !(*this == other); }
    /// Copies every field from `other`, without comparing first.
    void update(const RuntimeDataData& other);
    void erase();

    /// Current position in percent.
    quint16 posPCent = 0;
    /// Current position in encoder pulses.
    quint16 posPulse = 0;
    DTSStdProxy::NetworkStat networkStat;
    DTSStdProxy::NetworkErrorStat networkErrorStat;
    MotorDiagnostic motorDiagnostic;
};

template <>
inline RuntimeDataData* QSharedDataPointer<RuntimeDataData>::clone()
{
    return d->clone();
}

#endif // RUNTIMEDATADATA_H
