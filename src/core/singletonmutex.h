#ifndef SINGLETONMUTEX_H
#define SINGLETONMUTEX_H

#include <QMutex>

/// Scoped guard on the one recursive mutex taken while a process-wide
/// singleton is created or destroyed.
class SingletonMutex
{
public:
    SingletonMutex() { m_lock.lock(); }
    ~SingletonMutex() { m_lock.unlock(); }
    SingletonMutex(const SingletonMutex&) = delete;
    SingletonMutex& operator=(const SingletonMutex&) = delete;

private:
    static QRecursiveMutex m_lock;
};

#endif // SINGLETONMUTEX_H
