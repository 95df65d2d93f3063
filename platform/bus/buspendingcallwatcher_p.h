// Private header, not API: it may change without notice.
#ifndef BUSPENDINGCALLWATCHER_P_H
#define BUSPENDINGCALLWATCHER_P_H

#include "buspendingcallwatcher.h"

class BusPendingCallWatcherPrivate
{
    Q_DECLARE_PUBLIC(BusPendingCallWatcher)
public:
    explicit BusPendingCallWatcherPrivate(BusPendingCallWatcher* q) : q_ptr(q) {}

    void watch(const BusPendingCall& call);
    void unwatch();
    /// Posts one report to the event loop; the report reads the call's state
    /// when it runs, so a call swapped in meanwhile is reported instead.
    void scheduleReport();
    void report();

    BusPendingCallWatcher* q_ptr;
    BusPendingCall call;
    bool watching = false;
    bool reported = false;
    bool reportScheduled = false;
};

#endif // BUSPENDINGCALLWATCHER_P_H
