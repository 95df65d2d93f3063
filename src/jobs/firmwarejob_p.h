// Internal header of the job classes, not API: may change without notice.
#ifndef FIRMWAREJOB_P_H
#define FIRMWAREJOB_P_H

#include <QString>

class FirmwareJobPrivate
{
public:
    QString package;
    QString keyFile;
    int retries = 5;
    bool force = false;
    bool allowDowngrade = false;
};

#endif // FIRMWAREJOB_P_H
