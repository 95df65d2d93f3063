#include "qmldcmotorconfigdata.h"

#include <QVariant>

QmlDCMotorConfigData::QmlDCMotorConfigData(QObject* parent)
    : QmlMotorConfigData(parent)
{
}

QmlDCMotorConfigData::~QmlDCMotorConfigData() = default;

void QmlDCMotorConfigData::update(const DCMotorConfigData& data)
{
    const DCMotorConfigDataData& p = data.getConstData();
    setProperty("upRollingSpeed", int(p.upRollingSpeed));
    setProperty("downRollingSpeed", int(p.downRollingSpeed));
    setProperty("slowRollingSpeed", int(p.slowRollingSpeed));
    setProperty("softStartValue", int(p.softStartValue));
    setProperty("softStopValue", int(p.softStopValue));
    setProperty("softStartStatus", p.softStartStatus != 0);
    setProperty("softStopStatus", p.softStopStatus != 0);
}

void QmlDCMotorConfigData::update(const MotorConfigData& data)
{
    QmlMotorConfigData::update(data);
}

void QmlDCMotorConfigData::update(const StdConfigData& data)
{
    QmlMotorConfigData::update(data);
}

void QmlDCMotorConfigData::update(const ConfigData& data)
{
    if (DCMotorConfigData::hasLevel(data))
        QmlDCMotorConfigData::update(DCMotorConfigData(data));
    else
        QmlMotorConfigData::update(data);
}
