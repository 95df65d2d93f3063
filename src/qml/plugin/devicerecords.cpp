#include "devicerecords.h"

#include "qmldcmotorconfigdata.h"
#include "qmlmotorconfigdata.h"
#include "qmlruntimedata.h"
#include "vrnobject.h"

#include <QPointer>

namespace {

/// The wrapper's dynamic properties that hold a value, into a map; byte
/// strings as text. A null property is left out (undefined in QML), so a
/// deeper wrapper's unset fields never hide a shallower one's values.
void copyProperties(const QObject& wrapper, QVariantMap& into)
{
    for (const QByteArray& name : wrapper.dynamicPropertyNames()) {
        QVariant value = wrapper.property(name.constData());
        if (value.userType() == QMetaType::Nullptr || !value.isValid())
            continue;
        if (value.userType() == QMetaType::QByteArray) {
            const QByteArray bytes = value.toByteArray();
            if (bytes.isNull()) // not known; empty is a known, empty text
                continue;
            value = QString::fromUtf8(bytes);
        }
        into.insert(QString::fromLatin1(name), value);
    }
}

QVariantMap configMap(const ConfigData& record)
{
    // The motor wrapper fills the motor and standard fields, the DC wrapper
    // only its own: together they cover every level a record can have.
    QmlMotorConfigData motor;
    motor.update(record);
    QmlDCMotorConfigData dc;
    dc.update(record);
    QVariantMap map;
    copyProperties(motor, map);
    if (DCMotorConfigData::hasLevel(record))
        copyProperties(dc, map);
    return map;
}

} // namespace

class DeviceRecordsPrivate
{
public:
    QPointer<VRNObject> device;
    QVariantMap local;
    QVariantMap proxy;
    QVariantMap runtime;
};

DeviceRecords::DeviceRecords(QObject* parent)
    : QObject(parent)
    , d_ptr(new DeviceRecordsPrivate)
{
}

DeviceRecords::~DeviceRecords() = default;

QObject* DeviceRecords::device() const
{
    Q_D(const DeviceRecords);
    return d->device.data();
}

void DeviceRecords::setDevice(QObject* device)
{
    Q_D(DeviceRecords);
    VRNObject* object = qobject_cast<VRNObject*>(device);
    if (object == d->device)
        return;
    if (d->device)
        disconnect(d->device, nullptr, this, nullptr);
    d->device = object;
    if (object) {
        const auto refresh = [this] { update(); };
        connect(object, &VRNObject::localConfigChanged, this, refresh);
        connect(object, &VRNObject::proxyConfigChanged, this, refresh);
        connect(object, &VRNObject::proxyRuntimeChanged, this, refresh);
        connect(object, &VRNObject::dirtyChanged, this, refresh);
        connect(object, &VRNObject::syncChanged, this, refresh);
        connect(object, &QObject::destroyed, this, refresh);
    }
    update();
    emit deviceChanged();
}

void DeviceRecords::update()
{
    Q_D(DeviceRecords);
    d->local.clear();
    d->proxy.clear();
    d->runtime.clear();
    if (d->device) {
        d->local = configMap(d->device->localConfig());
        d->proxy = configMap(d->device->proxyConfig());
        QmlRuntimeData runtime;
        runtime.update(d->device->proxyRuntime());
        copyProperties(runtime, d->runtime);
    }
    emit recordsChanged();
}

QVariantMap DeviceRecords::local() const
{
    Q_D(const DeviceRecords);
    return d->local;
}

QVariantMap DeviceRecords::proxy() const
{
    Q_D(const DeviceRecords);
    return d->proxy;
}

QVariantMap DeviceRecords::runtime() const
{
    Q_D(const DeviceRecords);
    return d->runtime;
}

bool DeviceRecords::isDirty() const
{
    Q_D(const DeviceRecords);
    return d->device && d->device->isDirty();
}

bool DeviceRecords::isSynced() const
{
    Q_D(const DeviceRecords);
    return d->device && d->device->isSynced();
}
