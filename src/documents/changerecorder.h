#ifndef CHANGERECORDER_H
#define CHANGERECORDER_H

/// Appends every write a device job makes, whoever queued it, to the change
/// log (`ChangeLog`): the field (a JSON pointer as in a network document),
/// the value the device last reported, the value written, and how the write
/// ended. It watches the tasks every device worker makes
/// (`VRNObjectWorker::setTaskObserver`); reads are not recorded.
///
///     ChangeRecorder::install(); // once, at start-up, in each tool
class ChangeRecorder
{
public:
    /// Starts recording; calling it again does nothing.
    static void install();
};

#endif // CHANGERECORDER_H
