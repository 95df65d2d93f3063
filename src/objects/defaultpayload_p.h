// Internal to the device records: not part of the library's API.
#ifndef DEFAULTPAYLOAD_P_H
#define DEFAULTPAYLOAD_P_H

#include "singleton.h"

#include <QSharedDataPointer>

/// The process-wide payload of type `P` that default-constructed records
/// share. The singleton holds one reference for the life of the process, so
/// the instance is never written: the first write to a record detaches it.
template <class P>
P& defaultPayload()
{
    // The singleton creates an empty pointer; it is filled once, under the
    // singleton mutex, inside a thread-safe local static initialisation.
    static P* const payload = [] {
        QSharedDataPointer<P>* shared = Singleton<QSharedDataPointer<P>>::instance();
        SingletonMutex guard;
        if (!shared->constData())
            *shared = new P;
        return const_cast<P*>(shared->constData());
    }();
    return *payload;
}

#endif // DEFAULTPAYLOAD_P_H
