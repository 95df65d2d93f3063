// Internal header of the device tasks, not API: may change without notice.
#ifndef FIRMWARETASK_P_H
#define FIRMWARETASK_P_H

#include "bpkmanifest.h"
#include "devicetask_p.h"
#include "dtsupdateproxy.h"
#include "motorbl.h"

#include <QElapsedTimer>

#include <memory>

class QStateMachine;
class StateRetry;

class FirmwareTaskPrivate : public DeviceTaskPrivate
{
public:
    /// Who sends the current request: the subclass's protocol, or the task
    /// itself (the versions before and after, the bootloader probe).
    enum Side { Protocol, VersionBefore, VersionAfter, BootloaderProbe };

    QString packagePath;
    bool packageGiven = false;
    QString keyFile;
    bool force = false;
    bool allowDowngrade = false;
    int maxRetries = 5;
    int retries = 0;
    int timeoutsInRow = 0;
    int refusalsInRow = 0;
    Side side = Protocol;
    /// The node waits in its bootloader (a probe or the bootloader said so).
    bool inBootloader = false;
    /// The text the task gives up with once the probe has answered.
    QString probeReason;
    std::unique_ptr<MotorBL> probe;
    QString previous;
    QElapsedTimer clock;
    /// Runs the one `StateRetry` every request of the update is a try of.
    QStateMachine* machine = nullptr;
    StateRetry* retry = nullptr;
    /// The call error of the last failed try; NoError when the device refused.
    BusPendingCall::Error lastCallError = BusPendingCall::NoError;
    int done = 0;
    int total = 0;
    BpkManifest manifest;
    QByteArray image;
    /// Reads the version back; made when the version is read.
    std::unique_ptr<DTSUpdateProxy> versionProxy;
};

#endif // FIRMWARETASK_P_H
