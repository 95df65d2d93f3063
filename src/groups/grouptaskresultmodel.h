#ifndef GROUPTASKRESULTMODEL_H
#define GROUPTASKRESULTMODEL_H

#include "job.h"

#include <QAbstractListModel>
#include <QScopedPointer>

class GroupTaskResultModelPrivate;
class QmlGroupTaskResult;

/// One result per device of a group task: the state, error, error text and
/// result of the job run on that device, one row per device in the order the
/// devices were first recorded.
///
/// A list model for QML with the roles `uuid`, `state`, `error`,
/// `errorString` and `result` (display: the uuid). Reading a device that has
/// no entry gives Idle, NoError, an empty text and an invalid result; ask
/// `contains()` first.
///
///     ListView { model: groupJob.result; delegate: Text { text: uuid + ": " + errorString } }
class GroupTaskResultModel : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(int count READ count NOTIFY countChanged)

public:
    enum Roles {
        UuidRole = Qt::UserRole + 1,
        StateRole,
        ErrorRole,
        ErrorStringRole,
        ResultRole
    };
    Q_ENUM(Roles)

    explicit GroupTaskResultModel(QObject* parent = nullptr);
    ~GroupTaskResultModel() override;

    /// Stores `job`'s state, error, error text and result for `uuid`.
    void setResult(unsigned int uuid, const Job& job);
    /// Stores a failure (Finished, `Job::TaskFailedError`) with `text`.
    void setErrorResult(unsigned int uuid, const QString& text);

    Q_INVOKABLE bool contains(unsigned int uuid) const;
    /// Number of devices with an entry.
    Q_INVOKABLE int count() const;
    Q_INVOKABLE QVariant result(unsigned int uuid) const;
    Q_INVOKABLE Job::State state(unsigned int uuid) const;
    Q_INVOKABLE Job::Error error(unsigned int uuid) const;
    Q_INVOKABLE QString errorString(unsigned int uuid) const;
    /// The devices with an entry, in row order.
    Q_INVOKABLE QList<unsigned int> uuids() const;
    /// How many entries ended without error, and how many with one (entries
    /// still queued or running count in neither).
    Q_INVOKABLE int okCount() const;
    Q_INVOKABLE int failedCount() const;
    /// One device's entry for QML, owned by `parent`; it follows later
    /// updates of the device.
    Q_INVOKABLE QmlGroupTaskResult* fetch(unsigned int uuid, QObject* parent);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void countChanged(int count);
    /// The entry of `uuid` was added or changed.
    void entryChanged(unsigned int uuid);

private:
    void store(unsigned int uuid, Job::State state, Job::Error error, const QString& text, const QVariant& result);

    QScopedPointer<GroupTaskResultModelPrivate> d_ptr;
    Q_DECLARE_PRIVATE(GroupTaskResultModel)
    Q_DISABLE_COPY(GroupTaskResultModel)
};

#endif // GROUPTASKRESULTMODEL_H
