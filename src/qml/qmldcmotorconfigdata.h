#ifndef QMLDCMOTORCONFIGDATA_H
#define QMLDCMOTORCONFIGDATA_H

#include "dcmotorconfigdata.h"
#include "qmlmotorconfigdata.h"

/// QML view of a `DCMotorConfigData`.
///
/// `update(DCMotorConfigData)` sets only the DC properties:
/// "upRollingSpeed", "downRollingSpeed", "slowRollingSpeed",
/// "softStartValue", "softStopValue" (integers), "softStartStatus",
/// "softStopStatus" (booleans). Unlike the motor level it does not refresh
/// the shallower properties: give the record to `update(MotorConfigData)`
/// as well to refresh those.
class QmlDCMotorConfigData : public QmlMotorConfigData
{
    Q_OBJECT

public:
    explicit QmlDCMotorConfigData(QObject* parent = nullptr);
    ~QmlDCMotorConfigData() override;

public slots:
    virtual void update(const DCMotorConfigData& data);
    void update(const MotorConfigData& data) override;
    void update(const StdConfigData& data) override;
    void update(const ConfigData& data) override;
};

#endif // QMLDCMOTORCONFIGDATA_H
