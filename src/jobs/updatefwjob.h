#ifndef UPDATEFWJOB_H
#define UPDATEFWJOB_H

#include "firmwarejob.h"

/// Updates a device's firmware through its application (the standard update): package, key file and retries as `FirmwareJob` says.
class UpdateFwJob : public FirmwareJob
{
    Q_OBJECT

public:
    Q_INVOKABLE explicit UpdateFwJob(QObject* parent = nullptr);
    ~UpdateFwJob() override;

private:
    Q_DISABLE_COPY(UpdateFwJob)
};

#endif // UPDATEFWJOB_H
