#ifndef GETRAMPJOB_H
#define GETRAMPJOB_H

#include "qmljob.h"

/// Reads the soft start and soft stop of a DC motor.
class GetRampJob : public QmlJob
{
    Q_OBJECT

public:
    Q_INVOKABLE explicit GetRampJob(QObject* parent = nullptr);
    ~GetRampJob() override;

private:
    Q_DISABLE_COPY(GetRampJob)
};

#endif // GETRAMPJOB_H
