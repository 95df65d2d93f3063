import QtQuick 2.15
import QtTest 1.15
import VRNConfigTool 1.0
import "qrc:/vrnconfigtool"

// The device panel: reads, pending changes written in one action, values
// kept in range, a device that vanishes.
TestCase {
    id: testCase
    name: "Panel"
    when: windowShown
    width: 900
    height: 900

    Jobs { id: jobs }
    property ObjectQueryModel devices: ObjectFactory.createQueryModel(this)
    property ConnectionView connection: ConnectionView { devices: testCase.devices; jobs: jobs }
    DevicePanel { id: panel; jobs: jobs; anchors.fill: parent }

    function initTestCase() {
        if (devices.rowCount() < 8) {
            verify(connection.discover())
            tryCompare(connection, "discovering", false, 5000)
        }
    }
    function init() {
        panel.uuid = undefined
        tryCompare(jobs, "running", 0, 3000)
    }

    // The first device of `type`: its uuid and node number.
    function device(type) {
        for (var r = 0; r < devices.rowCount(); ++r) {
            var row = devices.get(r)
            if (row.type === type)
                return row
        }
        fail("no device of type " + type)
    }
    function records() { return panel.proxy }
    function show(row) {
        panel.commonType = row.type
        panel.selectedCount = 1
        panel.uuid = row.uuid
        tryCompare(jobs, "running", 0, 3000)
    }

    function test_readsWhatTheTypeHas_data() {
        return [
            { tag: "standard", type: 1, known: ["label", "firmwareVersion"], unknown: ["upEndLimit", "upRollingSpeed"] },
            { tag: "motor", type: 2, known: ["label", "rotDirection", "upEndLimit"], unknown: ["upRollingSpeed"] },
            { tag: "DC motor", type: 6, known: ["label", "upEndLimit", "upRollingSpeed", "softStartValue"], unknown: [] }
        ]
    }
    function test_readsWhatTheTypeHas(data) {
        show(device(data.type))
        for (var i = 0; i < data.known.length; ++i)
            verify(panel.proxy[data.known[i]] !== undefined, data.known[i] + " " + JSON.stringify(records()))
        for (var j = 0; j < data.unknown.length; ++j)
            verify(panel.proxy[data.unknown[j]] === undefined, data.unknown[j])
        compare(JSON.stringify(panel.pendingJobs), "[]")
    }

    // A setting tool answers no node request: showing it asks it nothing,
    // so no failure reaches the messages.
    SignalSpy { id: jobEnds; target: jobs; signalName: "done" }
    function test_settingToolIsAskedNothing() {
        jobEnds.clear()
        show(device(7))
        compare(jobEnds.count, 0)
        verify(!panel.isNode)
        verify(findChild(panel, "notANode").text !== "")
        panel.readAll()
        compare(jobs.running, 0)
        compare(jobEnds.count, 0)
    }

    function test_writePendingChanges() {
        var row = device(6)
        show(row)
        findChild(panel, "labelEdit").text = "Terrace"
        var speed = findChild(panel, "upSpeedEdit")
        speed.value = panel.proxy.upRollingSpeed === 20 ? 21 : 20
        var wanted = speed.value
        compare(panel.pendingJobs.length, 2)
        compare(panel.writePending(), 2)
        tryVerify(function() { return panel.proxy.label === "Terrace" && panel.proxy.upRollingSpeed === wanted }, 3000)
        compare(panel.pendingJobs.length, 0)
        compare(simulator.label(row.nodeID & 0xFFFFFF), "Terrace")
    }

    // What is typed is checked as it is typed: a wrong entry is marked,
    // blocks the write and is never shortened or dropped.
    function test_entriesAreChecked_data() {
        return [
            { tag: "label of 16 bytes", label: "Wohnzimmer links", groups: "", ok: true },
            { tag: "label of 16 letters, 26 bytes", label: "ÄÖÜäöüßÄÖÜabcdef", groups: "", ok: false, problem: "26 bytes" },
            { tag: "groups in hex", label: "", groups: "F0001, 1a, 0x2B", ok: true, written: [0xF0001, 0x1A, 0x2B] },
            { tag: "one group not hex", label: "", groups: "F0001, XYZ, 1000000", ok: false, problem: "XYZ, 1000000" },
            { tag: "group zero", label: "", groups: "0", ok: false, problem: "0" },
            { tag: "empty entry", label: "", groups: "1A,,2B", ok: false, problem: "(empty)" },
            { tag: "group twice", label: "", groups: "1A, 01a", ok: false, problem: "Given twice" },
            { tag: "seventeen groups", label: "", groups: "1,2,3,4,5,6,7,8,9,A,B,C,D,E,F,10,11", ok: false, problem: "17 groups" }
        ]
    }
    function test_entriesAreChecked(data) {
        var row = device(6)
        show(row)
        var label = findChild(panel, "labelEdit")
        var groups = findChild(panel, "groupsEdit")
        var write = findChild(panel, "writePending")
        label.text = data.label !== "" ? data.label : panel.proxy.label
        groups.text = data.groups
        compare(!panel.invalid, data.ok)
        compare(write.enabled, data.ok && panel.pendingJobs.length > 0)
        if (!data.ok) {
            var problem = panel.labelProblem + panel.groupsCheck.problem
            verify(problem.indexOf(data.problem) >= 0, problem)
            compare(panel.writePending(), 0)
        }
        // Nothing typed is cut: the field keeps every character.
        compare(label.text, data.label !== "" ? data.label : panel.proxy.label)
        compare(groups.text, data.groups)
        if (data.written) {
            var job = panel.pendingJobs.filter(function(j) { return j[0] === "SetGroupsJob" })[0]
            compare(JSON.stringify(job[1].groups), JSON.stringify(data.written))
        }
        panel.resetEditors()
    }

    // A new device on the panel: no value of the one before stays.
    function test_followsTheSelectionAtOnce() {
        var dc = device(6), std = device(1)
        show(dc)
        verify(panel.proxy.upRollingSpeed !== undefined)
        findChild(panel, "labelEdit").text = "Half typed"
        panel.commonType = std.type
        panel.uuid = std.uuid
        verify(findChild(panel, "labelEdit").text !== "Half typed")
        compare(panel.pendingJobs.length, 0)
        verify(panel.proxy.upRollingSpeed === undefined)
        tryCompare(jobs, "running", 0, 3000)
        compare(panel.syncText, "In step with the device")
    }

    function test_vanishedDeviceFailsWithText() {
        var row = device(1)
        show(row)
        simulator.unplug(row.nodeID & 0xFFFFFF)
        panel.log.clear()
        panel.readAll()
        tryCompare(jobs, "running", 0, 3000)
        simulator.unplug(row.nodeID & 0xFFFFFF, false)
        compare(panel.log.count, 3)
        for (var i = 0; i < panel.log.count; ++i) {
            var entry = panel.log.get(i)
            verify(!entry.ok && !entry.running)
            // In the words of the task, with the library's reason.
            verify(/^Read (label|groups|firmware version): \S/.test(entry.text), entry.text)
            verify(!/Job|Task|VRN/.test(entry.text), entry.text)
        }
        // still usable: the next device answers
        show(device(2))
        verify(!panel.log.get(0).text.match(/Timeout/))
    }

    // Several devices of one kind: the field touched goes to every one of
    // them through the group worker; other fields stay as they are.
    function test_writesWhatSeveralHaveInCommon() {
        var sel = devices.selection
        sel.setItems(ObjectFactory.TypeColumn, 2)
        verify(sel.rowCount >= 2)
        var first = sel.data(0)
        panel.selection = sel
        panel.commonType = 2
        panel.selectedCount = sel.rowCount
        panel.uuid = first
        tryCompare(jobs, "running", 0, 3000)
        var groups = findChild(panel, "groupsEdit")
        groups.text = "ABC, 12"
        panel.touch("groups")
        compare(JSON.stringify(panel.pendingJobs.map(function(j) { return j[0] })), "[\"SetGroupsJob\"]")
        compare(panel.writePending(), 1)
        tryVerify(function() { return panel.log.count > 0 && !panel.log.get(0).running }, 5000)
        compare(panel.log.get(0).text, "Write groups: " + sel.rowCount + " done, 0 failed")
        for (var i = 0; i < sel.rowCount; ++i) {
            var shared = ObjectFactory.objectQml(testCase, sel.data(i))
            compare(JSON.stringify(simulator.groups(shared.data.address & 0xFFFFFF)), JSON.stringify([0xABC, 0x12]))
            shared.destroy()
        }
        // The registry knows the new group: it filters the list and selects.
        var motors = sel.rowCount
        verify(devices.knownGroups().indexOf(0xABC) >= 0, JSON.stringify(devices.knownGroups()))
        sel.clear()
        sel.addGroup(0xABC)
        compare(sel.rowCount, motors)
        compare(sel.selectedType, 2)
        devices.groupFilter = 0xABC
        compare(devices.rowCount(), motors)
        devices.groupFilter = -1
        panel.selection = null
        sel.clear()
    }

    // A row no device can have in the selection is left out of the write,
    // and the panel says so; the others are written.
    function test_writeLeavesOutInvalidRows() {
        var forged = ObjectFactory.createObjectQml(testCase, 2, 1, false)   // node 1: a tool's number
        verify(forged)
        forged.destroy()
        var sel = devices.selection
        sel.setItems(ObjectFactory.TypeColumn, 2)
        var motors = sel.rowCount
        verify(motors >= 3)   // two motors and the forged row
        panel.selection = sel
        panel.commonType = 2
        panel.selectedCount = motors
        panel.uuid = sel.data(0)
        tryCompare(jobs, "running", 0, 3000)
        findChild(panel, "groupsEdit").text = "ABC, 12"
        panel.touch("groups")
        compare(panel.writePending(), 1)
        tryVerify(function() { return panel.log.count > 1 && !panel.log.get(0).running }, 5000)
        compare(panel.log.get(0).text, "Write groups: " + (motors - 1) + " done, 0 failed")
        compare(panel.log.get(1).text, "Write groups: left out, rows invalid: 1")
        panel.selection = null
        sel.clear()
        for (var r = 0; r < devices.rowCount(); ++r)
            if ((devices.get(r).nodeID & 0xFFFFFF) === 1)
                verify(ObjectFactory.destroyObjectQml(devices.get(r).uuid))
    }
}
