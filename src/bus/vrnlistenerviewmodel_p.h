// Internal header of VRNListenerViewModel: not part of the library's API.
#ifndef VRNLISTENERVIEWMODEL_P_H
#define VRNLISTENERVIEWMODEL_P_H

#include "vrnlistenerviewmodel.h"

class VRNListenerViewModelPrivate
{
public:
    virtual ~VRNListenerViewModelPrivate() = default;

    /// Stores a filter value and refilters; false when it did not change.
    bool changeFilter(int& filter, int value);

    VRNListenerViewModel* q_ptr = nullptr;
    VRNListenerModel* model = nullptr;
    int nodeFilter = -1;
    int commandFilter = -1;
};

#endif // VRNLISTENERVIEWMODEL_P_H
