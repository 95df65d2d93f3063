#ifndef VRNVALUE_H
#define VRNVALUE_H

/// Base of the protocol's plain value types (statistics, versions, counters):
/// `clear()`, `operator==` and `operator!=` over the fields the type lists in
/// its private `fields()` (a `std::tie` of every member), so that a member
/// added to the list takes part in all three.
///
///     struct Pair : VRNValue<Pair> {
///         quint8 a = 0, b = 0;
///     private:
///         friend class VRNValue<Pair>;
///         auto fields() const { return std::tie(a, b); }
///     };
template <typename T>
class VRNValue
{
public:
    /// Back to the default value of every field.
    void clear() { self() = T(); }
    bool operator==(const T& other) const { return self().fields() == other.fields(); }
    bool operator!=(const T& other) const { return !(*this == other); }

private:
    T& self() { return static_cast<T&>(*this); }
    const T& self() const { return static_cast<const T&>(*this); }
};

#endif // VRNVALUE_H
