#ifndef TX50DCOBJECT_H
#define TX50DCOBJECT_H

#include "vrndcmotorobject.h"

/// The TX50DC DC-motor model: a DC motor with nothing of its own but its class.
class TX50DCObject : public VRNDCMotorObject
{
    Q_OBJECT

public:
    explicit TX50DCObject(const DCMotorConfigData& config = DCMotorConfigData(), QObject* parent = nullptr);
    ~TX50DCObject() override;
};

#endif // TX50DCOBJECT_H
