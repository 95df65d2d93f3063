#ifndef QMLSTDCONFIGDATA_H
#define QMLSTDCONFIGDATA_H

#include "qmlconfigdata.h"
#include "stdconfigdata.h"

/// QML view of a `StdConfigData`.
///
/// `update(StdConfigData)` sets "firmwareVersion" (string), "label" and
/// "serialNumber" (byte strings), "groups" (every group address as an
/// unsigned integer, empty slots included) and "groupsCount" (the entries
/// that are not 0). "networkConfig", "appVersion", "label" and
/// "serialNumber" exist from construction, null; "networkConfig" and
/// "appVersion" are never set: the version is published as "firmwareVersion".
class QmlStdConfigData : public QmlConfigData
{
    Q_OBJECT

public:
    explicit QmlStdConfigData(QObject* parent = nullptr);
    ~QmlStdConfigData() override;

public slots:
    virtual void update(const StdConfigData& data);
    void update(const ConfigData& data) override;
};

#endif // QMLSTDCONFIGDATA_H
