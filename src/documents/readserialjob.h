#ifndef READSERIALJOB_H
#define READSERIALJOB_H

#include "qmljob.h"

/// Reads a device's serial number into its proxy record (used by the
/// configuration backup; bound to `ReadSerialTask` for every network node).
class ReadSerialJob : public QmlJob
{
    Q_OBJECT

public:
    Q_INVOKABLE explicit ReadSerialJob(QObject* parent = nullptr);
    ~ReadSerialJob() override;

private:
    Q_DISABLE_COPY(ReadSerialJob)
};

#endif // READSERIALJOB_H
