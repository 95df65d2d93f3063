#ifndef SETGROUPTASK_H
#define SETGROUPTASK_H

#include "writetask.h"

class SetGroupTaskPrivate;

/// Writes one group slot of the node. It has no job of its own: `SetGroupsTask`
/// builds one per slot. On the acknowledgement the slot's entry of the local
/// group list takes the address when the list has that slot; a list that is
/// shorter (no group read yet) is left as it is rather than padded with
/// guessed slots.
class SetGroupTask : public WriteTask<StdConfigData>
{
    Q_OBJECT

public:
    SetGroupTask(int index, unsigned int addr, QObject* object, QObject* parent = nullptr);
    ~SetGroupTask() override;

protected:
    BusPendingCall request(DTSStdProxy& node) override;
    bool apply(StdConfigData& local) const override;

private:
    Q_DECLARE_PRIVATE(SetGroupTask)
};

#endif // SETGROUPTASK_H
