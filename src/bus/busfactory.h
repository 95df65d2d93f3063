#ifndef BUSFACTORY_H
#define BUSFACTORY_H

#include "qmlobjectworker.h"
#include "vrnbus.h"
#include "vrnlistenerviewmodel.h"

#include <QHostAddress>
#include <QObject>
#include <QScopedPointer>
#include <QString>

class BusFactoryPrivate;

/// The owner of the one open connection to the device network.
///
/// Opens a serial bus by port name or a multicast bus by group, port and
/// bind address, and names each by an identifier that opens it again:
/// "serial:" and the port name in upper case, or "mcast:GROUP:PORT:BIND"
/// (BIND empty for the null address). The identifier of the bus opened last
/// is kept in the settings under "lastBusUUID"; `close()` forgets it.
/// Opening another bus replaces and deletes the previous one; a failed open
/// keeps it. The worker `busWorker` runs jobs against the current bus and the
/// listener shows its traffic.
///
///     BusFactory* f = BusFactory::instance();
///     if (!f->openUUID(f->lastBusUUID())) f->openMCast("239.255.1.2:5000", "127.0.0.1");
class BusFactory : public QObject
{
    Q_OBJECT
    Q_PROPERTY(VRNBus* bus READ bus NOTIFY busChanged)
    Q_PROPERTY(QmlObjectWorker* busWorker READ busWorker CONSTANT)
    Q_PROPERTY(VRNListenerViewModel* listener READ busListener NOTIFY busListenerChanged)
    Q_PROPERTY(QString lastError READ lastError NOTIFY error)
    Q_PROPERTY(QString busUUID READ busUUID NOTIFY busUUIDChanged)
public:
    ~BusFactory() override;

    /// The process-wide instance, created on first use.
    static BusFactory* instance();
    /// Deletes the instance and the bus it holds.
    static void destroy();

    VRNBus* bus() const;
    QmlObjectWorker* busWorker() const;
    /// The traffic listener over the current bus, created on first use.
    VRNListenerViewModel* busListener();
    /// The last error; a later success does not clear it.
    QString lastError() const;
    /// Identifier of the open bus; empty when none.
    QString busUUID() const;
    /// Identifier stored by the last open or close, in this or an earlier run.
    QString lastBusUUID() const;

    /// Opens a multicast bus; a null `bindAddress` stays on the loopback interface.
    bool openMCast(const QHostAddress& group, quint16 port, const QHostAddress& bindAddress);

    static bool isSerialUUID(const QString& uuid);
    /// "mcast:" and exactly three ':' in all, so IPv6 addresses never qualify.
    static bool isMCastUUID(const QString& uuid);
    static bool parseSerialUUID(const QString& uuid, QString& name);
    /// Reads "host:port" as `openMCast(mcastUri, ...)` does: false, and the
    /// outputs untouched, without a host or a port. The host is not checked
    /// to be an address.
    static bool parseMCastUri(const QString& mcastUri, QString& host, quint16& port);
    static bool parseMCastUUID(const QString& uuid, QHostAddress& group, quint16& port,
                               QHostAddress& bindAddress);

    Q_INVOKABLE bool openSerial(const QString& name);
    /// `mcastUri` is "host:port"; an empty `bindAddress` means the null address.
    Q_INVOKABLE bool openMCast(const QString& mcastUri, const QString& bindAddress);
    Q_INVOKABLE bool openMCast(const QString& mcastUri);
    /// Opens the bus an identifier names; false without an error for a text
    /// that is no identifier.
    Q_INVOKABLE bool openUUID(const QString& uuid);
    Q_INVOKABLE void close();
    Q_INVOKABLE static QString generateSerialUUID(const QString& name);
    Q_INVOKABLE static QString generateMCastUUID(const QHostAddress& group, quint16 port,
                                                 const QHostAddress& bindAddress);

signals:
    void busChanged(VRNBus* bus);
    void busUUIDChanged(const QString& uuid);
    void error(const QString& error);
    void busListenerChanged();

protected:
    BusFactory();
    QScopedPointer<BusFactoryPrivate> d_ptr;

private:
    Q_DECLARE_PRIVATE(BusFactory)
};

#endif // BUSFACTORY_H
