#ifndef RUNTIMEDATA_H
#define RUNTIMEDATA_H

#include "runtimedatadata.h"

#include <QMetaType>
#include <QSharedDataPointer>

/// What a device reports while it runs: position, network statistics and
/// motor diagnostics. An implicitly shared, copy-on-write value; a
/// default-constructed record shares the default payload ("not known").
class RuntimeData
{
public:
    RuntimeData();
    RuntimeData(const RuntimeData& other);
    /// Shares `data`, which must live on the heap.
    explicit RuntimeData(RuntimeDataData& data);
    virtual ~RuntimeData();

    RuntimeData& operator=(const RuntimeData& other);
    const RuntimeDataData& getConstData() const { return *d.constData(); }
    /// Copies every field of `other` into a detached payload.
    void updateData(const RuntimeData& other);
    void eraseData();
    /// True at once when both share one payload, otherwise field by field.
    bool operator==(const RuntimeData& other) const;
    bool operator!=(const RuntimeData& other) const { return !(*this == other); }
    /// The payload for writing, detached.
    RuntimeDataData& data() { return *d.data(); }

private:
    QSharedDataPointer<RuntimeDataData> d;
};

Q_DECLARE_METATYPE(RuntimeData)

#endif // RUNTIMEDATA_H
