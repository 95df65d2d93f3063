#ifndef READTASK_H
#define READTASK_H

#include "objecttask.h"
#include "vrnmessage.h"

/// A task that reads a value from the device into the object's proxy record.
///
/// A reply that `parse()` accepts is written into a copy of the proxy record,
/// which is stored back; then `requestNext()` may send a further request (a
/// list read slot by slot), and when it does not, the seeding rule applies
/// and the task finishes. Seeding: when the proxy's field is now known and the
/// local one is not, the local record receives the value, so the first read
/// fills the editable copy and a later read never overwrites a pending edit.
/// A reply that does not parse fails with "Unexpected reply(%1)".
/// Records without a local copy (`Traits::HasLocal` false: runtime values)
/// are never seeded.
///
/// A list read slot by slot states `slotCount()`, `requestSlot()` and
/// `entries()`: the task asks for slot 0, then each next slot after a reply
/// that parsed. When a slot gets no answer in time the run fails as any read
/// does, with the slots before it kept in the proxy record, and the job
/// remembers the place: its next run on the same node asks for that slot
/// first and appends from there, so a retry costs the slots still missing,
/// not the whole list.
///
///     BusPendingCall request(DTSStdProxy& n) override { return n.getNodeLabel(); }
///     bool parse(const DTSStdProxy& n, const BusMessage& m, StdConfigData& c) override
///     { return n.getNodeLabelReply(m, c.data().label); }
///     bool isKnown(const StdConfigData& c) const override { return c.isLabelValid(); }
///     void seed(const StdConfigData& from, StdConfigData& to) const override
///     { to.data().label = from.getConstData().label; }
template <class Record, class RecordAccess = RecordTraits<Record>>
class ReadTask : public ObjectTask<Record, RecordAccess>
{
public:
    using Base = ObjectTask<Record, RecordAccess>;
    using typename Base::Traits;
    using typename Base::Proxy;

protected:
    using Base::Base;

    /// Reads `reply` into `proxy`, a copy of the proxy record; false when the
    /// reply does not parse. A task that fails for a reason of its own calls
    /// `fail()` first; the generic failure is then not added.
    virtual bool parse(const Proxy& node, const BusMessage& reply, Record& proxy) = 0;
    /// Whether the task's field of `record` is known (records with a local copy).
    virtual bool isKnown(const Record& record) const { Q_UNUSED(record) return false; }
    /// Copies the task's field from `from` into `to` (records with a local copy).
    virtual void seed(const Record& from, Record& to) const { Q_UNUSED(from) Q_UNUSED(to) }
    /// Sends the next request of a multi-step read and returns true; false
    /// when the read is complete. By default the next slot of a list read.
    virtual bool requestNext()
    {
        if (this->slot() + 1 >= slotCount())
            return false;
        this->setSlot(this->slot() + 1);
        this->watch(requestSlot(*this->node(), this->slot()));
        return true;
    }

    /// The slots of a list read; 0 (the default) for a read of one request.
    virtual int slotCount() const { return 0; }
    /// The request for `slot` of a list read.
    virtual BusPendingCall requestSlot(Proxy& node, int slot)
    {
        Q_UNUSED(node) Q_UNUSED(slot)
        return BusPendingCall::fromError(BusPendingCall::OtherError);
    }
    /// The entries of the list that `proxy` holds (list reads).
    virtual int entries(const Record& proxy) const { Q_UNUSED(proxy) return 0; }

    void start() override
    {
        if (slotCount() == 0)
            return Base::start();
        this->setSlot(this->resumeSlot(entries(Traits::proxy(*this->object()))));
        this->watch(requestSlot(*this->node(), this->slot()));
    }

    void onReply(const VRNMessage& reply) override
    {
        auto& object = *this->object();
        Record proxy = Traits::proxy(object);
        if (!parse(*this->node(), reply, proxy)) {
            if (this->isRunning())
                this->failUnexpected(reply);
            return;
        }
        Traits::setProxy(object, proxy);
        if (requestNext())
            return;
        if constexpr (Traits::HasLocal) {
            proxy = Traits::proxy(object);
            Record local = Traits::local(object);
            if (isKnown(proxy) && !isKnown(local)) {
                seed(proxy, local);
                Traits::setLocal(object, local);
            }
        }
        this->finish();
    }
};

#endif // READTASK_H
