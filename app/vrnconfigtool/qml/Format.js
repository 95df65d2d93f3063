.pragma library

// Texts and numbers as the views show and read them.

function hex(value, digits) {
    if (value === undefined || value === null)
        return "";
    var s = Number(value).toString(16).toUpperCase();
    while (s.length < digits)
        s = "0" + s;
    return "0x" + s;
}

function orDash(value) {
    return value === undefined || value === null || value === "" ? "\u2013" : String(value);
}

// Group numbers typed as hexadecimal, separated by commas: [] for an empty text.
function parseGroups(text) {
    var parts = text.split(",");
    var groups = [];
    for (var i = 0; i < parts.length; ++i) {
        var p = parts[i].trim();
        if (p !== "")
            groups.push(parseInt(p, 16));
    }
    return groups;
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

// Device kinds (VRNObject.Type) with motor and DC-motor abilities.
var typeNames = ["Unknown", "Standard", "Motor", "DC motor", "LRU50", "TX50DC", "TX30", "Setting tool"];
function isMotorType(type) { return type >= 2 && type <= 6; }
function isDCMotorType(type) { return type === 3 || type === 5 || type === 6; }

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
    return hex(device.address & 0xFFFFFF, 6) + " " + (typeNames[device.type] || "")
}
