// Internal to VRNObjectWorker: not part of the library's API.
#ifndef VRNOBJECTWORKER_P_H
#define VRNOBJECTWORKER_P_H

#include "vrnobject.h"

#include <QSharedPointer>

class VRNObjectWorkerPrivate
{
public:
    QSharedPointer<VRNObject> object;
};

#endif // VRNOBJECTWORKER_P_H
