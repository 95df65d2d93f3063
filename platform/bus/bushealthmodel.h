#ifndef BUSHEALTHMODEL_H
#define BUSHEALTHMODEL_H

#include <QAbstractTableModel>
#include <QScopedPointer>

#include <functional>

class BusHealthModelPrivate;

/// How each node of a bus fares: requests sent to it, replies received,
/// retransmissions, timeouts, invalid frames seen from it, and the median and
/// 95th percentile of its response time (over its last 256 replies).
///
/// One row per node, sorted by `sort()` (by default worst first: the share of
/// tries that went wrong, then the slowest). Counts arrive as frames pass;
/// the rows change from the event loop at most every `UpdateMs`, a batch at a
/// time, so a busy line costs the library next to nothing per frame. `Bus::health()` gives the model of a bus,
/// counted while the bus is open; a monitor may keep one of its own and feed
/// it through the `record...()` functions.
///
///     view.model = bus.health   // QML: roles node, requests, replies, ...
class BusHealthModel : public QAbstractTableModel
{
    Q_OBJECT
    Q_PROPERTY(int count READ rowCount NOTIFY countChanged)
public:
    enum Column {
        NodeColumn,
        RequestsColumn,
        RepliesColumn,
        RetransmissionsColumn,
        TimeoutsColumn,
        InvalidColumn,
        MedianColumn,
        P95Column,
        ScoreColumn,
        ColumnCount
    };
    Q_ENUM(Column)
    /// Roles for views without columns (QML); `roleNames()` gives their names.
    enum Role {
        NodeRole = Qt::UserRole + 1,  ///< "node": the node as text
        NodeIdRole,                   ///< "nodeId": the node's key
        RequestsRole,                 ///< "requests"
        RepliesRole,                  ///< "replies"
        RetransmissionsRole,          ///< "retransmissions"
        TimeoutsRole,                 ///< "timeouts"
        InvalidRole,                  ///< "invalidFrames"
        MedianRole,                   ///< "medianMs", -1 without replies
        P95Role,                      ///< "p95Ms", -1 without replies
        ScoreRole                     ///< "score": share of tries gone wrong, 0..1
    };
    Q_ENUM(Role)

    enum : int { UpdateMs = 250 };

    explicit BusHealthModel(QObject* parent = nullptr);
    ~BusHealthModel() override;

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    QHash<int, QByteArray> roleNames() const override;
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

    /// The row of `node`, -1 when it has none.
    Q_INVOKABLE int rowOf(qint64 node) const;
    /// One row's figures by role name, for scripts and the command line.
    Q_INVOKABLE QVariantMap get(int row) const;

    /// How a node is named in the "node" column; asked once per node. The
    /// number in decimal by default.
    void setNodeNames(const std::function<QString(qint64)>& name);

    void recordRequest(qint64 node);
    void recordReply(qint64 node, int responseMs);
    void recordRetransmission(qint64 node);
    void recordTimeout(qint64 node);
    void recordInvalid(qint64 node);
    /// Forgets every row.
    Q_INVOKABLE void clear();
    /// Applies the counts recorded so far at once, without waiting for the
    /// event loop.
    Q_INVOKABLE void flush();

signals:
    void countChanged();

private:
    QScopedPointer<BusHealthModelPrivate> d_ptr;
    Q_DECLARE_PRIVATE(BusHealthModel)
};

#endif // BUSHEALTHMODEL_H
