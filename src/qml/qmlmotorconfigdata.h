#ifndef QMLMOTORCONFIGDATA_H
#define QMLMOTORCONFIGDATA_H

#include "motorconfigdata.h"
#include "qmlstdconfigdata.h"

/// QML view of a `MotorConfigData`.
///
/// `update(MotorConfigData)` sets "rotDirection", "upEndLimit",
/// "downEndLimit" (integers), "ipsPulse" and "ipsPct" (every slot's value),
/// "ipsPulseCount" and "ipsPctCount" (the slots that are set), then
/// refreshes the standard properties from the same record.
/// "upEndLimit" and "downEndLimit" exist from construction, null.
class QmlMotorConfigData : public QmlStdConfigData
{
    Q_OBJECT

public:
    explicit QmlMotorConfigData(QObject* parent = nullptr);
    ~QmlMotorConfigData() override;

public slots:
    virtual void update(const MotorConfigData& data);
    void update(const StdConfigData& data) override;
    void update(const ConfigData& data) override;
};

#endif // QMLMOTORCONFIGDATA_H
