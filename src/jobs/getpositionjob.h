#ifndef GETPOSITIONJOB_H
#define GETPOSITIONJOB_H

#include "qmljob.h"

/// Reads a motor's position.
class GetPositionJob : public QmlJob
{
    Q_OBJECT

public:
    Q_INVOKABLE explicit GetPositionJob(QObject* parent = nullptr);
    ~GetPositionJob() override;

private:
    Q_DISABLE_COPY(GetPositionJob)
};

#endif // GETPOSITIONJOB_H
