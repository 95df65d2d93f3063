#include "vrnlistenerviewmodel.h"
#include "vrnlistenerviewmodel_p.h"

#include "vrn.h"

bool VRNListenerViewModelPrivate::changeFilter(int& filter, int value)
{
    value = qMax(-1, value);
    if (filter == value)
        return false;
    filter = value;
    q_ptr->invalidateFilter();
    return true;
}

VRNListenerViewModel::VRNListenerViewModel(VRNListenerModel* model, QObject* parent)
    : QSortFilterProxyModel(parent), d_ptr(new VRNListenerViewModelPrivate)
{
    Q_D(VRNListenerViewModel);
    d->q_ptr = this;
    d->model = model;
    setSourceModel(model);
    if (model)
        connect(model, &VRNListenerModel::busChanged, this, &VRNListenerViewModel::busChanged);
}

VRNListenerViewModel::~VRNListenerViewModel() = default;

VRNListenerModel* VRNListenerViewModel::listenerModel() const
{
    Q_D(const VRNListenerViewModel);
    return d->model;
}

VRNBus* VRNListenerViewModel::bus() const
{
    Q_D(const VRNListenerViewModel);
    return d->model ? d->model->bus() : nullptr;
}

void VRNListenerViewModel::setBus(VRNBus* bus)
{
    Q_D(VRNListenerViewModel);
    if (d->model)
        d->model->setBus(bus);
}

int VRNListenerViewModel::nodeFilter() const
{
    Q_D(const VRNListenerViewModel);
    return d->nodeFilter;
}

void VRNListenerViewModel::setNodeFilter(int node)
{
    Q_D(VRNListenerViewModel);
    if (d->changeFilter(d->nodeFilter, node))
        emit nodeFilterChanged(d->nodeFilter);
}

int VRNListenerViewModel::commandFilter() const
{
    Q_D(const VRNListenerViewModel);
    return d->commandFilter;
}

void VRNListenerViewModel::setCommandFilter(int command)
{
    Q_D(VRNListenerViewModel);
    if (d->changeFilter(d->commandFilter, command))
        emit commandFilterChanged(d->commandFilter);
}

void VRNListenerViewModel::clear()
{
    Q_D(VRNListenerViewModel);
    if (d->model)
        d->model->clear();
}

bool VRNListenerViewModel::filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const
{
    Q_D(const VRNListenerViewModel);
    if (d->nodeFilter < 0 && d->commandFilter < 0)
        return true;
    const QModelIndex index = sourceModel()->index(sourceRow, 0, sourceParent);
    if (!index.data(VRNListenerModel::ValidRole).toBool())
        return false;
    if (d->commandFilter >= 0 && index.data(VRNListenerModel::CommandRole).toInt() != d->commandFilter)
        return false;
    if (d->nodeFilter < 0)
        return true;
    const quint32 node = quint32(d->nodeFilter);
    if (VRN::getNumber(index.data(VRNListenerModel::SourceRole).toUInt()) == node)
        return true;
    return index.data(VRNListenerModel::DestinationTypeRole).toInt() == VRN::AddrNode
        && index.data(VRNListenerModel::DestinationRole).toUInt() == node;
}
