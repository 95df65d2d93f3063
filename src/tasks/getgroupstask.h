#ifndef GETGROUPSTASK_H
#define GETGROUPSTASK_H

#include "readtask.h"

/// Reads the node's 16 group slots, index 0 first, one request each. Every
/// reply that parses is appended to the proxy's list and stored at once
/// (the request for slot 0 starts a new list),
/// so a failure part-way keeps the slots read before it; after the 16th the
/// local group list is seeded and the slots go to the device registry, which
/// keeps the device's group membership. A retry of the job after a slot
/// got no answer continues at that slot.
class GetGroupsTask : public ReadTask<StdConfigData>
{
    Q_OBJECT

public:
    GetGroupsTask(Worker& worker, QObject* object, const Job& job, QObject* parent = nullptr);
    explicit GetGroupsTask(QObject* object, QObject* parent = nullptr);
    ~GetGroupsTask() override;

protected:
    int slotCount() const override;
    BusPendingCall requestSlot(DTSStdProxy& node, int slot) override;
    int entries(const StdConfigData& proxy) const override;
    /// Appends the address of any group reply, whatever slot it names.
    bool parse(const DTSStdProxy& node, const BusMessage& reply, StdConfigData& proxy) override;
    bool isKnown(const StdConfigData& record) const override;
    void seed(const StdConfigData& from, StdConfigData& to) const override;
    bool requestNext() override;
    quint8 expectedReply() const override;
};

#endif // GETGROUPSTASK_H
