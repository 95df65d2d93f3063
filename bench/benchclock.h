#ifndef BENCHCLOCK_H
#define BENCHCLOCK_H

#include <sys/resource.h>

// CPU time (user and system) this process has used, in seconds.
inline double cpuSeconds()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    auto seconds = [](const timeval& t) { return double(t.tv_sec) + double(t.tv_usec) / 1e6; };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

#endif // BENCHCLOCK_H
