#include "qmlruntimedata.h"

#include <QVariant>

namespace {

struct Field
{
    const char* name;
    QVariant (*read)(const RuntimeDataData&);
};

// The one list of published runtime fields.
#define VRN_INT(name, expr) {name, [](const RuntimeDataData& p) { return QVariant(int(p.expr)); }}
#define VRN_UINT(name, expr) {name, [](const RuntimeDataData& p) { return QVariant(uint(p.expr)); }}
const Field s_fields[] = {
    VRN_INT("posPCent", posPCent),
    VRN_INT("posPulse", posPulse),
    VRN_INT("maxRetryCount", networkStat.maxRetryCount),
    VRN_UINT("frameSent", networkStat.frameSent),
    VRN_UINT("frameSeen", networkStat.frameSeen),
    VRN_UINT("frameReceived", networkStat.frameReceived),
    VRN_INT("busyCount", networkStat.busyCount),
    VRN_INT("maxSlot", networkStat.maxSlot),
    VRN_INT("supervisionFailure", networkStat.supervisionFailure),
    VRN_INT("txFailures", networkErrorStat.txFailures),
    VRN_INT("collisions", networkErrorStat.collisions),
    VRN_INT("rxDataError", networkErrorStat.rxDataError),
    VRN_INT("unknownMessage", networkErrorStat.unknownMessage),
    VRN_INT("msgLengthError", networkErrorStat.msgLengthError),
    VRN_INT("rxFifoFull", networkErrorStat.rxFifoFull),
    VRN_INT("txFifoFull", networkErrorStat.txFifoFull),
    VRN_INT("crcError", networkErrorStat.crcError),
    VRN_INT("bundleSizeError", networkErrorStat.bundleSizeError),
    VRN_UINT("totalMoveCount", motorDiagnostic.totalMoveCount),
    VRN_UINT("totalRevCount", motorDiagnostic.totalRevCount),
    VRN_INT("thermalCount", motorDiagnostic.thermalCount),
    VRN_INT("postThermalMove", motorDiagnostic.postThermalMove),
    VRN_INT("obstacleCount", motorDiagnostic.obstacleCount),
    VRN_INT("postObstacleMove", motorDiagnostic.postObstacleMove),
    VRN_INT("powerCount", motorDiagnostic.powerCount),
    VRN_INT("resetCount", motorDiagnostic.resetCount),
    VRN_INT("encoderErrCount", motorDiagnostic.encoderErrCount),
};
#undef VRN_INT
#undef VRN_UINT

} // namespace

QmlRuntimeData::QmlRuntimeData(QObject* parent)
    : QObject(parent)
{
    for (const Field& f : s_fields)
        setProperty(f.name, QVariant::fromValue(nullptr));
}

QmlRuntimeData::~QmlRuntimeData() = default;

QList<QByteArray> QmlRuntimeData::propertyNames()
{
    QList<QByteArray> names;
    for (const Field& f : s_fields)
        names.append(f.name);
    return names;
}

void QmlRuntimeData::update(const RuntimeData& data)
{
    for (const Field& f : s_fields)
        setProperty(f.name, f.read(data.getConstData()));
}
