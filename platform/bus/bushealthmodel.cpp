#include "bushealthmodel.h"

#include <QCoreApplication>
#include <QHash>
#include <QTimer>
#include <QVector>

#include <algorithm>

namespace {

constexpr int TimesKept = 256;

struct Row
{
    qint64 node = 0;
    QString name;
    quint64 requests = 0;
    quint64 replies = 0;
    quint64 retransmissions = 0;
    quint64 timeouts = 0;
    quint64 invalid = 0;
    QVector<int> times;  // ring of the last response times, ms
    int nextTime = 0;
    int median = -1;
    int p95 = -1;
    double score = 0;
    bool changed = true;

    void addTime(int ms)
    {
        if (times.size() < TimesKept)
            times.append(ms);
        else
            times[nextTime] = ms;
        nextTime = (nextTime + 1) % TimesKept;
    }
    void summarise()
    {
        // Every try that got no answer, and every frame that made no sense,
        // counts against the node.
        const double tries = double(requests + retransmissions + invalid);
        score = tries > 0 ? double(retransmissions + timeouts + invalid) / tries : 0.0;
        if (times.isEmpty()) {
            median = p95 = -1;
            return;
        }
        QVector<int> sorted = times;
        std::sort(sorted.begin(), sorted.end());
        median = sorted.at((sorted.size() - 1) / 2);
        p95 = sorted.at(qMin(int(sorted.size()) - 1, int(sorted.size() * 0.95)));
    }
    QVariant value(int column) const
    {
        switch (column) {
        case BusHealthModel::NodeColumn: return name;
        case BusHealthModel::RequestsColumn: return requests;
        case BusHealthModel::RepliesColumn: return replies;
        case BusHealthModel::RetransmissionsColumn: return retransmissions;
        case BusHealthModel::TimeoutsColumn: return timeouts;
        case BusHealthModel::InvalidColumn: return invalid;
        case BusHealthModel::MedianColumn: return median;
        case BusHealthModel::P95Column: return p95;
        case BusHealthModel::ScoreColumn: return score;
        default: return QVariant();
        }
    }
};

bool lessBy(int column, const Row& a, const Row& b)
{
    switch (column) {
    case BusHealthModel::NodeColumn: return a.node < b.node;
    case BusHealthModel::ScoreColumn:
        // Equal shares: the slower node is the worse one.
        if (a.score != b.score)
            return a.score < b.score;
        return a.p95 != b.p95 ? a.p95 < b.p95 : a.node > b.node;
    default: {
        const QVariant va = a.value(column), vb = b.value(column);
        if (va != vb)
            return va.toDouble() < vb.toDouble();
        return a.node > b.node;
    }
    }
}

} // namespace

class BusHealthModelPrivate
{
public:
    Row& row(qint64 node);

    BusHealthModel* q = nullptr;
    QVector<Row> rows;
    QHash<qint64, int> rowByNode;
    QVector<Row> fresh;  // nodes seen since the last flush
    QHash<qint64, int> freshByNode;
    int sortColumn = BusHealthModel::ScoreColumn;
    Qt::SortOrder sortOrder = Qt::DescendingOrder;
    QTimer update;
    std::function<QString(qint64)> name = [](qint64 node) { return QString::number(node); };
    bool dirty = false;
};

Row& BusHealthModelPrivate::row(qint64 node)
{
    if (!update.isActive())
        update.start();
    dirty = true;
    auto it = rowByNode.constFind(node);
    if (it != rowByNode.constEnd()) {
        rows[*it].changed = true;
        return rows[*it];
    }
    auto f = freshByNode.constFind(node);
    if (f != freshByNode.constEnd())
        return fresh[*f];
    freshByNode.insert(node, fresh.size());
    fresh.append(Row());
    fresh.last().node = node;
    fresh.last().name = name(node);
    return fresh.last();
}

BusHealthModel::BusHealthModel(QObject* parent)
    : QAbstractTableModel(parent), d_ptr(new BusHealthModelPrivate)
{
    d_ptr->q = this;
    d_ptr->update.setSingleShot(true);
    d_ptr->update.setInterval(UpdateMs);
    connect(&d_ptr->update, &QTimer::timeout, this, &BusHealthModel::flush);
}

BusHealthModel::~BusHealthModel() = default;

int BusHealthModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : d_func()->rows.size();
}

int BusHealthModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant BusHealthModel::data(const QModelIndex& index, int role) const
{
    Q_D(const BusHealthModel);
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return QVariant();
    const Row& r = d->rows.at(index.row());
    if (role == Qt::DisplayRole || role == Qt::EditRole)
        return r.value(index.column());
    if (role == Qt::TextAlignmentRole && index.column() != NodeColumn)
        return int(Qt::AlignRight | Qt::AlignVCenter);
    if (role == NodeIdRole)
        return r.node;
    if (role >= NodeRole && role <= ScoreRole)
        return r.value(role == NodeRole ? NodeColumn : role - RequestsRole + RequestsColumn);
    return QVariant();
}

QVariant BusHealthModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 || section >= ColumnCount)
        return QAbstractTableModel::headerData(section, orientation, role);
    static const char* const titles[] = {
        QT_TRANSLATE_NOOP("BusHealthModel", "Node"),
        QT_TRANSLATE_NOOP("BusHealthModel", "Requests"),
        QT_TRANSLATE_NOOP("BusHealthModel", "Replies"),
        QT_TRANSLATE_NOOP("BusHealthModel", "Retransmissions"),
        QT_TRANSLATE_NOOP("BusHealthModel", "Timeouts"),
        QT_TRANSLATE_NOOP("BusHealthModel", "Invalid"),
        QT_TRANSLATE_NOOP("BusHealthModel", "Median ms"),
        QT_TRANSLATE_NOOP("BusHealthModel", "95% ms"),
        QT_TRANSLATE_NOOP("BusHealthModel", "Errors"),
    };
    return QCoreApplication::translate("BusHealthModel", titles[section]);
}

QHash<int, QByteArray> BusHealthModel::roleNames() const
{
    return {{NodeRole, "node"},
            {NodeIdRole, "nodeId"},
            {RequestsRole, "requests"},
            {RepliesRole, "replies"},
            {RetransmissionsRole, "retransmissions"},
            {TimeoutsRole, "timeouts"},
            {InvalidRole, "invalidFrames"},
            {MedianRole, "medianMs"},
            {P95Role, "p95Ms"},
            {ScoreRole, "score"}};
}

void BusHealthModel::sort(int column, Qt::SortOrder order)
{
    Q_D(BusHealthModel);
    if (column < 0 || column >= ColumnCount)
        return;
    d->sortColumn = column;
    d->sortOrder = order;
    emit layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
    const QModelIndexList before = persistentIndexList();
    QVector<qint64> nodes;
    nodes.reserve(before.size());
    for (const QModelIndex& i : before)
        nodes.append(d->rows.at(i.row()).node);
    std::stable_sort(d->rows.begin(), d->rows.end(), [column, order](const Row& a, const Row& b) {
        return order == Qt::AscendingOrder ? lessBy(column, a, b) : lessBy(column, b, a);
    });
    d->rowByNode.clear();
    for (int i = 0; i < d->rows.size(); ++i)
        d->rowByNode.insert(d->rows.at(i).node, i);
    QModelIndexList after;
    after.reserve(before.size());
    for (int i = 0; i < before.size(); ++i)
        after.append(index(d->rowByNode.value(nodes.at(i)), before.at(i).column()));
    changePersistentIndexList(before, after);
    emit layoutChanged({}, QAbstractItemModel::VerticalSortHint);
}

int BusHealthModel::rowOf(qint64 node) const
{
    return d_func()->rowByNode.value(node, -1);
}

QVariantMap BusHealthModel::get(int row) const
{
    QVariantMap map;
    if (row < 0 || row >= rowCount())
        return map;
    const QHash<int, QByteArray> names = roleNames();
    for (auto it = names.cbegin(); it != names.cend(); ++it)
        map.insert(QString::fromLatin1(it.value()), data(index(row, 0), it.key()));
    return map;
}

void BusHealthModel::recordRequest(qint64 node)
{
    d_func()->row(node).requests++;
}

void BusHealthModel::recordReply(qint64 node, int responseMs)
{
    Row& r = d_func()->row(node);
    r.replies++;
    r.addTime(qMax(0, responseMs));
}

void BusHealthModel::recordRetransmission(qint64 node)
{
    d_func()->row(node).retransmissions++;
}

void BusHealthModel::recordTimeout(qint64 node)
{
    d_func()->row(node).timeouts++;
}

void BusHealthModel::recordInvalid(qint64 node)
{
    d_func()->row(node).invalid++;
}

void BusHealthModel::setNodeNames(const std::function<QString(qint64)>& name)
{
    d_func()->name = name;
}

void BusHealthModel::clear()
{
    Q_D(BusHealthModel);
    const bool had = !d->rows.isEmpty();
    beginResetModel();
    d->rows.clear();
    d->rowByNode.clear();
    d->fresh.clear();
    d->freshByNode.clear();
    d->dirty = false;
    d->update.stop();
    endResetModel();
    if (had)
        emit countChanged();
}

void BusHealthModel::flush()
{
    Q_D(BusHealthModel);
    d->update.stop();
    if (!d->dirty)
        return;
    d->dirty = false;
    if (!d->fresh.isEmpty()) {
        const int first = d->rows.size();
        beginInsertRows(QModelIndex(), first, first + d->fresh.size() - 1);
        for (Row& r : d->fresh) {
            d->rowByNode.insert(r.node, d->rows.size());
            d->rows.append(r);
        }
        d->fresh.clear();
        d->freshByNode.clear();
        endInsertRows();
        emit countChanged();
    }
    for (Row& r : d->rows) {
        if (r.changed)
            r.summarise();
        r.changed = false;
    }
    sort(d->sortColumn, d->sortOrder);
    emit dataChanged(index(0, 0), index(d->rows.size() - 1, ColumnCount - 1));
}
