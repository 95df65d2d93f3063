#ifndef LIBRARYVERSION_H
#define LIBRARYVERSION_H

#include <QString>

namespace VRNConfigTool {

/// The version of the library the program runs with (not the one it was
/// built against), as "major.minor.patch".
QString libraryVersion();

} // namespace VRNConfigTool

#endif // LIBRARYVERSION_H
