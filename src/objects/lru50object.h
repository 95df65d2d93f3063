#ifndef LRU50OBJECT_H
#define LRU50OBJECT_H

#include "vrnmotorobject.h"

/// The LRU50 motor model: a motor with nothing of its own but its class.
class LRU50Object : public VRNMotorObject
{
    Q_OBJECT

public:
    explicit LRU50Object(const MotorConfigData& config = MotorConfigData(), QObject* parent = nullptr);
    ~LRU50Object() override;
};

#endif // LRU50OBJECT_H
