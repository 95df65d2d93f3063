#ifndef TX30OBJECT_H
#define TX30OBJECT_H

#include "vrndcmotorobject.h"

/// The TX30 model: a DC motor (deliberately not a plain motor) with nothing of its own but its class.
class TX30Object : public VRNDCMotorObject
{
    Q_OBJECT

public:
    explicit TX30Object(const DCMotorConfigData& config = DCMotorConfigData(), QObject* parent = nullptr);
    ~TX30Object() override;
};

#endif // TX30OBJECT_H
