#ifndef GROUPFACTORY_H
#define GROUPFACTORY_H

#include <QList>
#include <QObject>
#include <QScopedPointer>
#include <QSharedPointer>
#include <QVariantList>

class GroupFactoryPrivate;
class GroupWorker;
class ObjectSelectionModel;

/// The process-wide maker of group workers, reachable from QML.
///
/// Group workers are cached by their device list (looked up by its hash,
/// the order of the list counting): asking twice for the same list gives
/// the same worker, so jobs queued on a selection run one after another.
/// The factory owns the workers it hands out; it keeps the most recently
/// used 32 that are idle, and never lets go of a worker while jobs are
/// queued on it or running. A list with a device twice keeps the first.
///
///     GroupWorker* group = GroupFactory::instance()->selectionWorkerQml(selectionModel);
///     group->enqueue(new GetLabelJob(this));
class GroupFactory : public QObject
{
    Q_OBJECT
    /// Group workers held at the moment.
    Q_PROPERTY(int cachedCount READ cachedCount)

public:
    static GroupFactory* instance();
    /// Deletes the instance and every worker it holds.
    static void destroy();
    ~GroupFactory() override;

    /// The group worker of `uuids`, made on first use.
    QSharedPointer<GroupWorker> groupWorker(const QList<unsigned int>& uuids);
    /// The group worker of the devices selected in `selection`; null for none.
    QSharedPointer<GroupWorker> groupWorker(const ObjectSelectionModel* selection);

    /// From QML: a list of uuids (numbers); owned by the factory.
    Q_INVOKABLE GroupWorker* groupWorkerQml(const QVariantList& uuids);
    /// From QML: the selected devices of `selection`; owned by the factory.
    Q_INVOKABLE GroupWorker* selectionWorkerQml(ObjectSelectionModel* selection);
    /// Lets go of every idle worker.
    Q_INVOKABLE void clear();

    int cachedCount() const;
    /// The hash a device list is cached under.
    static uint hashOf(const QList<unsigned int>& uuids);

protected:
    GroupFactory();

private:
    QScopedPointer<GroupFactoryPrivate> d_ptr;
    Q_DECLARE_PRIVATE(GroupFactory)
    Q_DISABLE_COPY(GroupFactory)
};

#endif // GROUPFACTORY_H
