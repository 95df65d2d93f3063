#ifndef SINGLETON_H
#define SINGLETON_H

#include "singletonmutex.h"

#include <atomic>

/// A lazily created process-wide instance of `T`.
///
/// `instance()` reads the pointer without locking and only takes the
/// singleton mutex to create it (tested again under the lock); `destroy()`
/// deletes it under the lock, and a later `instance()` creates a fresh one.
///
///     class PubSettings : public Settings {};
///     Settings* s = Singleton<PubSettings>::instance();
template <typename T>
class Singleton
{
public:
    static T* instance()
    {
        T* p = s_instance.load(std::memory_order_acquire);
        if (p)
            return p;
        SingletonMutex guard;
        p = s_instance.load(std::memory_order_relaxed);
        if (!p) {
            p = new T();
            s_instance.store(p, std::memory_order_release);
        }
        return p;
    }

    static void destroy()
    {
        SingletonMutex guard;
        T* p = s_instance.exchange(nullptr);
        delete p;
    }

    /// The instance if it exists; never creates it.
    static T* existing() { return s_instance.load(std::memory_order_acquire); }

private:
    static std::atomic<T*> s_instance;
};

template <typename T>
std::atomic<T*> Singleton<T>::s_instance{nullptr};

#endif // SINGLETON_H
