#ifndef GETLABELTASK_H
#define GETLABELTASK_H

#include "readtask.h"

/// Reads the node's label into the proxy record; seeds the local label.
class GetLabelTask : public ReadTask<StdConfigData>
{
    Q_OBJECT

public:
    GetLabelTask(Worker& worker, QObject* object, const Job& job, QObject* parent = nullptr);
    explicit GetLabelTask(QObject* object, QObject* parent = nullptr);

protected:
    BusPendingCall request(DTSStdProxy& node) override;
    bool parse(const DTSStdProxy& node, const BusMessage& reply, StdConfigData& proxy) override;
    bool isKnown(const StdConfigData& record) const override;
    void seed(const StdConfigData& from, StdConfigData& to) const override;
    quint8 expectedReply() const override;
};

#endif // GETLABELTASK_H
