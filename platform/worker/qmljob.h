#ifndef QMLJOB_H
#define QMLJOB_H

#include "job.h"

/// The base of the job classes published to QML; their parameters are properties.
class QmlJob : public Job
{
    Q_OBJECT
    Q_PROPERTY(QString name READ name WRITE setName NOTIFY nameChanged)

public:
    Q_INVOKABLE explicit QmlJob(QObject* parent = nullptr);
    ~QmlJob() override;

    void setName(const QString& name);

Q_SIGNALS:
    void nameChanged();

private:
    Q_DISABLE_COPY(QmlJob)
};

#endif // QMLJOB_H
