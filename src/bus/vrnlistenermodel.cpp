#include "vrnlistenermodel.h"
#include "vrnlistenermodel_p.h"

#include "dts.h"
#include "vrnmessage.h"

#include <QDateTime>

namespace {
QString hexAddr(quint32 value, int digits)
{
    return QStringLiteral("0x") + QString::number(value, 16).rightJustified(digits, QLatin1Char('0')).toUpper();
}

QString destinationText(quint32 number, quint8 type)
{
    switch (type) {
    case VRN::AddrBroadcast:
        return QStringLiteral("all");
    case VRN::AddrGroup:
        return QStringLiteral("group ") + hexAddr(number, 6);
    default:
        return hexAddr(number, 6);
    }
}

QString commandName(quint8 cmd)
{
    const VRNCmdInfo info = DTS::cmdInfo(cmd);
    return info.isValid() ? info.name() : hexAddr(cmd, 2);
}
}

VRNListenerModelPrivate::Frame VRNListenerModelPrivate::decode(VRNListenerModel::Direction direction,
                                                               const BusMessage& message)
{
    Frame f;
    f.msecs = QDateTime::currentMSecsSinceEpoch();
    f.timeOfDay = localTimeOfDay(f.msecs);
    f.direction = quint8(direction);
    const VRNMessage m(message);
    f.valid = m.isValid();
    if (!f.valid) {
        f.bytes = message.data();
        return f;
    }
    f.bytes = m.payload();
    f.src = m.srcAddr();
    f.dst = m.dstAddr();
    f.dstType = m.dstType();
    f.cmd = m.cmd();
    return f;
}

QVariant VRNListenerModelPrivate::display(const Frame& f, int column) const
{
    switch (column) {
    case VRNListenerModel::TimeColumn:
        return QString::asprintf("%02d:%02d:%02d.%03d", f.timeOfDay / 3600000, f.timeOfDay / 60000 % 60,
                                 f.timeOfDay / 1000 % 60, f.timeOfDay % 1000);
    case VRNListenerModel::DirectionColumn:
        return f.direction == VRNListenerModel::Sent ? QStringLiteral("sent") : QStringLiteral("received");
    case VRNListenerModel::SourceColumn:
        return f.valid ? hexAddr(f.src, 8) : QString();
    case VRNListenerModel::DestinationColumn:
        return f.valid ? destinationText(f.dst, f.dstType) : QString();
    case VRNListenerModel::CommandColumn:
        return f.valid ? commandName(f.cmd) : QString();
    case VRNListenerModel::PayloadColumn:
        return QString::fromLatin1(f.bytes.toHex(' ')).toUpper();
    case VRNListenerModel::ValidColumn:
        return !f.valid ? QStringLiteral("invalid") : f.unmatched ? QStringLiteral("unmatched") : QStringLiteral("valid");
    default:
        return QVariant();
    }
}

QVariant VRNListenerModelPrivate::roleData(const Frame& f, int role) const
{
    switch (role) {
    case VRNListenerModel::TimeRole:
        return QDateTime::fromMSecsSinceEpoch(f.msecs);
    case VRNListenerModel::DirectionRole:
        return int(f.direction);
    case VRNListenerModel::CommandNameRole:
        return display(f, VRNListenerModel::CommandColumn);
    case VRNListenerModel::PayloadRole:
        return display(f, VRNListenerModel::PayloadColumn);
    case VRNListenerModel::ValidRole:
        return f.valid;
    case VRNListenerModel::UnmatchedRole:
        return f.unmatched;
    default:
        break;
    }
    if (!f.valid)
        return QVariant();
    switch (role) {
    case VRNListenerModel::SourceRole:
        return f.src;
    case VRNListenerModel::DestinationRole:
        return f.dst;
    case VRNListenerModel::DestinationTypeRole:
        return int(f.dstType);
    case VRNListenerModel::CommandRole:
        return int(f.cmd);
    default:
        return QVariant();
    }
}

int VRNListenerModelPrivate::localTimeOfDay(qint64 msecs)
{
    const qint64 day = 24 * 3600 * 1000;
    if (offsetCheckedAt == 0 || msecs < offsetCheckedAt || msecs - offsetCheckedAt >= 60 * 1000) {
        utcOffsetMs = qint64(QDateTime::fromMSecsSinceEpoch(msecs).offsetFromUtc()) * 1000;
        offsetCheckedAt = msecs;
    }
    return int((((msecs + utcOffsetMs) % day) + day) % day);
}

void VRNListenerModelPrivate::trimTo(int max)
{
    const int excess = int(frames.size()) - max;
    if (excess <= 0)
        return;
    q_ptr->beginRemoveRows(QModelIndex(), 0, excess - 1);
    frames.erase(frames.begin(), frames.begin() + excess);
    q_ptr->endRemoveRows();
}

VRNListenerModel::VRNListenerModel(VRNBus* bus, QObject* parent)
    : VRNListenerModel(*new VRNListenerModelPrivate, bus, parent)
{
}

VRNListenerModel::VRNListenerModel(VRNListenerModelPrivate& dd, VRNBus* bus, QObject* parent)
    : QAbstractTableModel(parent), d_ptr(&dd)
{
    d_ptr->q_ptr = this;
    setBus(bus);
}

VRNListenerModel::~VRNListenerModel() = default;

VRNBus* VRNListenerModel::bus() const
{
    Q_D(const VRNListenerModel);
    return d->bus;
}

void VRNListenerModel::setBus(VRNBus* bus)
{
    Q_D(VRNListenerModel);
    if (d->bus == bus)
        return;
    if (d->bus)
        disconnect(d->bus, nullptr, this, nullptr);
    d->bus = bus;
    if (bus) {
        connect(bus, &Bus::messageSent, this,
                [this](const BusMessage& m) { addFrame(Sent, m); });
        connect(bus, &Bus::messageReceived, this,
                [this](const BusMessage& m) { addFrame(Received, m); });
        // Reported right after the frame's messageReceived: it is the last row.
        connect(bus, &Bus::messageUnmatched, this, [this] {
            Q_D(VRNListenerModel);
            if (d->frames.empty() || !d->frames.back().valid || d->frames.back().direction != Received)
                return;
            d->frames.back().unmatched = true;
            const int row = count() - 1;
            emit dataChanged(index(row, 0), index(row, ColumnCount - 1));
        });
    }
    emit busChanged(bus);
}

int VRNListenerModel::maxFrames() const
{
    Q_D(const VRNListenerModel);
    return d->maxFrames;
}

void VRNListenerModel::setMaxFrames(int max)
{
    Q_D(VRNListenerModel);
    max = qMax(1, max);
    if (max == d->maxFrames)
        return;
    d->maxFrames = max;
    const int before = count();
    d->trimTo(max);
    emit maxFramesChanged(max);
    if (count() != before)
        emit countChanged();
}

int VRNListenerModel::count() const
{
    Q_D(const VRNListenerModel);
    return int(d->frames.size());
}

void VRNListenerModel::clear()
{
    Q_D(VRNListenerModel);
    if (d->frames.empty())
        return;
    beginResetModel();
    d->frames.clear();
    endResetModel();
    emit countChanged();
}

void VRNListenerModel::addFrame(Direction direction, const BusMessage& frame)
{
    Q_D(VRNListenerModel);
    // A filtering view pays for each removal in proportion to its rows:
    // dropping a chunk at a time keeps a full model cheap to append to.
    if (count() >= d->maxFrames)
        d->trimTo(d->maxFrames - d->dropChunk());
    const int row = count();
    beginInsertRows(QModelIndex(), row, row);
    d->frames.push_back(d->decode(direction, frame));
    endInsertRows();
    emit countChanged();
}

int VRNListenerModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : count();
}

int VRNListenerModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant VRNListenerModel::data(const QModelIndex& index, int role) const
{
    Q_D(const VRNListenerModel);
    if (!index.isValid() || index.model() != this || size_t(index.row()) >= d->frames.size())
        return QVariant();
    const VRNListenerModelPrivate::Frame& f = d->frames[size_t(index.row())];
    if (role == Qt::DisplayRole)
        return d->display(f, index.column());
    return d->roleData(f, role);
}

QVariant VRNListenerModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QAbstractTableModel::headerData(section, orientation, role);
    switch (section) {
    case TimeColumn: return tr("Time");
    case DirectionColumn: return tr("Direction");
    case SourceColumn: return tr("Source");
    case DestinationColumn: return tr("Destination");
    case CommandColumn: return tr("Command");
    case PayloadColumn: return tr("Payload");
    case ValidColumn: return tr("Valid");
    default: return QVariant();
    }
}

QHash<int, QByteArray> VRNListenerModel::roleNames() const
{
    QHash<int, QByteArray> names = QAbstractTableModel::roleNames();
    names.insert(TimeRole, "time");
    names.insert(DirectionRole, "direction");
    names.insert(SourceRole, "source");
    names.insert(DestinationRole, "destination");
    names.insert(DestinationTypeRole, "destinationType");
    names.insert(CommandRole, "command");
    names.insert(CommandNameRole, "commandName");
    names.insert(PayloadRole, "payload");
    names.insert(ValidRole, "valid");
    names.insert(UnmatchedRole, "unmatched");
    return names;
}
