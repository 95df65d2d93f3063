#ifndef GETMOTORIPSJOB_H
#define GETMOTORIPSJOB_H

#include "qmljob.h"

/// Reads a motor's 16 intermediate positions.
class GetMotorIpsJob : public QmlJob
{
    Q_OBJECT

public:
    Q_INVOKABLE explicit GetMotorIpsJob(QObject* parent = nullptr);
    ~GetMotorIpsJob() override;

private:
    Q_DISABLE_COPY(GetMotorIpsJob)
};

#endif // GETMOTORIPSJOB_H
