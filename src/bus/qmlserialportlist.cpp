#include "qmlserialportlist.h"
#include "qmlserialportlist_p.h"

#include <QFile>

#include <algorithm>

namespace {
template <typename Entry, typename NameOf>
int indexOfName(const QString& name, const QList<Entry>& list, NameOf nameOf)
{
    const auto it = std::find_if(list.cbegin(), list.cend(),
                                 [&](const Entry& e) { return nameOf(e) == name; });
    return it == list.cend() ? -1 : int(it - list.cbegin());
}
}

SerialPortEntry SerialPortEntry::fromInfo(const QSerialPortInfo& info)
{
    SerialPortEntry e;
    e.portName = info.portName();
    e.description = info.description();
    e.systemLocation = info.systemLocation();
    // A port is valid while its device file exists: the test QSerialPortInfo's
    // isValid() made on Unix, which Qt 6 no longer offers.
    e.valid = QFile::exists(info.systemLocation());
    return e;
}

QMLSerialPortListPrivate::QMLSerialPortListPrivate(PortSource s)
    : source(std::move(s))
{
}

QList<SerialPortEntry> QMLSerialPortListPrivate::systemPorts()
{
    QList<SerialPortEntry> list;
    const auto infos = QSerialPortInfo::availablePorts();
    for (const QSerialPortInfo& info : infos)
        list.append(SerialPortEntry::fromInfo(info));
    return list;
}

QString QMLSerialPortListPrivate::displayText(const SerialPortEntry& entry) const
{
    if (entry.description.isEmpty())
        return entry.portName;
    return QStringLiteral("%1 (%2)").arg(entry.portName, entry.description);
}

QMLSerialPortList::QMLSerialPortList(QObject* parent)
    : QMLSerialPortList(*new QMLSerialPortListPrivate, parent)
{
}

QMLSerialPortList::QMLSerialPortList(QMLSerialPortListPrivate& dd, QObject* parent)
    : QAbstractListModel(parent), d_ptr(&dd)
{
    Q_D(QMLSerialPortList);
    d->q_ptr = this;
    const auto present = d->source();
    std::copy_if(present.cbegin(), present.cend(), std::back_inserter(d->ports),
                 [](const SerialPortEntry& e) { return e.valid; });
}

QMLSerialPortList::~QMLSerialPortList() = default;

int QMLSerialPortList::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : count();
}

int QMLSerialPortList::count() const
{
    Q_D(const QMLSerialPortList);
    return d->ports.size();
}

QVariant QMLSerialPortList::data(const QModelIndex& index, int role) const
{
    Q_D(const QMLSerialPortList);
    if (!index.isValid() || index.row() < 0 || index.row() >= d->ports.size())
        return QVariant();
    const SerialPortEntry& e = d->ports.at(index.row());
    switch (role) {
    case NameRole:
        return e.portName;
    case DescriptionRole:
    case Qt::DisplayRole:
    case Qt::EditRole:
        return d->displayText(e);
    case DevicePathRole:
        return e.systemLocation;
    default:
        return QVariant();
    }
}

QModelIndex QMLSerialPortList::sibling(int row, int column, const QModelIndex& index) const
{
    if (row < 0 || column < 0 || !index.model())
        return QModelIndex();
    return index.model()->index(row, column);
}

QHash<int, QByteArray> QMLSerialPortList::roleNames() const
{
    QHash<int, QByteArray> names = QAbstractListModel::roleNames();
    names.insert(NameRole, "name");
    names.insert(DescriptionRole, "description");
    names.insert(DevicePathRole, "devicePath");
    return names;
}

int QMLSerialPortList::findPortName(const QString& name, const QList<QSerialPortInfo>& list)
{
    return indexOfName(name, list, [](const QSerialPortInfo& i) { return i.portName(); });
}

void QMLSerialPortList::reload()
{
    Q_D(QMLSerialPortList);
    // Fresh ports are taken whether valid or not: a port that was not ready
    // when the list was built joins it now.
    QList<SerialPortEntry> fresh = d->source();
    const int before = d->ports.size();
    const auto nameOf = [](const SerialPortEntry& e) { return e.portName; };
    for (int row = 0; row < d->ports.size();) {
        const int at = indexOfName(d->ports.at(row).portName, fresh, nameOf);
        if (at < 0) {
            beginRemoveRows(QModelIndex(), row, row);
            d->ports.removeAt(row);
            endRemoveRows();
            continue;
        }
        fresh.removeAt(at);
        ++row;
    }
    for (const SerialPortEntry& e : qAsConst(fresh)) {
        const int row = d->ports.size();
        beginInsertRows(QModelIndex(), row, row);
        d->ports.append(e);
        endInsertRows();
    }
    if (d->ports.size() != before)
        emit countChanged();
}
