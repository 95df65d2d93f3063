#ifndef VRNLISTENERVIEWMODEL_H
#define VRNLISTENERVIEWMODEL_H

#include "vrnlistenermodel.h"

#include <QScopedPointer>
#include <QSortFilterProxyModel>

class VRNListenerViewModelPrivate;

/// The traffic of the open bus as the user looks at it: the rows of a
/// `VRNListenerModel`, filtered by node and by command.
///
/// A node filter keeps the frames whose source node number or destination
/// node number (not a group, not a broadcast) equals it; a command filter
/// keeps the frames of that command code. -1 turns a filter off. Frames that
/// could not be decoded pass only when no filter is on.
///
///     auto* view = BusFactory::instance()->busListener();
///     view->setNodeFilter(0x000042);
class VRNListenerViewModel : public QSortFilterProxyModel
{
    Q_OBJECT
    Q_PROPERTY(VRNListenerModel* listenerModel READ listenerModel CONSTANT)
    Q_PROPERTY(VRNBus* bus READ bus WRITE setBus NOTIFY busChanged)
    Q_PROPERTY(int nodeFilter READ nodeFilter WRITE setNodeFilter NOTIFY nodeFilterChanged)
    Q_PROPERTY(int commandFilter READ commandFilter WRITE setCommandFilter NOTIFY commandFilterChanged)
public:
    VRNListenerViewModel(VRNListenerModel* model, QObject* parent = nullptr);
    ~VRNListenerViewModel() override;

    VRNListenerModel* listenerModel() const;
    VRNBus* bus() const;
    /// Makes the listener model follow `bus`.
    void setBus(VRNBus* bus);

    int nodeFilter() const;
    /// A 24-bit node number, or -1 for every node.
    void setNodeFilter(int node);
    int commandFilter() const;
    /// A command code, or -1 for every command.
    void setCommandFilter(int command);

    /// Forgets the recorded frames.
    Q_INVOKABLE void clear();

signals:
    void busChanged(VRNBus* bus);
    void nodeFilterChanged(int node);
    void commandFilterChanged(int command);

protected:
    bool filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const override;
    QScopedPointer<VRNListenerViewModelPrivate> d_ptr;

private:
    Q_DECLARE_PRIVATE(VRNListenerViewModel)
};

#endif // VRNLISTENERVIEWMODEL_H
