#ifndef WRITETASK_H
#define WRITETASK_H

#include "objecttask.h"
#include "vrnmessage.h"

/// A task that writes to the device and expects an acknowledgement (0x7F).
/// On the acknowledgement `apply()` writes the task's parameters into a copy
/// of the local record, which is stored back; then the task finishes. Any
/// other reply fails with "Unexpected reply(%1)".
template <class Record>
class WriteTask : public ObjectTask<Record>
{
public:
    using typename ObjectTask<Record>::Traits;

protected:
    using ObjectTask<Record>::ObjectTask;

    /// Writes the task's parameters into `local`; false (the default) when
    /// the task leaves the records alone.
    virtual bool apply(Record& local) const { Q_UNUSED(local) return false; }

    void onReply(const VRNMessage& reply) override
    {
        if (!this->acceptAck(reply))
            return;
        auto& object = *this->object();
        Record local = Traits::local(object);
        if (apply(local))
            Traits::setLocal(object, local);
        this->finish();
    }
};

#endif // WRITETASK_H
