// Internal header of the module entry: not part of the library's API.
#ifndef VRNCONFIGTOOLQML_P_H
#define VRNCONFIGTOOLQML_P_H

#include <QStringList>

class QQmlEngine;

namespace VRNConfigToolQmlPrivate {
/// `VRNConfigToolQml::load` over an explicit candidate list.
bool load(QQmlEngine* engine, const QStringList& candidates);
}

#endif // VRNCONFIGTOOLQML_P_H
