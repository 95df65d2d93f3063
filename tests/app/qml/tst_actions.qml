import QtQuick 2.15
import QtTest 1.15
import VRNConfigTool 1.0
import "qrc:/vrnconfigtool"

// A job run through the group worker of the selection, one result per device.
TestCase {
    id: testCase
    name: "Actions"
    when: windowShown

    Jobs { id: jobs }
    property ObjectQueryModel devices: ObjectFactory.createQueryModel(this)
    property ConnectionView connection: ConnectionView { devices: testCase.devices; jobs: jobs }
    ActionsView { id: view; devices: testCase.devices; jobs: jobs; width: 600; height: 400 }

    function initTestCase() {
        if (devices.rowCount() < 8) {
            verify(connection.discover())
            tryCompare(connection, "discovering", false, 5000)
        }
    }

    function test_resultPerDevice_data() {
        return [
            // The setting tool is no network node: it answers no read.
            { tag: "read label on all", action: 0, type: -1, done: 7, failed: 1, says: /^Read label: (\u201C.*\u201D|no label)$/,
              fails: /^Read label: (?!.*(Job|Task)\b).+$/ },
            { tag: "read groups on all", action: 1, type: -1, done: 7, failed: 1, says: /^Read groups: (groups [0-9A-F, ]+|no group)$/,
              fails: /^Read groups: (?!.*(Job|Task)\b).+$/ },
            { tag: "wink on motors", action: 3, type: 2, done: 2, failed: 0, says: /^Wink: done$/ },
            { tag: "wink on standard nodes", action: 3, type: 1, done: 0, failed: 3, fails: /^Wink: not a motor$/ },
            { tag: "move up on standard nodes", action: 4, type: 1, done: 0, failed: 3, fails: /^Move up: not a motor$/ }
        ]
    }
    function test_resultPerDevice(data) {
        view.selection.clear()
        for (var r = 0; r < devices.rowCount(); ++r)
            if (data.type < 0 || devices.get(r).type === data.type)
                view.selection.addItems(ObjectFactory.UuidColumn, devices.get(r).uuid)
        compare(view.runOnSelection(data.action), data.done + data.failed)
        tryCompare(view, "pending", 0, 5000)
        var uuids = view.results.uuids()
        compare(uuids.length, data.done + data.failed)
        for (var i = 0; i < uuids.length; ++i) {
            verify(view.selection.contains(uuids[i]))
            compare(view.results.errorString(uuids[i]) !== "", view.results.error(uuids[i]) !== Job.NoError)
        }
        compare(view.doneCount, data.done)
        compare(view.failedCount, data.failed)
        // Each row says what came of it in the words of the task.
        var list = findChild(view, "actionResults")
        tryVerify(function() { return list.count > 0 && list.itemAtIndex(0) !== null })
        var seen = 0
        for (var row = 0; row < list.count; ++row) {
            var item = list.itemAtIndex(row)
            if (!item)
                continue
            var outcome = findChild(item, "actionOutcome")
            verify((item.failed ? data.fails : data.says).test(outcome.text), outcome.text)
            ++seen
        }
        verify(seen > 0)
    }

    // A row no device can have is left out before anything is sent, and the
    // view says which and why; the others get the job.
    function test_invalidRowsAreLeftOut() {
        var before = devices.rowCount()
        var forged = ObjectFactory.createObjectQml(testCase, 1, 0xFFFFFF, false)
        verify(forged)
        forged.destroy()
        tryVerify(function() { return devices.rowCount() === before + 1 })
        var bad = 0
        for (var b = 0; b < devices.rowCount(); ++b)
            if ((devices.get(b).nodeID & 0xFFFFFF) === 0xFFFFFF)
                bad = devices.get(b).uuid
        verify(bad > 0)
        view.selection.clear()
        var nodes = 0
        for (var r = 0; r < devices.rowCount(); ++r) {
            if (devices.get(r).type === 1 && devices.get(r).uuid !== bad) {
                view.selection.addItems(ObjectFactory.UuidColumn, devices.get(r).uuid)
                ++nodes
            }
        }
        view.selection.addItems(ObjectFactory.UuidColumn, bad)
        compare(view.runOnSelection(1), nodes)   // read groups
        tryCompare(view, "pending", 0, 5000)
        compare(view.doneCount, nodes)
        compare(view.failedCount, 0)
        compare(view.results.uuids().indexOf(bad), -1)
        var said = findChild(view, "actionSkipped")
        verify(/^Not sent to 1 of the selected devices.*\n0xFFFFFF standard node: its node number FFFFFF is the broadcast address/
               .test(said.text), said.text)

        // Nothing but such rows: nothing is sent.
        view.selection.clear()
        view.selection.addItems(ObjectFactory.UuidColumn, bad)
        compare(view.runOnSelection(1), 0)
        compare(view.groupJob, null)
        compare(findChild(view, "actionSummary").text, "Read groups: sent to no device")
        verify(ObjectFactory.destroyObjectQml(bad))
    }
}
