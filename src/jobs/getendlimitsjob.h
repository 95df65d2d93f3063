#ifndef GETENDLIMITSJOB_H
#define GETENDLIMITSJOB_H

#include "qmljob.h"

/// Reads a motor's end limits.
class GetEndLimitsJob : public QmlJob
{
    Q_OBJECT

public:
    Q_INVOKABLE explicit GetEndLimitsJob(QObject* parent = nullptr);
    ~GetEndLimitsJob() override;

private:
    Q_DISABLE_COPY(GetEndLimitsJob)
};

#endif // GETENDLIMITSJOB_H
