// Internal to the device objects and the object factory: not part of the library's API.
#ifndef VRNOBJECT_P_H
#define VRNOBJECT_P_H

#include "vrnobject.h"

#include <functional>
#include <memory>

class VRNObjectPrivate
{
    Q_DECLARE_PUBLIC(VRNObject)

public:
    /// Takes ownership of both records and of the node; the most derived
    /// object class decides their types.
    VRNObjectPrivate(ConfigData* local, ConfigData* proxy, VRNNode* node);
    virtual ~VRNObjectPrivate();

    enum Side { Local, Proxy };
    /// What a level's mutation did to its record.
    enum Outcome { Unchanged, Merged, Erased };
    using Mutation = std::function<Outcome(ConfigData&)>;

    ConfigData& record(Side side) { return side == Local ? *local : *proxy; }

    /// Applies `mutate` to one record and runs the change rules of
    /// `VRNObject`; `typed` emits the level's typed local signal.
    void change(Side side, const Mutation& mutate, bool isInit, const std::function<void()>& typed);

    /// Merges `data` at the level of record class `R`.
    template <class R, class Obj = VRNObject>
    void updateAt(Side side, const R& data, bool isInit, Obj* obj = nullptr, void (Obj::*typed)(R) = nullptr)
    {
        change(side, [&data](ConfigData& rec) {
            return static_cast<R&>(rec).merge(data) ? Merged : Unchanged;
        }, isInit, typedSignal(side, obj, typed));
    }

    /// `setLocalConfig`/`setProxyConfig` at the level of `R`: merge a record
    /// that has the level, erase the level otherwise.
    template <class R, class Obj = VRNObject>
    void setAt(Side side, const ConfigData& data, bool isInit, Obj* obj = nullptr, void (Obj::*typed)(R) = nullptr)
    {
        if (R::hasLevel(data)) {
            updateAt<R, Obj>(side, R(data), isInit, obj, typed);
            return;
        }
        change(side, [](ConfigData& rec) {
            static_cast<R&>(rec).eraseData();
            return Erased;
        }, isInit, typedSignal(side, obj, typed));
    }

    /// `synchronize()` at the level of `R`.
    template <class R, class Obj>
    void synchronizeAt(Obj* obj, void (Obj::*typed)(R))
    {
        const R source(*proxy);
        if (!q_ptr->isSynced() && source.isValid())
            updateAt<R, Obj>(Local, source, false, obj, typed);
    }

    /// Erases every level of one record.
    void eraseAll(Side side);
    void updateSync();
    /// Replaces (or merges into) the runtime record and signals a
    /// difference, or the change in any case when `always` is set.
    void changeRuntime(const std::function<void(RuntimeData&)>& mutate, bool always = false);

    VRNObject* q_ptr = nullptr;
    std::unique_ptr<ConfigData> proxy;
    std::unique_ptr<ConfigData> local;
    RuntimeData runtime;
    std::unique_ptr<VRNNode> node;
    VRNObject::UUID uuid = 0;
    VRNObject::Type type = VRNObject::VRNObj;
    VRNObject::IsUpToDate isUpToDate = VRNObject::UpToDateUnknown;
    bool dirty = false;
    bool autosave = false;
    bool synced = true;

private:
    template <class R, class Obj>
    static std::function<void()> typedSignal(Side side, Obj* obj, void (Obj::*typed)(R))
    {
        if (side != Local || !obj || !typed)
            return {};
        return [obj, typed] { (obj->*typed)(R(obj->localConfig())); };
    }
};

#endif // VRNOBJECT_P_H
