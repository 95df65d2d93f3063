#ifndef GETSERIALNUMBERJOB_H
#define GETSERIALNUMBERJOB_H

#include "qmljob.h"

/// Reads a device's serial number (into its proxy record; the registry keeps
/// it through `ObjectFactory::setSerialNumber`).
class GetSerialNumberJob : public QmlJob
{
    Q_OBJECT

public:
    Q_INVOKABLE explicit GetSerialNumberJob(QObject* parent = nullptr);
    ~GetSerialNumberJob() override;

private:
    Q_DISABLE_COPY(GetSerialNumberJob)
};

#endif // GETSERIALNUMBERJOB_H
