#ifndef VRNCONFIG_LABELCOMMANDS_H
#define VRNCONFIG_LABELCOMMANDS_H

#include <QString>

class DeviceRun;

/// Takes the label a GetLabelJob read into the run's result and the
/// registry; false (reason in `error`) when the registry did not store it.
bool readLabel(DeviceRun& run, QString& error);

#endif // VRNCONFIG_LABELCOMMANDS_H
