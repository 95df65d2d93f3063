#ifndef GETLABELJOB_H
#define GETLABELJOB_H

#include "qmljob.h"

/// Reads a device's label.
class GetLabelJob : public QmlJob
{
    Q_OBJECT

public:
    Q_INVOKABLE explicit GetLabelJob(QObject* parent = nullptr);
    ~GetLabelJob() override;

private:
    Q_DISABLE_COPY(GetLabelJob)
};

#endif // GETLABELJOB_H
