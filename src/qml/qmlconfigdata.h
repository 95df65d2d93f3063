#ifndef QMLCONFIGDATA_H
#define QMLCONFIGDATA_H

#include "configdata.h"

#include <QObject>

/// Root of the QML wrappers of the configuration records: QML reads a
/// record through the wrapper's dynamic properties, refreshed by `update`.
///
/// Every wrapper's `update(ConfigData)` looks at the record's level: a
/// record that has the wrapper's level goes to the wrapper's own-level
/// `update`, any other is handed to the base class's `update(ConfigData)`.
/// At this root level it does nothing.
class QmlConfigData : public QObject
{
    Q_OBJECT

public:
    explicit QmlConfigData(QObject* parent = nullptr);
    ~QmlConfigData() override;

public slots:
    virtual void update(const ConfigData& data);
};

#endif // QMLCONFIGDATA_H
