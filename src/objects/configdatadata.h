#ifndef CONFIGDATADATA_H
#define CONFIGDATADATA_H

#include <QSharedData>
#include <QSharedDataPointer>

/// Root payload of every configuration record.
///
/// It has no fields of its own; it carries the virtual operations that the
/// deeper payloads (`StdConfigDataData`, `MotorConfigDataData`,
/// `DCMotorConfigDataData`) override, so that a record detaching its payload
/// keeps the payload's dynamic type (`clone()`), and so that assignment,
/// comparison and merge work across levels.
///
/// Comparison and merge rules, all deliberate:
/// - `a == b` compares only the levels both payloads have; the root level is
///   always equal, so a standard payload and a motor payload with the same
///   standard fields are equal in either order.
/// - `update(other)` merges the deepest level both payloads share. It copies
///   that level's own fields only, and only when the whole of `other` (that
///   level and every shallower one) differs from this payload; it then
///   returns true. Fields are copied even when they hold "not known".
/// - `operator=` copies every level both payloads have and leaves this
///   payload's deeper levels as they are.
class ConfigDataData : public QSharedData
{
public:
    ConfigDataData() = default;
    ConfigDataData(const ConfigDataData& other) = default;
    virtual ~ConfigDataData();

    /// A heap copy of the same dynamic type.
    virtual ConfigDataData* clone() const;
    virtual ConfigDataData& operator=(const ConfigDataData& other);
    /// The root level compares nothing: always true.
    virtual bool operator==(const ConfigDataData& other) const;
    virtual bool operator!=(const ConfigDataData& other) const;
    /// The root level merges nothing: always false.
    virtual bool update(const ConfigDataData& other);

    /// Resets this level's own fields (none at the root).
    void erase() {}
};

/// Detaching a record copies its payload through the virtual clone().
template <>
inline ConfigDataData* QSharedDataPointer<ConfigDataData>::clone()
{
    return d->clone();
}

#endif // CONFIGDATADATA_H
