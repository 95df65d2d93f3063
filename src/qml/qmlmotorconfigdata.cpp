#include "qmlmotorconfigdata.h"
#include "qmlproperties_p.h"

using MotorIp = MotorConfigDataData::MotorIp;

QmlMotorConfigData::QmlMotorConfigData(QObject* parent)
    : QmlStdConfigData(parent)
{
    QmlProperties::createNull(this, {"upEndLimit", "downEndLimit"});
}

QmlMotorConfigData::~QmlMotorConfigData() = default;

void QmlMotorConfigData::update(const MotorConfigData& data)
{
    const MotorConfigDataData& p = data.getConstData();
    QVariantList pulses;
    QVariantList pcts;
    for (const MotorIp& ip : p.ips) {
        pulses.append(int(ip.pulse));
        pcts.append(int(ip.pct));
    }
    setProperty("rotDirection", int(p.rotDirection));
    setProperty("upEndLimit", int(p.upEndLimit));
    setProperty("downEndLimit", int(p.downEndLimit));
    setProperty("ipsPulse", pulses);
    setProperty("ipsPct", pcts);
    setProperty("ipsPulseCount",
                QmlProperties::countSet(p.ips, [](const MotorIp& ip) { return ip.pulse; }, MotorIp::UnsetPulse));
    setProperty("ipsPctCount",
                QmlProperties::countSet(p.ips, [](const MotorIp& ip) { return ip.pct; }, MotorIp::UnsetPct));
    QmlStdConfigData::update(static_cast<const StdConfigData&>(data));
}

void QmlMotorConfigData::update(const StdConfigData& data)
{
    QmlStdConfigData::update(data);
}

void QmlMotorConfigData::update(const ConfigData& data)
{
    if (MotorConfigData::hasLevel(data))
        QmlMotorConfigData::update(MotorConfigData(data));
    else
        QmlStdConfigData::update(data);
}
