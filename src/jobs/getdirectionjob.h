#ifndef GETDIRECTIONJOB_H
#define GETDIRECTIONJOB_H

#include "qmljob.h"

/// Reads a motor's turning direction.
class GetDirectionJob : public QmlJob
{
    Q_OBJECT

public:
    Q_INVOKABLE explicit GetDirectionJob(QObject* parent = nullptr);
    ~GetDirectionJob() override;

private:
    Q_DISABLE_COPY(GetDirectionJob)
};

#endif // GETDIRECTIONJOB_H
