// Not part of the library's API: private part of ObjectFactory.
#ifndef OBJECTFACTORY_P_H
#define OBJECTFACTORY_P_H

#include "objectfactory.h"
#include "objectregistry.h"

#include <QCache>
#include <QPointer>
#include <QSqlError>
#include <QVector>
#include <QHash>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QWeakPointer>

class VRNObjectWorker;

// The device objects reach the factory through ObjectRegistry, which the
// private part installs for the factory's lifetime.
class ObjectFactoryPrivate : public ObjectRegistry
{
    Q_DECLARE_PUBLIC(ObjectFactory)
public:
    explicit ObjectFactoryPrivate(ObjectFactory* q);
    ~ObjectFactoryPrivate() override;

    bool saveObject(VRNObject* object) override;
    void objectWorkerDestroyed(VRNObjectWorker* worker) override { onObjectWorkerDestroyed(worker); }
    bool groupSlotsKnown(VRNObject* object, const QList<unsigned int>& groupSlots, QString* error) override;
    /// Column 0 of every row of `statement` run with `value` bound, as numbers.
    QList<unsigned int> numbers(const QString& statement, const QVariant& value = QVariant());

    void init();
    /// Creates the schema on `db` and prepares the statements run per device.
    void prepare();
    void keepDeviceCount(QSqlQuery& query);
    /// Runs `query` (its prepared statement, or `statement`), trying again
    /// while another process holds the registry, up to the busy timeout. A
    /// failure is recorded (`lastError`, `writeFailed`) with its reason.
    bool write(QSqlQuery& query, const QString& statement = QString());
    /// Starts a transaction that holds the write lock from its first
    /// statement on (`own` true), or joins the caller's running one; false
    /// when the registry cannot be written now (the failure is recorded).
    bool beginWrite(bool* own);
    bool endWrite(bool commit);
    void noteFailure(const QSqlError& error);
    /// Builds the object of the current row of `query` and caches it.
    QSharedPointer<VRNObject> object(VRNObject::UUID uuid, const QSqlQuery& query);
    QList<unsigned> loadDeviceGroups(VRNObject::UUID uuid);
    void onObjectWorkerDestroyed(VRNObjectWorker* worker);
    /// Whether a row has the node id (a NULL node id counting as 0) and,
    /// when `type` is not negative, that type; `uuid` receives the first
    /// such row's uuid.
    bool nodeListed(unsigned nodeID, int type, VRNObject::UUID* uuid = nullptr);

    ObjectFactory* q_ptr;
    QSqlDatabase db;
    QCache<VRNObject::UUID, QSharedPointer<VRNObject>> cache;
    QHash<VRNObject::UUID, QWeakPointer<VRNObjectWorker>> workers;
    // Prepared once: these run for every device created or read.
    QSqlQuery selectRow;
    QSqlQuery insertRow;
    /// Node look-ups, prepared once per shape of statement (with or without
    /// a type, NULL or not).
    QHash<QString, QSqlQuery> nodeQueries;
    QString path;
    bool readOnly = false;
    QString lastError;
    /// Every object built on this registry that may still live: a switch of
    /// registry detaches them from the bus.
    QVector<QPointer<VRNObject>> built;
    /// Counts the switches of registry; objects carry the one they were built in.
    int generation = 0;
};

/// The database's reason for a failed statement, in the words a user reads.
QString registryErrorText(const QSqlError& error);
/// Whether the statement failed because another process holds the registry.
bool registryBusy(const QSqlError& error);

#endif // OBJECTFACTORY_P_H
