#include "groupcontrol.h"

#include "busfactory.h"
#include "buspendingcallwatcher.h"
#include "dtsgroupproxy.h"
#include "vrnbus.h"

#include <functional>

namespace {
// Reserved byte of the movement requests, as every tool sends it.
constexpr unsigned char Reserved = 0xFF;
}

class GroupControlPrivate
{
public:
    GroupControl* q;
    QString lastError;

    bool refuse(const QString& text)
    {
        lastError = text;
        return false;
    }

    /// A move whose function lies in 0..`lastFunction` and value in 16 bits.
    bool move(unsigned int group, int function, int lastFunction, int value,
              const std::function<BusPendingCall(DTSGroupProxy&)>& request)
    {
        if (function < 0 || function > lastFunction || value < 0 || value > 0xFFFF)
            return refuse(GroupControl::tr("Invalid move(%1, %2)").arg(function).arg(value));
        return send(group, request);
    }

    bool send(unsigned int group, const std::function<BusPendingCall(DTSGroupProxy&)>& request,
              bool everyMotor = false)
    {
        if (!GroupControl::isGroupAddress(group) && !(everyMotor && group == VRN::BroadcastNumber))
            return refuse(GroupControl::tr("Invalid group address(%1)").arg(group));
        VRNBus* bus = BusFactory::instance()->bus();
        if (!bus)
            return refuse(GroupControl::tr("Bus not available"));
        DTSGroupProxy proxy(group, bus);
        auto* watcher = new BusPendingCallWatcher(request(proxy), q);
        QObject::connect(watcher, &BusPendingCallWatcher::finished, q, [this, watcher, group] {
            const bool ok = watcher->error() == BusPendingCall::NoError;
            lastError = ok ? QString() : watcher->errorString();
            emit q->sent(group, ok, lastError);
            watcher->deleteLater();
        });
        lastError.clear();
        return true;
    }
};

GroupControl::GroupControl(QObject* parent)
    : QObject(parent)
    , d_ptr(new GroupControlPrivate{this, QString()})
{
}

GroupControl::~GroupControl() = default;

bool GroupControl::isGroupAddress(qint64 group)
{
    return group > 0 && group < qint64(VRN::BroadcastNumber);
}

bool GroupControl::moveTo(unsigned int group, int function, int value)
{
    return d_func()->move(group, function, DTSMotor::MoveToPercent, value, [=](DTSGroupProxy& proxy) {
        return proxy.moveTo(DTSMotor::MoveToFunction(function), quint16(value), Reserved);
    });
}

bool GroupControl::moveOf(unsigned int group, int function, int value)
{
    return d_func()->move(group, function, DTSMotor::MoveOfPulsesUp, value, [=](DTSGroupProxy& proxy) {
        return proxy.moveOf(DTSMotor::MoveOfFunction(function), quint16(value), Reserved);
    });
}

bool GroupControl::stop(unsigned int group)
{
    return d_func()->send(group, [](DTSGroupProxy& proxy) { return proxy.stop(Reserved); });
}

bool GroupControl::stopAll(unsigned int group)
{
    return d_func()->send(group, [](DTSGroupProxy& proxy) { return proxy.stopAll(); }, true);
}

QString GroupControl::lastError() const
{
    return d_func()->lastError;
}
