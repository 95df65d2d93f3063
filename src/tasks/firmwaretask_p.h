// Internal header of the device tasks, not API: may change without notice.
#ifndef FIRMWARETASK_P_H
#define FIRMWARETASK_P_H

#include "bpkmanifest.h"
#include "devicetask_p.h"
#include "dtsupdateproxy.h"

#include <memory>

class QStateMachine;
class StateRetry;

class FirmwareTaskPrivate : public DeviceTaskPrivate
{
public:
    QString packagePath;
    QString keyFile;
    int maxRetries = 5;
    int retries = 0;
    /// Runs the one `StateRetry` every request of the update is a try of.
    QStateMachine* machine = nullptr;
    StateRetry* retry = nullptr;
    /// The call error of the last failed try; NoError when the device refused.
    BusPendingCall::Error lastCallError = BusPendingCall::NoError;
    int done = 0;
    int total = 0;
    bool readingVersion = false;
    BpkManifest manifest;
    QByteArray image;
    /// Reads the version back; made when the version is read.
    std::unique_ptr<DTSUpdateProxy> versionProxy;
};

#endif // FIRMWARETASK_P_H
