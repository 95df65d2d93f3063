#ifndef RECORDTRAITS_H
#define RECORDTRAITS_H

#include "dtsmotorproxy.h"
#include "vrndcmotorobject.h"

/// How a device task reaches the configuration records of one level: the
/// object class that holds them, the node proxy it talks to, and the typed
/// accessors of both records. Writes go through the object's merge, so a
/// task stores whole copies and never edits a record in place.
template <class Record>
struct RecordTraits;

template <>
struct RecordTraits<StdConfigData>
{
    using Object = VRNStdObject;
    using Proxy = DTSStdProxy;
    static constexpr bool HasLocal = true;
    static StdConfigData proxy(const Object& o) { return o.proxyStdConfig(); }
    static StdConfigData local(const Object& o) { return o.localStdConfig(); }
    static void setProxy(Object& o, const StdConfigData& r) { o.updateProxyStdConfig(r); }
    static void setLocal(Object& o, const StdConfigData& r) { o.updateLocalStdConfig(r, false); }
};

template <>
struct RecordTraits<MotorConfigData>
{
    using Object = VRNMotorObject;
    using Proxy = DTSMotorProxy;
    static constexpr bool HasLocal = true;
    static MotorConfigData proxy(const Object& o) { return o.proxyMotorConfig(); }
    static MotorConfigData local(const Object& o) { return o.localMotorConfig(); }
    static void setProxy(Object& o, const MotorConfigData& r) { o.updateProxyMotorConfig(r); }
    static void setLocal(Object& o, const MotorConfigData& r) { o.updateLocalMotorConfig(r, false); }
};

template <>
struct RecordTraits<DCMotorConfigData>
{
    using Object = VRNDCMotorObject;
    using Proxy = DTSMotorProxy;
    static constexpr bool HasLocal = true;
    static DCMotorConfigData proxy(const Object& o) { return o.proxyDCMotorConfig(); }
    static DCMotorConfigData local(const Object& o) { return o.localDCMotorConfig(); }
    static void setProxy(Object& o, const DCMotorConfigData& r) { o.updateProxyDCMotorConfig(r); }
    static void setLocal(Object& o, const DCMotorConfigData& r) { o.updateLocalDCMotorConfig(r, false); }
};

/// The runtime record of a motor (position): read into the proxy record
/// only, as runtime values have no local copy.
struct MotorRuntimeTraits
{
    using Object = VRNMotorObject;
    using Proxy = DTSMotorProxy;
    static constexpr bool HasLocal = false;
    static RuntimeData proxy(const Object& o) { return o.proxyRuntime(); }
    static void setProxy(Object& o, const RuntimeData& r) { o.updateProxyRuntime(r); }
};

/// The runtime record of any node (network statistics), through its
/// standard proxy: read into the proxy record only.
struct StdRuntimeTraits
{
    using Object = VRNStdObject;
    using Proxy = DTSStdProxy;
    static constexpr bool HasLocal = false;
    static RuntimeData proxy(const Object& o) { return o.proxyRuntime(); }
    static void setProxy(Object& o, const RuntimeData& r) { o.updateProxyRuntime(r); }
};

#endif // RECORDTRAITS_H
