#ifndef QMLSERIALPORTLIST_H
#define QMLSERIALPORTLIST_H

#include <QAbstractListModel>
#include <QList>
#include <QScopedPointer>
#include <QSerialPortInfo>

class QMLSerialPortListPrivate;

/// The serial ports of the machine, one row each, for the user to pick the
/// port given to `BusFactory::openSerial`.
///
/// Filled once when created (ports whose information is valid) and brought
/// up to date by `reload()`, which removes the rows of vanished ports and
/// appends new ports at the end, leaving the other rows as they were.
/// Rows are matched by port name; the model has no timer of its own.
class QMLSerialPortList : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(int count READ count NOTIFY countChanged)
public:
    enum Role {
        NameRole = Qt::UserRole + 1, ///< "name": the port name
        DescriptionRole,             ///< "description": "name (description)", or the name alone
        DevicePathRole               ///< "devicePath": the system location
    };
    Q_ENUM(Role)

    explicit QMLSerialPortList(QObject* parent = nullptr);
    ~QMLSerialPortList() override;

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int count() const;
    /// The display text answers `DescriptionRole`, Qt::DisplayRole and
    /// Qt::EditRole alike.
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QModelIndex sibling(int row, int column, const QModelIndex& index) const override;
    QHash<int, QByteArray> roleNames() const override;

    /// Position of the first entry named `name` (case-sensitive), or -1.
    static int findPortName(const QString& name, const QList<QSerialPortInfo>& list);

public slots:
    void reload();

signals:
    void countChanged();

protected:
    QMLSerialPortList(QMLSerialPortListPrivate& dd, QObject* parent);
    QScopedPointer<QMLSerialPortListPrivate> d_ptr;

private:
    Q_DECLARE_PRIVATE(QMLSerialPortList)
};

#endif // QMLSERIALPORTLIST_H
