#include "qmlconfigdata.h"

QmlConfigData::QmlConfigData(QObject* parent)
    : QObject(parent)
{
}

QmlConfigData::~QmlConfigData() = default;

void QmlConfigData::update(const ConfigData&)
{
}
