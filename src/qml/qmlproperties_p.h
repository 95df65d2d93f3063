// Internal to the QML record wrappers: not part of the library's API.
#ifndef QMLPROPERTIES_P_H
#define QMLPROPERTIES_P_H

#include <QObject>
#include <QVariant>

#include <initializer_list>

namespace QmlProperties {

/// Creates dynamic properties holding null, so that QML sees them before
/// the first update. (An invalid QVariant would remove a dynamic property.)
inline void createNull(QObject* object, std::initializer_list<const char*> names)
{
    for (const char* name : names)
        object->setProperty(name, QVariant::fromValue(nullptr));
}

/// How many of `values` differ from `unset`, counted in 8 bits as the
/// device counts its slots.
template <class List, class Field, class T>
int countSet(const List& values, Field field, T unset)
{
    quint8 count = 0;
    for (const auto& v : values) {
        if (field(v) != unset)
            ++count;
    }
    return count;
}

} // namespace QmlProperties

#endif // QMLPROPERTIES_P_H
