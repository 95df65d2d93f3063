#ifndef OBJECTSELECTIONMODEL_H
#define OBJECTSELECTIONMODEL_H

#include "objectfactory.h"

#include <QAbstractListModel>
#include <QScopedPointer>
#include <QSqlDatabase>

#include <functional>

class ObjectSelectionModelPrivate;

/// The devices selected in a device list, one uuid per row.
///
/// The uuids live in a temporary table of the model's own, so that a
/// selection of every device matching a column value is one statement:
///
///     selection->setItems(ObjectFactory::NodeIDColumn, nodeId);
///     if (selection->isMotor()) ...
///
/// Matching devices are looked up in `deviceTable` ("Devices", or the view
/// of the query model that made the selection). After every change the
/// model recomputes its row count, the most specific device class common
/// to the selection (`selectedType`, 0 when empty) and, when exactly one
/// device is selected, its node id (`selectedNodeId`, else 0).
class ObjectSelectionModel : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(QString deviceTable READ deviceTable WRITE setDeviceTable NOTIFY deviceTableChanged)
    Q_PROPERTY(unsigned rowCount READ count NOTIFY rowCountChanged)
    Q_PROPERTY(VRNObject::Type selectedType READ selectedType)
    /// As `selectedType`, but `VRNObj` (0) when the selected devices share
    /// no kind: `selectedType` then names the setting tool, the kind last
    /// registered for the root class (a standard node and a setting tool).
    Q_PROPERTY(VRNObject::Type commonKind READ commonKind)
    Q_PROPERTY(bool isMotor READ isMotor)
    Q_PROPERTY(VRN::Addr selectedNodeId READ selectedNodeId)
public:
    explicit ObjectSelectionModel(const QSqlDatabase& db, QObject* parent = nullptr);
    ~ObjectSelectionModel() override;
    /// Starts afresh, empty, on another database (the registry of another
    /// bus) over its table `deviceTable`.
    void setDatabase(const QSqlDatabase& db, const QString& deviceTable);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    /// The uuid of the row, for any role.
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;

    Q_INVOKABLE bool contains(VRNObject::UUID uuid) const;
    Q_INVOKABLE void addItems(ObjectFactory::DevicesTableColumn column, const QVariant& criteria);
    Q_INVOKABLE void removeItems(ObjectFactory::DevicesTableColumn column, const QVariant& criteria);
    Q_INVOKABLE void setItems(ObjectFactory::DevicesTableColumn column, const QVariant& criteria);
    /// Empties the selection when it is exactly the matching devices,
    /// otherwise makes it exactly the matching devices.
    Q_INVOKABLE void toggleItems(ObjectFactory::DevicesTableColumn column, const QVariant& criteria);
    Q_INVOKABLE void clear();
    /// The uuid at `index`, invalid past the end.
    Q_INVOKABLE QVariant data(int index) const;
    /// Adds `count` rows of the device table from row `offset` on, in its
    /// order (a negative count: to the end), with one statement.
    Q_INVOKABLE void addRows(int offset, int count);
    /// Adds the devices of the device table known to belong to `group`.
    Q_INVOKABLE void addGroup(int group);
    /// Deletes every selected device through the factory.
    Q_INVOKABLE void destroyObjectsQml();

    QList<VRNObject::UUID> toList() const;
    QString tableName() const;
    QString deviceTable() const;
    void setDeviceTable(const QString& table);
    unsigned count() const;
    VRNObject::Type selectedType() const;
    VRNObject::Type commonKind() const;
    bool isMotor() const;
    VRN::Addr selectedNodeId() const;

Q_SIGNALS:
    void deviceTableChanged(const QString& table);
    void rowCountChanged(unsigned rowCount);

private:
    /// Runs `statements` inside one model reset, then recomputes the
    /// row count, selected type and node id.
    void change(const std::function<void()>& statements);

    Q_DECLARE_PRIVATE(ObjectSelectionModel)
    QScopedPointer<ObjectSelectionModelPrivate> d_ptr;
};

#endif // OBJECTSELECTIONMODEL_H
