import QtQuick 2.15
import VRNConfigTool 1.0
import "Format.js" as Format

// One row per selected device, for the views that run a job on each of
// them and show each device's outcome: uuid, name, motor, busy, error and
// whatever the view adds (`extra`, the same keys on every row).
ListModel {
    id: rows

    // Empties the rows and takes the devices of `selection`; the number of rows.
    function fill(selection, extra) {
        clear()
        var n = selection ? selection.rowCount : 0
        for (var i = 0; i < n; ++i) {
            var uuid = selection.data(i)
            var shared = ObjectFactory.objectQml(rows, uuid)
            var device = shared ? shared.data : null
            var row = { uuid: uuid, name: device ? Format.deviceText(device) : String(uuid),
                        motor: device ? Format.isMotorType(device.type) : false, busy: 0, error: "" }
            for (var key in extra)
                row[key] = extra[key]
            append(row)
            if (shared)
                shared.destroy()
        }
        return count
    }
    // Runs job `name` on the device of `row` through `jobs`; a failure
    // shows the library's text in the row. `then(ok, result)` is optional.
    function run(jobs, row, name, props, then, created) {
        var uuid = get(row).uuid
        setProperty(row, "busy", get(row).busy + 1)
        return jobs.run(uuid, name, props, function(ok, text, result) {
            // The rows were filled again meanwhile: the outcome is stale.
            if (row >= count || get(row).uuid !== uuid)
                return
            setProperty(row, "busy", get(row).busy - 1)
            if (!ok)
                setProperty(row, "error", Format.outcome(name, false, text))
            if (then)
                then(ok, result)
        }, undefined, created)
    }
    function busyCount() {
        var busy = 0
        for (var i = 0; i < count; ++i)
            busy += get(i).busy > 0 ? 1 : 0
        return busy
    }
}
