#ifndef READSERIALTASK_H
#define READSERIALTASK_H

#include "readtask.h"

/// Reads the node's serial number into the proxy record; seeds the local one.
class ReadSerialTask : public ReadTask<StdConfigData>
{
    Q_OBJECT

public:
    ReadSerialTask(Worker& worker, QObject* object, const Job& job, QObject* parent = nullptr);

protected:
    BusPendingCall request(DTSStdProxy& node) override;
    bool parse(const DTSStdProxy& node, const BusMessage& reply, StdConfigData& proxy) override;
    bool isKnown(const StdConfigData& record) const override;
    void seed(const StdConfigData& from, StdConfigData& to) const override;
    quint8 expectedReply() const override;
};

#endif // READSERIALTASK_H
