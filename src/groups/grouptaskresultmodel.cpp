#include "grouptaskresultmodel.h"
#include "grouptaskresultmodel_p.h"

#include "qmlgrouptaskresult.h"

GroupTaskResultModel::GroupTaskResultModel(QObject* parent)
    : QAbstractListModel(parent)
    , d_ptr(new GroupTaskResultModelPrivate)
{
}

GroupTaskResultModel::~GroupTaskResultModel() = default;

void GroupTaskResultModel::setResult(unsigned int uuid, const Job& job)
{
    store(uuid, job.state(), job.error(), job.errorString(), job.result());
}

void GroupTaskResultModel::setErrorResult(unsigned int uuid, const QString& text)
{
    store(uuid, Job::Finished, Job::TaskFailedError, text, QVariant());
}

void GroupTaskResultModel::store(unsigned int uuid, Job::State state, Job::Error error, const QString& text,
                                 const QVariant& result)
{
    Q_D(GroupTaskResultModel);
    const auto it = d->rows.constFind(uuid);
    if (it != d->rows.constEnd()) {
        GroupTaskResultModelPrivate::Entry& entry = d->entries[*it];
        entry.state = state;
        entry.error = error;
        entry.errorString = text;
        entry.result = result;
        const QModelIndex changed = index(*it);
        emit dataChanged(changed, changed);
    } else {
        const int row = d->entries.size();
        beginInsertRows(QModelIndex(), row, row);
        d->entries.append({uuid, state, error, text, result});
        d->rows.insert(uuid, row);
        endInsertRows();
        emit countChanged(row + 1);
    }
    emit entryChanged(uuid);
}

bool GroupTaskResultModel::contains(unsigned int uuid) const
{
    return d_func()->rows.contains(uuid);
}

int GroupTaskResultModel::count() const
{
    return d_func()->entries.size();
}

QVariant GroupTaskResultModel::result(unsigned int uuid) const
{
    const auto* entry = d_func()->find(uuid);
    return entry ? entry->result : QVariant();
}

Job::State GroupTaskResultModel::state(unsigned int uuid) const
{
    const auto* entry = d_func()->find(uuid);
    return entry ? entry->state : Job::Idle;
}

Job::Error GroupTaskResultModel::error(unsigned int uuid) const
{
    const auto* entry = d_func()->find(uuid);
    return entry ? entry->error : Job::NoError;
}

QString GroupTaskResultModel::errorString(unsigned int uuid) const
{
    const auto* entry = d_func()->find(uuid);
    return entry ? entry->errorString : QString();
}

QList<unsigned int> GroupTaskResultModel::uuids() const
{
    QList<unsigned int> out;
    for (const auto& entry : d_func()->entries)
        out.append(entry.uuid);
    return out;
}

int GroupTaskResultModel::okCount() const
{
    int n = 0;
    for (const auto& entry : d_func()->entries)
        n += entry.state == Job::Finished && entry.error == Job::NoError;
    return n;
}

int GroupTaskResultModel::failedCount() const
{
    int n = 0;
    for (const auto& entry : d_func()->entries)
        n += entry.error != Job::NoError;
    return n;
}

QmlGroupTaskResult* GroupTaskResultModel::fetch(unsigned int uuid, QObject* parent)
{
    return new QmlGroupTaskResult(this, uuid, parent);
}

int GroupTaskResultModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : d_func()->entries.size();
}

QVariant GroupTaskResultModel::data(const QModelIndex& index, int role) const
{
    Q_D(const GroupTaskResultModel);
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return QVariant();
    const auto& entry = d->entries.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
    case UuidRole:
        return entry.uuid;
    case StateRole:
        return int(entry.state);
    case ErrorRole:
        return int(entry.error);
    case ErrorStringRole:
        return entry.errorString;
    case ResultRole:
        return entry.result;
    default:
        return QVariant();
    }
}

QHash<int, QByteArray> GroupTaskResultModel::roleNames() const
{
    return {{UuidRole, "uuid"},
            {StateRole, "state"},
            {ErrorRole, "error"},
            {ErrorStringRole, "errorString"},
            {ResultRole, "result"}};
}
