.pragma library

// Texts and numbers as the views show and read them: the words a person
// uses, never a class or job name.

function hex(value, digits) {
    if (value === undefined || value === null)
        return "";
    var s = Number(value).toString(16).toUpperCase();
    while (s.length < digits)
        s = "0" + s;
    return "0x" + s;
}

// A value read from a device, or "not read" while it is unknown.
function orNotRead(value) {
    return value === undefined || value === null || value === "" ? qsTr("not read") : String(value);
}

// The bytes `text` takes in UTF-8, the encoding labels are sent in.
function utf8Length(text) {
    var n = 0;
    for (var i = 0; i < text.length; ++i) {
        var c = text.charCodeAt(i);
        if (c < 0x80) n += 1;
        else if (c < 0x800) n += 2;
        else if (c >= 0xD800 && c <= 0xDBFF) { n += 4; ++i; }
        else n += 3;
    }
    return n;
}
var labelBytes = 16;
// Why `text` cannot be a label, or "" when it can.
function labelProblem(text) {
    var n = utf8Length(text);
    return n > labelBytes ? qsTr("Too long: %1 bytes, a label holds %2").arg(n).arg(labelBytes) : "";
}

// Group addresses typed as hexadecimal numbers separated by commas, each
// checked on its own: { groups: [numbers], bad: [entries that are not a
// group address], problem: text or "" }. Nothing is dropped: a wrong entry
// makes the whole field wrong.
var groupSlots = 16;
function checkGroups(text) {
    var parts = text.split(",");
    var groups = [], bad = [], twice = [];
    for (var i = 0; i < parts.length; ++i) {
        var p = parts[i].trim();
        if (p === "" && parts.length === 1)
            continue;
        var digits = p.replace(/^0x/i, "");
        var value = /^[0-9A-Fa-f]{1,6}$/.test(digits) ? parseInt(digits, 16) : -1;
        if (value <= 0)
            bad.push(p === "" ? qsTr("(empty)") : p);
        else if (groups.indexOf(value) >= 0)
            twice.push(p);
        else
            groups.push(value);
    }
    var problem = "";
    if (bad.length > 0)
        problem = qsTr("Not a group address (1 to FFFFFF): %1").arg(bad.join(", "));
    else if (twice.length > 0)
        problem = qsTr("Given twice: %1").arg(twice.join(", "));
    else if (groups.length > groupSlots)
        problem = qsTr("%1 groups; a device holds %2").arg(groups.length).arg(groupSlots);
    return { groups: groups, bad: bad, problem: problem };
}

function groupsText(groups) {
    if (!groups)
        return "";
    var out = [];
    for (var i = 0; i < groups.length; ++i) {
        if (groups[i] !== 0)
            out.push(Number(groups[i]).toString(16).toUpperCase());
    }
    return out.join(", ");
}

// Device kinds (VRNObject.Type) by the names the command-line tool uses.
function kindName(type) {
    switch (type) {
    case 1: return qsTr("standard node");
    case 2: return qsTr("motor");
    case 3: return qsTr("DC motor");
    case 4: return "LRU50";
    case 5: return "TX50DC";
    case 6: return "TX30";
    case 7: return qsTr("setting tool");
    default: return qsTr("unknown");
    }
}
var kinds = [1, 2, 3, 4, 5, 6, 7];
function isMotorType(type) { return type >= 2 && type <= 6; }
function isDCMotorType(type) { return type === 3 || type === 5 || type === 6; }

// What each job does, in the words of the task.
function jobTitle(name) {
    switch (name) {
    case "GetLabelJob": return qsTr("Read label");
    case "SetLabelJob": return qsTr("Write label");
    case "GetSerialNumberJob": return qsTr("Read serial number");
    case "GetGroupsJob": return qsTr("Read groups");
    case "SetGroupsJob": return qsTr("Write groups");
    case "GetFwVersionJob": return qsTr("Read firmware version");
    case "VisualFeedbackJob": return qsTr("Wink");
    case "MotorControlJob": return qsTr("Move");
    case "MotorCtrlMoveJob": return qsTr("Move");
    case "GetDirectionJob": return qsTr("Read direction");
    case "SetDirectionJob": return qsTr("Write direction");
    case "GetEndLimitsJob": return qsTr("Read end limits");
    case "SetEndLimitsJob": return qsTr("Write end limit");
    case "GetPositionJob": return qsTr("Read position");
    case "GetMotorIpsJob": return qsTr("Read intermediate positions");
    case "SetMotorIpJob": return qsTr("Write intermediate position");
    case "GetSpeedJob": return qsTr("Read speeds");
    case "SetSpeedJob": return qsTr("Write speeds");
    case "GetRampJob": return qsTr("Read ramps");
    case "SetRampJob": return qsTr("Write ramps");
    case "SetFactoryDefaultJob": return qsTr("Restore factory settings");
    case "GetMotorDiagnosticJob": return qsTr("Read life counters");
    case "GetNetworkStatsJob": return qsTr("Read network statistics");
    case "SetNetworkStatsJob": return qsTr("Reset network statistics");
    case "CheckFwJob": return qsTr("Check firmware");
    case "UpdateFwJob": return qsTr("Update firmware");
    case "DirectUpdateFwJob": return qsTr("Update firmware through the bootloader");
    case "BusDiscoverJob": return qsTr("Discovery");
    default: return qsTr("Job");
    }
}
var motorJobs = ["VisualFeedbackJob", "MotorControlJob", "MotorCtrlMoveJob", "GetDirectionJob", "SetDirectionJob",
                 "GetEndLimitsJob", "SetEndLimitsJob", "GetPositionJob", "GetMotorIpsJob", "SetMotorIpJob",
                 "GetMotorDiagnosticJob"];
var dcMotorJobs = ["GetSpeedJob", "SetSpeedJob", "GetRampJob", "SetRampJob"];

// A failure as the user reads it: the library's text, except where it
// names classes (a job the device kind cannot run).
function errorText(name, text) {
    if (/^No task for /.test(text) || /no VRNObject/.test(text)) {
        if (motorJobs.indexOf(name) >= 0)
            return qsTr("not a motor");
        if (dcMotorJobs.indexOf(name) >= 0)
            return qsTr("not a DC motor");
        if (/no VRNObject/.test(text))
            return qsTr("the device is no longer listed");
        return qsTr("this kind of device cannot do that");
    }
    return text;
}

// What a read found, from the device's proxy record (`proxy`, known values
// only) and runtime record; "" when the job reads nothing to show.
function readText(name, proxy, runtime) {
    switch (name) {
    case "GetLabelJob": return proxy.label === undefined ? "" : (proxy.label === "" ? qsTr("no label") : "\u201C" + proxy.label + "\u201D");
    case "GetGroupsJob": {
        var g = groupsText(proxy.groups);
        return proxy.groups === undefined ? "" : (g === "" ? qsTr("no group") : qsTr("groups %1").arg(g));
    }
    case "GetFwVersionJob": return proxy.firmwareVersion === undefined ? "" : qsTr("version %1").arg(proxy.firmwareVersion);
    case "GetDirectionJob": return proxy.rotDirection === undefined ? "" : (proxy.rotDirection ? qsTr("reversed") : qsTr("standard"));
    case "GetEndLimitsJob": return proxy.upEndLimit === undefined ? ""
                                   : qsTr("up %1, down %2 pulses").arg(proxy.upEndLimit).arg(proxy.downEndLimit);
    case "GetPositionJob": return runtime.posPulse === undefined ? ""
                                  : qsTr("%1 % (%2 pulses)").arg(runtime.posPCent).arg(runtime.posPulse);
    case "GetMotorIpsJob": {
        var ips = proxy.ipsPulse || [];
        var set = 0;
        for (var i = 0; i < ips.length; ++i)
            if (ips[i] !== 0xFFFF) ++set;
        return qsTr("%1 set").arg(set);
    }
    case "GetSpeedJob": return proxy.upRollingSpeed === undefined ? ""
                               : qsTr("up %1, down %2, slow %3 rpm").arg(proxy.upRollingSpeed).arg(proxy.downRollingSpeed).arg(proxy.slowRollingSpeed);
    case "GetRampJob": return proxy.softStartValue === undefined ? ""
                              : qsTr("start %1, stop %2").arg(proxy.softStartStatus ? proxy.softStartValue : qsTr("off"))
                                                        .arg(proxy.softStopStatus ? proxy.softStopValue : qsTr("off"));
    default: return "";
    }
}

// One line for the end of a job: "Read intermediate positions: 3 set",
// "Move up: not a motor". `title` overrides the job's own words.
function outcome(name, ok, error, proxy, runtime, title) {
    var what = title || jobTitle(name);
    if (!ok)
        return qsTr("%1: %2").arg(what).arg(errorText(name, error));
    var read = proxy ? readText(name, proxy, runtime || {}) : "";
    return qsTr("%1: %2").arg(what).arg(read !== "" ? read : qsTr("done"));
}

// Values a record holds for "not known" beside null.
var unsetValues = { rotDirection: 0xFF, upEndLimit: 0xFFFF, downEndLimit: 0xFFFF,
                    upRollingSpeed: 0, downRollingSpeed: 0, slowRollingSpeed: 0,
                    softStartValue: 0xFF, softStopValue: 0xFF }
// Fields that are known only when another one is.
var knownWith = { softStartStatus: "softStartValue", softStopStatus: "softStopValue" }

// The fields of a record map that hold a known value.
function known(map) {
    var out = {}
    for (var key in map) {
        var v = map[key]
        if (v !== undefined && v !== null && unsetValues[key] !== v)
            out[key] = v
    }
    for (var field in knownWith) {
        if (out[knownWith[field]] === undefined)
            delete out[field]
    }
    return out
}

// A device object as the views name it: node number and kind.
function deviceText(device) {
    return hex(device.address & 0xFFFFFF, 6) + " " + kindName(device.type)
}

// A serial number as the registry holds it (bytes or text).
function serialText(value) {
    if (value === undefined || value === null)
        return ""
    if (value instanceof ArrayBuffer) {
        var bytes = new Uint8Array(value), out = ""
        for (var i = 0; i < bytes.length; ++i)
            out += bytes[i] >= 32 && bytes[i] < 127 ? String.fromCharCode(bytes[i]) : "?"
        return out
    }
    return String(value)
}

// A node type as firmware packages name it ("motor", "tx30", ...), in words.
function nodeTypeWord(word) {
    switch (word) {
    case "tool": return qsTr("tool");
    case "motor": return qsTr("motor");
    case "keypad": return qsTr("keypad");
    case "sensor": return qsTr("sensor");
    case "interface": return qsTr("interface");
    case "motorio": return qsTr("motor input/output");
    case "dcmotor": return qsTr("DC motor");
    case "settingtool": return qsTr("setting tool");
    case "tx30": return "TX30";
    case "lru50": return "LRU50";
    case "tx50dc": return "TX50DC";
    default: return word;
    }
}
