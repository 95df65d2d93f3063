#ifndef CHECKFWJOB_H
#define CHECKFWJOB_H

#include "qmljob.h"

/// Checks a device's firmware against the newest package of the catalogue that fits it.
class CheckFwJob : public QmlJob
{
    Q_OBJECT

public:
    Q_INVOKABLE explicit CheckFwJob(QObject* parent = nullptr);
    ~CheckFwJob() override;

private:
    Q_DISABLE_COPY(CheckFwJob)
};

#endif // CHECKFWJOB_H
