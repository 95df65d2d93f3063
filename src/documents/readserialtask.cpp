#include "readserialtask.h"
#include "readserialjob.h"

#include "dts.h"
#include "jobregistration.h"
#include "objecttaskctorhelper.h"

ReadSerialJob::ReadSerialJob(QObject* parent)
    : QmlJob(parent)
{
}

ReadSerialJob::~ReadSerialJob() = default;

ReadSerialTask::ReadSerialTask(Worker&, QObject* object, const Job& job, QObject* parent)
    : ReadTask(object, job, parent)
{
}

BusPendingCall ReadSerialTask::request(DTSStdProxy& node)
{
    return node.getNodeSerialNumber();
}

bool ReadSerialTask::parse(const DTSStdProxy& node, const BusMessage& reply, StdConfigData& proxy)
{
    return node.getNodeSerialNumberReply(reply, proxy.data().serialNumber);
}

bool ReadSerialTask::isKnown(const StdConfigData& record) const
{
    return record.isSerialValid();
}

void ReadSerialTask::seed(const StdConfigData& from, StdConfigData& to) const
{
    to.data().serialNumber = from.getConstData().serialNumber;
}

quint8 ReadSerialTask::expectedReply() const
{
    return DTS::PostNodeSerialNumber;
}

namespace {

const JobRegistration job(ReadSerialJob::staticMetaObject);
const WorkerRegistration binding = ObjectTaskCtorHelper<ReadSerialTask, VRNStdObject>::bind<ReadSerialJob>();

} // namespace
