// Private header, not API: it may change without notice.
#ifndef BUSEVENTS_P_H
#define BUSEVENTS_P_H

#include <QObject>

namespace BusEvents {

/// Runs `fn` once from the event loop, however often it is asked before the
/// loop gets there; `*pending` tells whether a run is waiting. A `context`
/// deleted meanwhile takes the run with it.
template <typename Fn>
void postOnce(QObject* context, bool* pending, Fn fn)
{
    if (*pending)
        return;
    *pending = true;
    QMetaObject::invokeMethod(
        context,
        [pending, fn] {
            *pending = false;
            fn();
        },
        Qt::QueuedConnection);
}

} // namespace BusEvents

#endif // BUSEVENTS_P_H
