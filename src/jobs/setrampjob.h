#ifndef SETRAMPJOB_H
#define SETRAMPJOB_H

#include "qmljob.h"

#include <QScopedPointer>

class SetRampJobPrivate;

/// Sets the soft start and soft stop of a DC motor.
/// Every parameter is a plain integer, as QML sets it.
class SetRampJob : public QmlJob
{
    Q_OBJECT
    Q_PROPERTY(int softStartStatus READ softStartStatus WRITE setSoftStartStatus NOTIFY softStartStatusChanged)
    Q_PROPERTY(int softStartValue READ softStartValue WRITE setSoftStartValue NOTIFY softStartValueChanged)
    Q_PROPERTY(int softStopStatus READ softStopStatus WRITE setSoftStopStatus NOTIFY softStopStatusChanged)
    Q_PROPERTY(int softStopValue READ softStopValue WRITE setSoftStopValue NOTIFY softStopValueChanged)
    Q_PROPERTY(int ramps READ ramps WRITE setRamps NOTIFY rampsChanged)

public:
    Q_INVOKABLE explicit SetRampJob(QObject* parent = nullptr);
    ~SetRampJob() override;

    /// 0 off, other on.
    int softStartStatus() const;
    void setSoftStartStatus(int softStartStatus);
    /// 0..100.
    int softStartValue() const;
    void setSoftStartValue(int softStartValue);
    /// 0 off, other on.
    int softStopStatus() const;
    void setSoftStopStatus(int softStopStatus);
    /// 0..100.
    int softStopValue() const;
    void setSoftStopValue(int softStopValue);
    /// 0: both ramps take the start's status and value; other: each its own.
    int ramps() const;
    void setRamps(int ramps);

Q_SIGNALS:
    void softStartStatusChanged(int softStartStatus);
    void softStartValueChanged(int softStartValue);
    void softStopStatusChanged(int softStopStatus);
    void softStopValueChanged(int softStopValue);
    void rampsChanged(int ramps);

private:
    QScopedPointer<SetRampJobPrivate> d_ptr;
    Q_DECLARE_PRIVATE(SetRampJob)
    Q_DISABLE_COPY(SetRampJob)
};

#endif // SETRAMPJOB_H
