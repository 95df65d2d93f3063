#include "singletonmutex.h"

QMutex SingletonMutex::m_lock(QMutex::Recursive);
