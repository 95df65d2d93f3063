#ifndef QMLRUNTIMEDATA_H
#define QMLRUNTIMEDATA_H

#include "runtimedata.h"

#include <QObject>

/// QML view of a `RuntimeData`: 27 dynamic properties, "posPCent",
/// "posPulse", then every field of the network statistics, the network
/// error statistics and the motor diagnostic under its field name
/// ("frameSent", "crcError", "totalMoveCount", ...). 32-bit counters are
/// unsigned integers, the others integers. All exist from construction, null.
class QmlRuntimeData : public QObject
{
    Q_OBJECT

public:
    explicit QmlRuntimeData(QObject* parent = nullptr);
    ~QmlRuntimeData() override;

    /// The property names, in the order they are set.
    static QList<QByteArray> propertyNames();

public slots:
    void update(const RuntimeData& data);
};

#endif // QMLRUNTIMEDATA_H
