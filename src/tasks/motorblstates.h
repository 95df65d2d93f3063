#ifndef MOTORBLSTATES_H
#define MOTORBLSTATES_H

#include <QObject>

/// The steps of an update through the motor bootloader, in their order:
/// enter, erase, write (one write per block, from offset 0 up), verify,
/// exit, then the version read back from the restarted application.
class MotorBLStates
{
    Q_GADGET
public:
    enum State { Enter, Erase, Write, Verify, Exit, ReadVersion };
    Q_ENUM(State)

    /// The step after `state` (ReadVersion stays).
    static State next(State state)
    {
        return state == ReadVersion ? ReadVersion : State(int(state) + 1);
    }
};

#endif // MOTORBLSTATES_H
