#ifndef STDCONFIGDATADATA_H
#define STDCONFIGDATADATA_H

#include "configdatadata.h"

#include "dtsstdproxy.h"
#include "vrn.h"

#include <QByteArray>
#include <QList>

/// Payload of a standard node's configuration (`StdConfigData`).
///
/// Not-known values: empty `groups`, cleared `networkConfig` and
/// `appVersion`, null `label` and `serialNumber` (an empty, non-null byte
/// string is a known, empty value).
class StdConfigDataData : public ConfigDataData
{
public:
    StdConfigDataData() = default;
    StdConfigDataData(const StdConfigDataData& other) = default;
    /// Not-known values, then every level that `other` has.
    explicit StdConfigDataData(const ConfigDataData& other);

    StdConfigDataData* clone() const override;
    StdConfigDataData& operator=(const ConfigDataData& other) override;
    StdConfigDataData& operator=(const StdConfigDataData& other);
    bool operator==(const ConfigDataData& other) const override;
    using ConfigDataData::update;
    bool update(const ConfigDataData& other) override;
    /// Copies `label`, `serialNumber`, `appVersion` and `groups` (never
    /// `networkConfig`) unless `other` equals this payload on this level.
    virtual bool update(const StdConfigDataData& other);

    void erase();
    /// This level's own fields only.
    bool compareStd(const StdConfigDataData& other) const;

    /// Group addresses; an entry 0 is an empty group slot.
    QList<VRN::Addr> groups;
    DTSStdProxy::NetworkConfig networkConfig;
    DTSStdProxy::AppVersion appVersion;
    QByteArray label;
    QByteArray serialNumber;

protected:
    /// This level and every shallower one equal to `other`'s.
    bool sameAs(const StdConfigDataData& other) const { return compareStd(other); }
    /// This level's fields that a merge copies.
    void mergeStd(const StdConfigDataData& other);
};

#endif // STDCONFIGDATADATA_H
