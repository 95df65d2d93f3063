#include "busfactory.h"
#include "busfactory_p.h"

#include "pubbusfactory.h"
#include "settings.h"
#include "singleton.h"
#include "vrnmcastbus.h"

#include <QDebug>
#include <QSerialPort>
#include <QUrl>

namespace {
const char LastBusKey[] = "lastBusUUID";
const QLatin1String SerialPrefix("serial:");
const QLatin1String MCastPrefix("mcast:");
}

BusFactoryPrivate::BusFactoryPrivate(BusFactory* owner)
    : q_ptr(owner), worker(new QmlObjectWorker(nullptr, owner))
{
}

template <typename UuidOf>
bool BusFactoryPrivate::openBus(VRNBus* newBus, UuidOf uuidOf)
{
    // How often a lost request is sent again: the setting "busRepeats" (0..5).
    bool ok = false;
    const int repeats = Settings::instance()->value(QStringLiteral("busRepeats"), newBus->repeats()).toInt(&ok);
    if (ok)
        newBus->setRepeats(repeats);
    if (!newBus->open()) {
        setError(newBus->errorString());
        delete newBus;
        return false;
    }
    return setBus(newBus, uuidOf(newBus));
}

bool BusFactoryPrivate::setBus(VRNBus* newBus, const QString& uuid)
{
    Q_Q(BusFactory);
    if (newBus == bus)
        return true;
    VRNBus* previous = bus;
    bus = newBus;
    worker->setObject(newBus);
    if (listener)
        listener->setBus(newBus);
    busUUID = uuid;
    Settings::instance()->setValue(QLatin1String(LastBusKey), uuid);
    emit q->busChanged(newBus);
    emit q->busUUIDChanged(uuid);
    // Receivers of busChanged have moved off the old bus by now.
    delete previous;
    return true;
}

void BusFactoryPrivate::setError(const QString& text)
{
    Q_Q(BusFactory);
    lastError = text;
    qDebug() << "[BusFactory]: error" << text;
    emit q->error(text);
}

BusFactory::BusFactory()
    : d_ptr(new BusFactoryPrivate(this))
{
}

BusFactory::~BusFactory()
{
    Q_D(BusFactory);
    // Jobs and the listener let go of the bus before it goes.
    d->worker->setObject(nullptr);
    if (d->listener)
        d->listener->setBus(nullptr);
    delete d->bus;
}

BusFactory* BusFactory::instance()
{
    return Singleton<PubBusFactory>::instance();
}

void BusFactory::destroy()
{
    Singleton<PubBusFactory>::destroy();
}

VRNBus* BusFactory::bus() const
{
    Q_D(const BusFactory);
    return d->bus;
}

QmlObjectWorker* BusFactory::busWorker() const
{
    Q_D(const BusFactory);
    return d->worker;
}

VRNListenerViewModel* BusFactory::busListener()
{
    Q_D(BusFactory);
    if (!d->listener) {
        auto* model = new VRNListenerModel(nullptr, this);
        d->listener = new VRNListenerViewModel(model, this);
        d->listener->setBus(d->bus);
    }
    return d->listener;
}

QString BusFactory::lastError() const
{
    Q_D(const BusFactory);
    return d->lastError;
}

QString BusFactory::busUUID() const
{
    Q_D(const BusFactory);
    return d->busUUID;
}

QString BusFactory::lastBusUUID() const
{
    return Settings::instance()->value(QLatin1String(LastBusKey), QString()).toString();
}

bool BusFactory::openSerial(const QString& name)
{
    Q_D(BusFactory);
    return d->openBus(new VRNBus(name), [&name](VRNBus* bus) {
        // The port's own name, so that the identifier does not depend on how
        // the caller happened to spell it.
        const auto* port = qobject_cast<QSerialPort*>(bus->ioDevice());
        return generateSerialUUID(port ? port->portName() : name);
    });
}

bool BusFactory::openMCast(const QHostAddress& group, quint16 port, const QHostAddress& bindAddress)
{
    Q_D(BusFactory);
    return d->openBus(new VRNMCastBus(group, port, bindAddress), [&](VRNBus*) {
        return generateMCastUUID(group, port, bindAddress);
    });
}

bool BusFactory::openMCast(const QString& mcastUri, const QString& bindAddress)
{
    Q_D(BusFactory);
    QString host;
    quint16 port = 0;
    if (!parseMCastUri(mcastUri, host, port)) {
        d->setError(tr("Failed to parse MultiCast URI: %1").arg(mcastUri));
        return false;
    }
    QHostAddress bind;
    if (!bindAddress.isEmpty()) {
        bind = QHostAddress(bindAddress);
        if (bind.isNull()) {
            d->setError(tr("Failed to parse MultiCast bind address: %1").arg(bindAddress));
            return false;
        }
    }
    return openMCast(QHostAddress(host), port, bind);
}

bool BusFactory::openMCast(const QString& mcastUri)
{
    return openMCast(mcastUri, QString());
}

bool BusFactory::openUUID(const QString& uuid)
{
    QString name;
    if (parseSerialUUID(uuid, name))
        return openSerial(name);
    QHostAddress group;
    QHostAddress bind;
    quint16 port = 0;
    if (parseMCastUUID(uuid, group, port, bind))
        return openMCast(group, port, bind);
    return false;
}

void BusFactory::close()
{
    Q_D(BusFactory);
    d->setBus(nullptr, QString());
}

QString BusFactory::generateSerialUUID(const QString& name)
{
    return SerialPrefix + name.toUpper();
}

QString BusFactory::generateMCastUUID(const QHostAddress& group, quint16 port,
                                      const QHostAddress& bindAddress)
{
    return QStringLiteral("mcast:%1:%2:%3").arg(group.toString()).arg(port).arg(bindAddress.toString());
}

bool BusFactory::isSerialUUID(const QString& uuid)
{
    return uuid.startsWith(SerialPrefix, Qt::CaseSensitive);
}

bool BusFactory::isMCastUUID(const QString& uuid)
{
    return uuid.startsWith(MCastPrefix, Qt::CaseSensitive) && uuid.count(QLatin1Char(':')) == 3;
}

bool BusFactory::parseSerialUUID(const QString& uuid, QString& name)
{
    if (!isSerialUUID(uuid))
        return false;
    name = uuid.mid(SerialPrefix.size());
    return true;
}

bool BusFactory::parseMCastUri(const QString& mcastUri, QString& host, quint16& port)
{
    const QUrl url(QStringLiteral("vrn://") + mcastUri);
    const QString h = url.host(QUrl::FullyDecoded);
    if (!url.isValid() || h.isEmpty() || url.port() < 0)
        return false;
    host = h;
    port = quint16(url.port());
    return true;
}

bool BusFactory::parseMCastUUID(const QString& uuid, QHostAddress& group, quint16& port,
                                QHostAddress& bindAddress)
{
    if (!isMCastUUID(uuid))
        return false;
    const QStringList parts = uuid.mid(MCastPrefix.size()).split(QLatin1Char(':'), Qt::KeepEmptyParts);
    group = QHostAddress(parts.at(0));
    port = quint16(parts.at(1).toInt(nullptr, 10));
    bindAddress = QHostAddress(parts.at(2));
    return true;
}
