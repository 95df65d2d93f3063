#ifndef NULLVARIANT_H
#define NULLVARIANT_H

#include <QVariant>

/// A null value of type `T`: what a statement binds to write SQL NULL into a
/// column of that type (a node number not yet known, a filter left empty).
///
///     query.addBindValue(number ? QVariant(number) : nullVariant<int>());
///
/// Qt 6 makes a typed null from the type itself; Qt 5 only from the type's
/// id, in a constructor Qt 6 deprecates.
template <typename T>
inline QVariant nullVariant()
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    return QVariant(QMetaType::fromType<T>());
#else
    return QVariant(QVariant::Type(qMetaTypeId<T>()));
#endif
}

#endif // NULLVARIANT_H
