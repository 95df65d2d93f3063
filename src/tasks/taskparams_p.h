// Internal header of the device tasks, not API: may change without notice.

#ifndef TASKPARAMS_P_H
#define TASKPARAMS_P_H

class Job;

namespace TaskParams {

/// The job's property `name` as an integer. A value that is no number gives
/// 0 and the warning "[<task>]: <name> cannot be converted".
int toInt(const Job& job, const char* name, const char* task);

} // namespace TaskParams

#endif // TASKPARAMS_P_H
