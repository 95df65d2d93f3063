#include "libraryversion.h"

QString VRNConfigTool::libraryVersion()
{
    return QStringLiteral(VRN_LIBRARY_VERSION);
}
