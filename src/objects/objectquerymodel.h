#ifndef OBJECTQUERYMODEL_H
#define OBJECTQUERYMODEL_H

#include "objectselectionmodel.h"
#include "vrnobject.h"

#include <QAbstractTableModel>
#include <QScopedPointer>
#include <QSharedPointer>
#include <QSqlDatabase>
#include <QVariantMap>

class ObjectFactory;
class ObjectQueryModelPrivate;

/// The sorted list of every known device, read from the database one page
/// of 100 rows at a time.
///
/// Each model orders its own temporary view of `Devices` (ascending, ties
/// broken by uuid); a descending order mirrors the row numbers. A model made
/// by `ObjectFactory::createQueryModel()` follows the factory's creations,
/// changes and deletions row by row, without a reset.
///
///     ObjectQueryModel* devices = ObjectFactory::instance()->createQueryModel(this);
///     devices->setSort(ObjectQueryModel::LabelRole, Qt::DescendingOrder);
class ObjectQueryModel : public QAbstractTableModel
{
    Q_OBJECT
    Q_PROPERTY(ObjectSelectionModel* selection READ selectionModel CONSTANT)
    Q_PROPERTY(Role sortBy READ sortBy WRITE setSortBy NOTIFY sortByChanged)
    Q_PROPERTY(Qt::SortOrder sortOrder READ sortOrder WRITE setSortOrder NOTIFY sortOrderChanged)
    /// Filtering, an addition to the full list: with a search text, kinds
    /// or a group set, the view lists only the matching devices. The search
    /// text matches labels and serial numbers anywhere (case-blind) and node
    /// numbers by their hexadecimal digits. While a filter is on, creations,
    /// changes and deletions reset the model instead of moving single rows.
    Q_PROPERTY(QString searchText READ searchText WRITE setSearchText NOTIFY filterChanged)
    /// Device kinds (`VRNObject::Type` values) listed; empty: every kind.
    Q_PROPERTY(QVariantList kindFilter READ kindFilter WRITE setKindFilter NOTIFY filterChanged)
    /// The group whose known members are listed; -1: no group filter.
    Q_PROPERTY(int groupFilter READ groupFilter WRITE setGroupFilter NOTIFY filterChanged)
    Q_PROPERTY(bool filtered READ isFiltered NOTIFY filterChanged)
public:
    /// Item roles; a role's column is the role minus `Qt::UserRole`.
    enum Role {
        UuidRole = Qt::UserRole,
        NodeIDRole,
        TypeRole,
        LabelRole,
        SerialNumberRole,
        NbOccurRole
    };
    Q_ENUM(Role)

    explicit ObjectQueryModel(const QSqlDatabase& db, QObject* parent = nullptr);
    ~ObjectQueryModel() override;

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    /// Rows are changed through the factory only: always false.
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    QHash<int, QByteArray> roleNames() const override;

    Q_INVOKABLE void setSort(ObjectQueryModel::Role role, Qt::SortOrder order);
    /// Every role of the row, by role name.
    Q_INVOKABLE QVariantMap get(int row) const;
    /// The uuids of every row in view (ascending) order.
    QList<VRNObject::UUID> toList() const;
    /// The view row of the device, -1 when it is unknown.
    int indexOf(VRNObject::UUID uuid) const;
    /// Makes sure the page holds the view row `viewRow`.
    void fetch(int viewRow) const;
    /// View row of the first row held in memory.
    int pageOffset() const;
    /// The name of this model's temporary view.
    QString viewName() const;

    QString searchText() const;
    void setSearchText(const QString& text);
    QVariantList kindFilter() const;
    void setKindFilter(const QVariantList& kinds);
    int groupFilter() const;
    void setGroupFilter(int group);
    bool isFiltered() const;
    /// Every group number some device is known to belong to, ascending.
    Q_INVOKABLE QVariantList knownGroups() const;
    /// Adds the model rows `first` to `last` (either order) to the
    /// selection with one statement, whatever the sort order.
    Q_INVOKABLE void selectRows(int first, int last);
    /// Every row listed (with a filter: the matching ones) into the selection.
    Q_INVOKABLE void selectAll();

    /// The model's selection, made on first use and bound to its view.
    ObjectSelectionModel* selectionModel();
    Role sortBy() const;
    void setSortBy(Role role);
    Qt::SortOrder sortOrder() const;
    void setSortOrder(Qt::SortOrder order);

Q_SIGNALS:
    void sortByChanged(ObjectQueryModel::Role role);
    void sortOrderChanged(Qt::SortOrder order);
    void selectionChanged();
    void filterChanged();

private Q_SLOTS:
    void onObjectCreated(QSharedPointer<VRNObject> object, bool selected);
    void onObjectChanged(VRNObject::UUID uuid);
    void onBeginObjectDestroy(VRNObject::UUID uuid);
    void onEndObjectDestroyed(VRNObject::UUID uuid, VRN::Addr address);
    /// The factory moved to another registry: the rows, the page and the
    /// selection are those of the new one (a reset), sort kept.
    void onRegistryChanged();

private:
    friend class ObjectFactory;
    Q_DECLARE_PRIVATE(ObjectQueryModel)
    QScopedPointer<ObjectQueryModelPrivate> d_ptr;
};

#endif // OBJECTQUERYMODEL_H
