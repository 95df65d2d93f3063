// Internal header of the firmware catalogue, not API: may change without notice.
#ifndef FIRMWARELOADER_P_H
#define FIRMWARELOADER_P_H

#include "bpkkeys.h"
#include "firmwareinfo.h"

#include <QFileSystemWatcher>
#include <QTimer>

class FirmwareLoader;

class FirmwareLoaderPrivate
{
public:
    explicit FirmwareLoaderPrivate(FirmwareLoader* q) : q_ptr(q) {}

    /// Watches the folder and its packages (a replaced file changes in place).
    void watch();
    /// Brings the rows to `fresh` (sorted by path) row by row.
    void merge(const QList<FirmwareInfo>& fresh);

    FirmwareLoader* q_ptr;
    QString path;
    bool pathGiven = false;
    BpkKeys keys;
    bool keysGiven = false;
    QList<FirmwareInfo> rows;
    QFileSystemWatcher watcher;
    /// Folds the bursts of change notices of one copy into one reading.
    QTimer settle;
};

#endif // FIRMWARELOADER_P_H
