#ifndef SETLABELTASK_H
#define SETLABELTASK_H

#include "writetask.h"

class SetLabelTaskPrivate;

/// Writes a label to the node (job property "label"); on the
/// acknowledgement the local record takes it.
class SetLabelTask : public WriteTask<StdConfigData>
{
    Q_OBJECT

public:
    SetLabelTask(Worker& worker, QObject* object, const Job& job, QObject* parent = nullptr);
    SetLabelTask(const QByteArray& label, QObject* object, QObject* parent = nullptr);
    ~SetLabelTask() override;

protected:
    BusPendingCall request(DTSStdProxy& node) override;
    bool apply(StdConfigData& local) const override;

private:
    Q_DECLARE_PRIVATE(SetLabelTask)
};

#endif // SETLABELTASK_H
