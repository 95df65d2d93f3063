#ifndef STDCONFIGDATA_H
#define STDCONFIGDATA_H

#include "configdata.h"
#include "stdconfigdatadata.h"

/// Configuration of a standard node: groups, network configuration,
/// firmware version, label and serial number (`StdConfigDataData`).
///
/// Validity tests look at this level's fields only; a caller that needs a
/// whole deeper record valid calls the tests of each level.
class StdConfigData : public ConfigData
{
public:
    /// Shares the default standard payload: every field "not known".
    StdConfigData();
    StdConfigData(const StdConfigData& other);
    explicit StdConfigData(StdConfigDataData& data);
    /// Shares `other`'s payload when it has the standard level, otherwise
    /// starts from "not known" and takes the levels `other` has.
    StdConfigData(const ConfigData& other);

    StdConfigData& operator=(const ConfigData& other) override;
    StdConfigData& operator=(const StdConfigData& other);
    const StdConfigDataData& getConstData() const override;
    using ConfigData::updateData;
    /// Merges at the standard level (see `StdConfigDataData::update`).
    virtual void updateData(const StdConfigData& other);
    /// Version, then groups, then label valid; serial number and network
    /// configuration take no part.
    bool isValid() const override;
    virtual bool isVersionValid() const;
    /// The label is known (not null; an empty label is valid).
    virtual bool isLabelValid() const;
    /// The serial number is known (not null).
    virtual bool isSerialValid() const;
    /// The group list has at least one entry (empty slots, 0, count).
    virtual bool isGroupValid() const;

    using ConfigData::merge;
    /// `updateData(StdConfigData)` that reports whether the merge changed anything.
    bool merge(const StdConfigData& other);
    bool compareStd(const StdConfigData& other) const;
    /// Resets the standard fields only.
    void eraseData();
    StdConfigDataData& data() { return writable<StdConfigDataData>(); }
    /// Whether `record`'s payload has the standard level.
    static bool hasLevel(const ConfigData& record);
};

Q_DECLARE_METATYPE(StdConfigData)

#endif // STDCONFIGDATA_H
