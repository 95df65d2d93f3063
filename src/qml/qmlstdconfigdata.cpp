#include "qmlstdconfigdata.h"
#include "qmlproperties_p.h"

QmlStdConfigData::QmlStdConfigData(QObject* parent)
    : QmlConfigData(parent)
{
    QmlProperties::createNull(this, {"networkConfig", "appVersion", "label", "serialNumber"});
}

QmlStdConfigData::~QmlStdConfigData() = default;

void QmlStdConfigData::update(const StdConfigData& data)
{
    const StdConfigDataData& p = data.getConstData();
    QVariantList groups;
    for (VRN::Addr group : p.groups)
        groups.append(uint(group));
    setProperty("firmwareVersion", p.appVersion.toString());
    setProperty("label", p.label);
    setProperty("serialNumber", p.serialNumber);
    setProperty("groups", groups);
    setProperty("groupsCount", QmlProperties::countSet(p.groups, [](VRN::Addr g) { return g; }, VRN::Addr(0)));
}

void QmlStdConfigData::update(const ConfigData& data)
{
    if (StdConfigData::hasLevel(data))
        QmlStdConfigData::update(StdConfigData(data));
    else
        QmlConfigData::update(data);
}
