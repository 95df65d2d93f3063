#ifndef GETFWVERSIONJOB_H
#define GETFWVERSIONJOB_H

#include "qmljob.h"

/// Reads a device's application firmware version.
class GetFwVersionJob : public QmlJob
{
    Q_OBJECT

public:
    Q_INVOKABLE explicit GetFwVersionJob(QObject* parent = nullptr);
    ~GetFwVersionJob() override;

private:
    Q_DISABLE_COPY(GetFwVersionJob)
};

#endif // GETFWVERSIONJOB_H
