#include "groupfactory.h"

#include "groupworker.h"
#include "objectselectionmodel.h"
#include "singleton.h"
#include "workqueue.h"

#include <QHash>
#include <QQmlEngine>

#include <algorithm>

namespace {
class PubGroupFactory : public GroupFactory
{
public:
    PubGroupFactory() = default;
};

constexpr int IdleKept = 32;

bool busy(const GroupWorker& worker)
{
    return worker.queue()->currentJob() || worker.queue()->count() > 0;
}
} // namespace

class GroupFactoryPrivate
{
public:
    struct Entry {
        QList<unsigned int> uuids;
        QSharedPointer<GroupWorker> worker;
        quint64 lastUse = 0;
    };

    /// Drops the least recently used idle workers beyond the bound.
    void trim()
    {
        QVector<Entry*> idle;
        for (auto it = entries.begin(); it != entries.end(); ++it) {
            if (!busy(*it->worker))
                idle.append(&*it);
        }
        if (idle.size() <= IdleKept)
            return;
        std::sort(idle.begin(), idle.end(), [](const Entry* a, const Entry* b) { return a->lastUse < b->lastUse; });
        QList<QSharedPointer<GroupWorker>> dropped;
        for (int i = 0; i < idle.size() - IdleKept; ++i)
            dropped.append(idle.at(i)->worker);
        for (auto it = entries.begin(); it != entries.end();) {
            if (dropped.contains(it->worker))
                it = entries.erase(it);
            else
                ++it;
        }
    }

    QMultiHash<uint, Entry> entries;
    quint64 clock = 0;
    int nextNumber = 1;
};

GroupFactory::GroupFactory()
    : d_ptr(new GroupFactoryPrivate)
{
}

GroupFactory::~GroupFactory() = default;

GroupFactory* GroupFactory::instance()
{
    return Singleton<PubGroupFactory>::instance();
}

void GroupFactory::destroy()
{
    Singleton<PubGroupFactory>::destroy();
}

uint GroupFactory::hashOf(const QList<unsigned int>& uuids)
{
    return qHash(uuids);
}

QSharedPointer<GroupWorker> GroupFactory::groupWorker(const QList<unsigned int>& uuids)
{
    Q_D(GroupFactory);
    QList<unsigned int> list;
    list.reserve(uuids.size());
    for (unsigned int uuid : uuids) {
        if (!list.contains(uuid))
            list.append(uuid);
    }
    const uint hash = hashOf(list);
    for (auto it = d->entries.find(hash); it != d->entries.end() && it.key() == hash; ++it) {
        if (it->uuids == list) {
            it->lastUse = ++d->clock;
            return it->worker;
        }
    }
    QSharedPointer<GroupWorker> worker(new GroupWorker(list, d->nextNumber++));
    d->entries.insert(hash, {list, worker, ++d->clock});
    d->trim();
    return worker;
}

QSharedPointer<GroupWorker> GroupFactory::groupWorker(const ObjectSelectionModel* selection)
{
    return selection ? groupWorker(selection->toList()) : QSharedPointer<GroupWorker>();
}

namespace {
// QML would otherwise take a parentless object returned to it as its own.
GroupWorker* keptByFactory(const QSharedPointer<GroupWorker>& worker)
{
    if (worker)
        QQmlEngine::setObjectOwnership(worker.data(), QQmlEngine::CppOwnership);
    return worker.data();
}
} // namespace

GroupWorker* GroupFactory::groupWorkerQml(const QVariantList& uuids)
{
    QList<unsigned int> list;
    for (const QVariant& v : uuids) {
        bool ok = false;
        const unsigned int uuid = v.toUInt(&ok);
        if (ok)
            list.append(uuid);
    }
    return keptByFactory(groupWorker(list));
}

GroupWorker* GroupFactory::selectionWorkerQml(ObjectSelectionModel* selection)
{
    return keptByFactory(groupWorker(selection));
}

void GroupFactory::clear()
{
    Q_D(GroupFactory);
    for (auto it = d->entries.begin(); it != d->entries.end();) {
        if (busy(*it->worker))
            ++it;
        else
            it = d->entries.erase(it);
    }
}

int GroupFactory::cachedCount() const
{
    return d_func()->entries.size();
}
