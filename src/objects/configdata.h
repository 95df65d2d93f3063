#ifndef CONFIGDATA_H
#define CONFIGDATA_H

#include "configdatadata.h"

#include <QMetaType>
#include <QSharedDataPointer>

/// A device's configuration: an implicitly shared, copy-on-write value.
///
/// `ConfigData` is the root of the record classes `StdConfigData`,
/// `MotorConfigData` and `DCMotorConfigData`; every level keeps its payload
/// in the one shared pointer declared here. Copying a record copies that
/// pointer; every write detaches first, copying the payload through its
/// virtual `clone()` so that the copy keeps its dynamic type. A
/// default-constructed record shares the per-type default payload and
/// allocates nothing.
///
/// A record copied into a shallower class (a `MotorConfigData` passed as a
/// `ConfigData` through a signal) keeps its deeper payload; converting it
/// back (`MotorConfigData(config)`) shares that payload again. Conversions
/// and downcasts therefore go by the payload's level (`hasLevel()`), not by
/// the C++ class of the record object.
///
///     StdConfigData wanted;
///     wanted.data().label = "Kitchen";      // detaches from the default
///     local.updateData(wanted);              // merge, see ConfigDataData
class ConfigData
{
public:
    /// Shares the default root payload.
    ConfigData();
    ConfigData(const ConfigData& other);
    /// Shares `data`, which must live on the heap: the record takes a reference.
    explicit ConfigData(ConfigDataData& data);
    virtual ~ConfigData();

    /// At the root level: shares `other`'s payload.
    virtual ConfigData& operator=(const ConfigData& other);
    /// The payload, for reading.
    virtual const ConfigDataData& getConstData() const;
    /// Merges `other` into this record (detaching first); see
    /// `ConfigDataData::update` for the rules.
    virtual void updateData(const ConfigData& other);
    /// Validity of this class's own level only: always true at the root.
    virtual bool isValid() const;

    /// `updateData` that reports whether the merge changed anything.
    bool merge(const ConfigData& other);
    /// True at once when both share one payload; otherwise the payloads are
    /// compared on the levels both have.
    bool operator==(const ConfigData& other) const;
    bool operator!=(const ConfigData& other) const { return !(*this == other); }
    /// Resets this class's own level to "not known" (nothing at the root).
    void eraseData();
    /// The payload for writing, detached.
    ConfigDataData& data() { return *d.data(); }
    /// Whether `record` carries the root level: always true.
    static bool hasLevel(const ConfigData&) { return true; }

protected:
    /// The payload of `record` viewed as `P`, or null when it is shallower.
    template <class P>
    static const P* payloadAs(const ConfigData& record)
    {
        return dynamic_cast<const P*>(record.d.constData());
    }
    /// The payload as `P`, detached for writing; this record's class
    /// guarantees that the payload is a `P` or deeper.
    template <class P>
    P& writable()
    {
        return static_cast<P&>(*d.data());
    }
    /// Assignment and conversion at the level of payload `P`: shares the
    /// payload of a record that has level `P`, otherwise assigns the levels
    /// `other` has into a detached payload of this record.
    template <class P>
    void assignAt(const ConfigData& other)
    {
        if (payloadAs<P>(other))
            d = other.d;
        else
            writable<P>() = other.getConstData();
    }
    /// Detaches and merges `other` into the payload at the level of `P`.
    template <class P>
    bool mergeAt(const P& other)
    {
        return writable<P>().update(other);
    }

    QSharedDataPointer<ConfigDataData> d;
};

Q_DECLARE_METATYPE(ConfigData)

#endif // CONFIGDATA_H
