#ifndef MOTORDIAGNOSTIC_H
#define MOTORDIAGNOSTIC_H

#include "vrnvalue.h"

#include <QMetaType>
#include <QtGlobal>
#include <tuple>

/// Life counters of a motor, as its diagnostic requests report them
/// (`DTSMotorProxy::diagGet...`). A default value has every counter at 0.
class MotorDiagnostic : public VRNValue<MotorDiagnostic>
{
public:
    quint32 totalMoveCount = 0;
    quint32 totalRevCount = 0;
    quint16 thermalCount = 0;
    quint16 postThermalMove = 0;   ///< moves since the last thermal protection
    quint16 obstacleCount = 0;
    quint16 postObstacleMove = 0;  ///< moves since the last obstacle
    quint16 powerCount = 0;        ///< power cuts
    quint16 resetCount = 0;
    quint16 encoderErrCount = 0;

private:
    friend class VRNValue<MotorDiagnostic>;
    auto fields() const
    {
        return std::tie(totalMoveCount, totalRevCount, thermalCount, postThermalMove, obstacleCount,
                        postObstacleMove, powerCount, resetCount, encoderErrCount);
    }
};

Q_DECLARE_METATYPE(MotorDiagnostic)

#endif // MOTORDIAGNOSTIC_H
