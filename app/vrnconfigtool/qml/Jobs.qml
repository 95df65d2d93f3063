import QtQuick 2.15
import VRNConfigTool 1.0
import "Format.js" as Format

// Queues the library's jobs by name on a device's worker and reports each
// end: done(name, ok, errorText, result).
QtObject {
    id: jobs

    readonly property var kinds: ({
        "GetLabelJob": getLabel, "SetLabelJob": setLabel, "GetSerialNumberJob": getSerialNumber,
        "GetGroupsJob": getGroups, "SetGroupsJob": setGroups,
        "GetFwVersionJob": getFwVersion, "VisualFeedbackJob": wink,
        "MotorControlJob": motorControl, "MotorCtrlMoveJob": motorMove,
        "GetDirectionJob": getDirection, "SetDirectionJob": setDirection,
        "GetEndLimitsJob": getEndLimits, "SetEndLimitsJob": setEndLimits,
        "GetPositionJob": getPosition, "GetMotorIpsJob": getMotorIps, "SetMotorIpJob": setMotorIp,
        "GetSpeedJob": getSpeed, "SetSpeedJob": setSpeed,
        "GetRampJob": getRamp, "SetRampJob": setRamp,
        "SetFactoryDefaultJob": factoryDefault,
        "GetMotorDiagnosticJob": getMotorDiagnostic, "GetNetworkStatsJob": getNetworkStats,
        "SetNetworkStatsJob": setNetworkStats, "CheckFwJob": checkFw,
        "UpdateFwJob": updateFw, "DirectUpdateFwJob": directUpdateFw
    })
    property Component getLabel: Component { GetLabelJob {} }
    property Component setLabel: Component { SetLabelJob {} }
    property Component getSerialNumber: Component { GetSerialNumberJob {} }
    property Component getGroups: Component { GetGroupsJob {} }
    property Component setGroups: Component { SetGroupsJob {} }
    property Component getFwVersion: Component { GetFwVersionJob {} }
    property Component wink: Component { VisualFeedbackJob {} }
    property Component motorControl: Component { MotorControlJob {} }
    property Component motorMove: Component { MotorCtrlMoveJob {} }
    property Component getDirection: Component { GetDirectionJob {} }
    property Component setDirection: Component { SetDirectionJob {} }
    property Component getEndLimits: Component { GetEndLimitsJob {} }
    property Component setEndLimits: Component { SetEndLimitsJob {} }
    property Component getPosition: Component { GetPositionJob {} }
    property Component getMotorIps: Component { GetMotorIpsJob {} }
    property Component setMotorIp: Component { SetMotorIpJob {} }
    property Component getSpeed: Component { GetSpeedJob {} }
    property Component setSpeed: Component { SetSpeedJob {} }
    property Component getRamp: Component { GetRampJob {} }
    property Component setRamp: Component { SetRampJob {} }
    property Component factoryDefault: Component { SetFactoryDefaultJob {} }
    property Component getMotorDiagnostic: Component { GetMotorDiagnosticJob {} }
    property Component getNetworkStats: Component { GetNetworkStatsJob {} }
    property Component setNetworkStats: Component { SetNetworkStatsJob {} }
    property Component checkFw: Component { CheckFwJob {} }
    property Component updateFw: Component { UpdateFwJob {} }
    property Component directUpdateFw: Component { DirectUpdateFwJob {} }

    // Jobs after which the device's row in the registry is stored, so that
    // the device list shows what was read or written.
    readonly property var stored: ["GetLabelJob", "SetLabelJob", "GetSerialNumberJob"]

    // Jobs still running, so that their end is counted.
    property int running: 0
    // Their end handlers, let go when this object goes: a job that ends
    // later (the window closed) finds nobody to tell.
    property var waiting: ({})
    Component.onDestruction: {
        for (var key in waiting)
            waiting[key].job.finished.disconnect(waiting[key].ended)
    }

    signal done(string name, var uuid, bool ok, string errorText, var result)

    // The end of a job in the user's words.
    function outcomeText(name, ok, errorText) { return Format.outcome(name, ok, errorText) }

    // Why a registry row can be no device's (ObjectFactory.deviceProblem),
    // in the user's words; "" for a valid row.
    function problemText(problem) {
        switch (problem) {
        case ObjectFactory.NumberNone: return qsTr("its node number is 0, which no device has");
        case ObjectFactory.NumberBroadcast:
            return qsTr("its node number FFFFFF is the broadcast address, a job on it would reach every device");
        case ObjectFactory.NumberTool: return qsTr("its node number belongs to configuration tools, never to a device");
        case ObjectFactory.TypeTool: return qsTr("its node type 0 belongs to configuration tools, never to a device");
        case ObjectFactory.TypeReserved: return qsTr("its node type is reserved, no device has it");
        default: return "";
        }
    }

    // Why no job is sent to device `uuid` (its registry row is invalid), in
    // the user's words; "" when one may be.
    function refusal(uuid) {
        var problem = ObjectFactory.deviceProblem(uuid);
        return problem !== ObjectFactory.AddressValid
                ? qsTr("not sent, the row is invalid: %1").arg(problemText(problem)) : "";
    }

    // Before job `name` goes to the devices `uuids` as one group: those it
    // may not reach end at once, as `run` ends a refused device (`done` with
    // the reason). { valid: [uuid], refused: [{ uuid, why }] }, `why` the
    // row's problem in words.
    function sortOut(name, uuids) {
        var invalid = ObjectFactory.invalidDevices(uuids);
        var out = { valid: invalid.length === 0 ? uuids : [], refused: [] };
        if (invalid.length === 0)
            return out;
        var left = {};
        for (var i = 0; i < invalid.length; ++i) {
            left[invalid[i]] = true;
            out.refused.push({ uuid: invalid[i], why: problemText(ObjectFactory.deviceProblem(invalid[i])) });
            done(name, invalid[i], false, refusal(invalid[i]), undefined);
        }
        out.valid = uuids.filter(function(uuid) { return left[uuid] !== true; });
        return out;
    }

    // The group worker for job `name` on the devices of `selection`, those
    // it may not reach left out first (`sortOut`): { group (null when no
    // device is left), refused }.
    function selectionGroup(name, selection) {
        var group = selection ? GroupFactory.selectionWorkerQml(selection) : null;
        if (!group)
            return { group: null, refused: [] };
        var sorted = sortOut(name, group.devices);
        if (sorted.refused.length > 0)
            group = sorted.valid.length > 0 ? GroupFactory.groupWorkerQml(sorted.valid) : null;
        return { group: group, refused: sorted.refused };
    }

    // Queues job `name` with `props` on the worker of device `uuid`; `then`
    // (optional) is called with (ok, errorText, result) after `done`;
    // `created` (optional) with the job before it is queued.
    function run(uuid, name, props, then, priority, created) {
        var worker = null;
        var refused = refusal(uuid);
        if (refused === "") {
            worker = ObjectFactory.objectWorkerQml(jobs, uuid);
            if (!worker || !worker.data)
                refused = qsTr("the device is no longer listed");
        }
        if (refused !== "") {
            if (worker)
                worker.destroy();
            done(name, uuid, false, refused, undefined);
            if (then) then(false, refused, undefined);
            return false;
        }
        var job = kinds[name].createObject(jobs, props || {});
        running += 1;
        if (created) created(job);
        var ended = function() {
            delete waiting[job];
            running -= 1;
            var ok = job.error === 0;
            var text = job.errorString;
            var result = job.result;
            if (ok && stored.indexOf(name) >= 0) {
                var shared = ObjectFactory.objectQml(jobs, uuid);
                if (shared && shared.data) {
                    if (name === "GetLabelJob")
                        ObjectFactory.storeLabelRead(shared.data);
                    else if (name === "GetSerialNumberJob")
                        ObjectFactory.storeSerialNumberRead(shared.data);
                    else
                        ObjectFactory.save(shared.data);
                }
                if (shared)
                    shared.destroy();
            }
            done(name, uuid, ok, text, result);
            if (then) then(ok, text, result);
            job.destroy();
            worker.destroy();
        };
        waiting[job] = { job: job, ended: ended };
        job.finished.connect(ended);
        return worker.data.enqueue(job, priority === undefined ? 10 : priority);
    }
}
