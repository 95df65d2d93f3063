#include "setnetworkstatstask.h"

#include "devicetask_p.h"
#include "dts.h"
#include "setnetworkstatsjob.h"
#include "taskparams_p.h"

#include <QState>

class SetNetworkStatsTaskPrivate : public DeviceTaskPrivate
{
public:
    explicit SetNetworkStatsTaskPrivate(int stats)
        : stats(stats)
    {
    }
    const int stats;
    bool networkRead = false;
    bool errorsRead = false;

    bool wantsNetwork() const { return stats != SetNetworkStatsJob::Errors; }
    bool wantsErrors() const { return stats != SetNetworkStatsJob::Network; }
};

SetNetworkStatsTask::SetNetworkStatsTask(Worker&, QObject* object, const Job& job, QObject* parent)
    : ObjectTask(object, job, parent,
                 new SetNetworkStatsTaskPrivate(TaskParams::toInt(job, "stats", "SetNetworkStatsTask")))
{
    buildMachine();
}

SetNetworkStatsTask::SetNetworkStatsTask(int stats, QObject* object, QObject* parent)
    : ObjectTask(QStringLiteral("SetNetworkStatsJob"), object, parent, new SetNetworkStatsTaskPrivate(stats))
{
    buildMachine();
}

SetNetworkStatsTask::~SetNetworkStatsTask() = default;

void SetNetworkStatsTask::buildMachine()
{
    QState* choose = addStep(&SetNetworkStatsTask::resetNetwork);
    QState* network = addStep(&SetNetworkStatsTask::resetNetworkStats);
    QState* errors = addStep(&SetNetworkStatsTask::resetErrorStats);
    QState* all = addStep(&SetNetworkStatsTask::resetAllStats);
    QState* guard = addStep(&SetNetworkStatsTask::guardUpdate);
    QState* readNetwork = addStep(&SetNetworkStatsTask::updateNetworkStats);
    QState* readErrors = addStep(&SetNetworkStatsTask::updateErrorStats);
    QAbstractState* done = addEnd(&SetNetworkStatsTask::end);

    choose->addTransition(this, &SetNetworkStatsTask::resetNetworkSignal, network);
    choose->addTransition(this, &SetNetworkStatsTask::resetErrorsSignal, errors);
    choose->addTransition(this, &SetNetworkStatsTask::resetAllSignal, all);
    for (QState* resetState : {network, errors, all, readNetwork, readErrors})
        leaveOnReply(resetState, guard);
    guard->addTransition(this, &SetNetworkStatsTask::updateNetworkSignal, readNetwork);
    guard->addTransition(this, &SetNetworkStatsTask::updateErrorsSignal, readErrors);
    guard->addTransition(this, &SetNetworkStatsTask::doneSignal, done);
}

void SetNetworkStatsTask::resetNetwork()
{
    Q_D(SetNetworkStatsTask);
    // The first state: the object is checked here, before any request.
    if (!checkObject())
        return;
    switch (d->stats) {
    case SetNetworkStatsJob::Network: Q_EMIT resetNetworkSignal(); break;
    case SetNetworkStatsJob::Errors: Q_EMIT resetErrorsSignal(); break;
    case SetNetworkStatsJob::All: Q_EMIT resetAllSignal(); break;
    default: fail(tr("Internal error(unknown statistics %1)").arg(d->stats)); break;
    }
}

void SetNetworkStatsTask::resetNetworkStats() { reset(SetNetworkStatsJob::Network); }
void SetNetworkStatsTask::resetErrorStats() { reset(SetNetworkStatsJob::Errors); }
void SetNetworkStatsTask::resetAllStats() { reset(SetNetworkStatsJob::All); }

void SetNetworkStatsTask::reset(unsigned char counters)
{
    if (checkObject())
        sendStep(node()->setNetworkStat(counters, 0), DTS::Ack, [this](const BusMessage& m) {
            return node()->isAck(m);
        });
}

void SetNetworkStatsTask::guardUpdate()
{
    Q_D(SetNetworkStatsTask);
    if (d->wantsNetwork() && !d->networkRead)
        Q_EMIT updateNetworkSignal();
    else if (d->wantsErrors() && !d->errorsRead)
        Q_EMIT updateErrorsSignal();
    else
        Q_EMIT doneSignal();
}

template <class Stat>
void SetNetworkStatsTask::readBack(const BusPendingCall& call, quint8 expected,
                                   bool (DTSStdProxy::*parse)(const BusMessage&, Stat&) const,
                                   Stat RuntimeDataData::*field, bool& read)
{
    sendStep(call, expected, [this, parse, field, &read](const BusMessage& m) {
        RuntimeData runtime = object()->proxyRuntime();
        if (!(node()->*parse)(m, runtime.data().*field))
            return false;
        object()->updateProxyRuntime(runtime);
        return read = true;
    });
}

void SetNetworkStatsTask::updateNetworkStats()
{
    Q_D(SetNetworkStatsTask);
    if (checkObject())
        readBack(node()->getNetworkStat(), DTS::PostNetworkStat, &DTSStdProxy::getNetworkStatReply,
                 &RuntimeDataData::networkStat, d->networkRead);
}

void SetNetworkStatsTask::updateErrorStats()
{
    Q_D(SetNetworkStatsTask);
    if (checkObject())
        readBack(node()->getNetworkErrorStat(), DTS::PostNetworkErrorStat, &DTSStdProxy::getNetworkErrorStatReply,
                 &RuntimeDataData::networkErrorStat, d->errorsRead);
}

void SetNetworkStatsTask::end()
{
    finish();
}
