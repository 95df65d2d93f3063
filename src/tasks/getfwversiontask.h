#ifndef GETFWVERSIONTASK_H
#define GETFWVERSIONTASK_H

#include "readtask.h"

/// Reads the node's application firmware version into the proxy record;
/// seeds the local version. A version that parses but is not valid (a node
/// without application) fails the task.
class GetFwVersionTask : public ReadTask<StdConfigData>
{
    Q_OBJECT

public:
    GetFwVersionTask(Worker& worker, QObject* object, const Job& job, QObject* parent = nullptr);
    explicit GetFwVersionTask(QObject* object, QObject* parent = nullptr);

protected:
    BusPendingCall request(DTSStdProxy& node) override;
    bool parse(const DTSStdProxy& node, const BusMessage& reply, StdConfigData& proxy) override;
    bool isKnown(const StdConfigData& record) const override;
    void seed(const StdConfigData& from, StdConfigData& to) const override;
    quint8 expectedReply() const override;
};

#endif // GETFWVERSIONTASK_H
