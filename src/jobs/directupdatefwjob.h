#ifndef DIRECTUPDATEFWJOB_H
#define DIRECTUPDATEFWJOB_H

#include "firmwarejob.h"

/// Updates a device's firmware through its bootloader: recovers a device stuck in it after a power loss, or forces an update.
class DirectUpdateFwJob : public FirmwareJob
{
    Q_OBJECT

public:
    Q_INVOKABLE explicit DirectUpdateFwJob(QObject* parent = nullptr);
    ~DirectUpdateFwJob() override;

private:
    Q_DISABLE_COPY(DirectUpdateFwJob)
};

#endif // DIRECTUPDATEFWJOB_H
