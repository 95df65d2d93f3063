// Not part of the library's API: private part of ObjectFactory.
#ifndef OBJECTFACTORY_P_H
#define OBJECTFACTORY_P_H

#include "objectfactory.h"
#include "objectregistry.h"

#include <QCache>
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
    void groupSlotsKnown(VRNObject* object, const QList<unsigned int>& groupSlots) override;
    /// Column 0 of every row of `statement` run with `value` bound, as numbers.
    QList<unsigned int> numbers(const QString& statement, const QVariant& value = QVariant());

    void init();
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
};

#endif // OBJECTFACTORY_P_H
