#ifndef VRNLISTENERMODEL_H
#define VRNLISTENERMODEL_H

#include "vrnbus.h"

#include <QAbstractTableModel>
#include <QScopedPointer>

class BusMessage;
class VRNListenerModelPrivate;

/// The frames a bus sends and receives, oldest first, one row each.
///
/// Every frame is recorded, valid or not, with the time it was seen, its
/// direction, source and destination, command (named from the command table)
/// and payload in hexadecimal. An invalid frame has no addressing and shows
/// all its bytes as payload. The model holds at most `maxFrames` rows
/// (10,000 by default), so a long session does not grow without end: a frame
/// that finds the model full drops the oldest hundredth of the rows (at least
/// one) before it is appended. Changing the bus keeps the rows seen
/// so far; `clear()` forgets them.
class VRNListenerModel : public QAbstractTableModel
{
    Q_OBJECT
    Q_PROPERTY(VRNBus* bus READ bus WRITE setBus NOTIFY busChanged)
    Q_PROPERTY(int maxFrames READ maxFrames WRITE setMaxFrames NOTIFY maxFramesChanged)
    Q_PROPERTY(int count READ count NOTIFY countChanged)
public:
    enum Column {
        TimeColumn,
        DirectionColumn,
        SourceColumn,
        DestinationColumn,
        CommandColumn,
        PayloadColumn,
        ValidColumn,
        ColumnCount
    };
    Q_ENUM(Column)

    /// Roles answered on every column of a row, for QML and for filtering.
    enum Role {
        TimeRole = Qt::UserRole + 1, ///< QDateTime the frame was seen
        DirectionRole,               ///< `Direction`
        SourceRole,                  ///< source address (`VRN::Addr`, node type included); invalid for a bad frame
        DestinationRole,             ///< destination node or group number; invalid for a bad frame
        DestinationTypeRole,         ///< `VRN::AddrType` of the destination; invalid for a bad frame
        CommandRole,                 ///< command code; invalid for a bad frame
        CommandNameRole,             ///< command name, or "0x.." when the table does not know it
        PayloadRole,                 ///< payload in hexadecimal, bytes separated by blanks
        ValidRole,                   ///< whether length, checksum and addressing agreed
        UnmatchedRole                ///< a received frame that answered no request (dropped by the bus)
    };
    Q_ENUM(Role)

    enum Direction { Sent, Received };
    Q_ENUM(Direction)

    enum : int { DefaultMaxFrames = 10000 };

    explicit VRNListenerModel(VRNBus* bus, QObject* parent = nullptr);
    ~VRNListenerModel() override;

    VRNBus* bus() const;
    /// Listens to `bus` from now on (null: to no bus).
    void setBus(VRNBus* bus);

    int maxFrames() const;
    /// Bounds the rows to `max` (at least 1), dropping the oldest at once.
    void setMaxFrames(int max);
    int count() const;

    /// Forgets every row.
    Q_INVOKABLE void clear();

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;
    QHash<int, QByteArray> roleNames() const override;

    /// Records one frame as if the bus had reported it.
    void addFrame(Direction direction, const BusMessage& frame);

signals:
    void busChanged(VRNBus* bus);
    void maxFramesChanged(int max);
    void countChanged();

protected:
    VRNListenerModel(VRNListenerModelPrivate& dd, VRNBus* bus, QObject* parent);
    QScopedPointer<VRNListenerModelPrivate> d_ptr;

private:
    Q_DECLARE_PRIVATE(VRNListenerModel)
};

#endif // VRNLISTENERMODEL_H
