#include "singletonmutex.h"

QRecursiveMutex SingletonMutex::m_lock;
