#ifndef GETSPEEDJOB_H
#define GETSPEEDJOB_H

#include "qmljob.h"

/// Reads the rolling speeds of a DC motor.
class GetSpeedJob : public QmlJob
{
    Q_OBJECT

public:
    Q_INVOKABLE explicit GetSpeedJob(QObject* parent = nullptr);
    ~GetSpeedJob() override;

private:
    Q_DISABLE_COPY(GetSpeedJob)
};

#endif // GETSPEEDJOB_H
