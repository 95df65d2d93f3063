#ifndef GETGROUPSJOB_H
#define GETGROUPSJOB_H

#include "qmljob.h"

/// Reads a device's 16 group address slots.
class GetGroupsJob : public QmlJob
{
    Q_OBJECT

public:
    Q_INVOKABLE explicit GetGroupsJob(QObject* parent = nullptr);
    ~GetGroupsJob() override;

private:
    Q_DISABLE_COPY(GetGroupsJob)
};

#endif // GETGROUPSJOB_H
